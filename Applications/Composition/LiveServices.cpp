#include "Applications/Composition/LiveServices.h"

#include "Applications/Composition/Texts.h"
#include "Meetings/BundleFinder.h"
#include "Meetings/EventKit/LiveEventKitStore.h"
#include "Meetings/MeetConfigEnum.h"
#include "Platform/Appearance/PortalAppearance.h"
#include "Platform/Clock/FixedClock.h"
#include "Platform/Clock/SystemClock.h"
#include "Platform/Clock/SystemRegionSettings.h"
#include "Platform/Defaults/FileUserDefaults.h"
#include "Platform/EventStore/Folder/CalendarStorePlaces.h"
#include "Platform/EventStore/Folder/FolderEventStore.h"
#include "Platform/Files/PosixFileLocks.h"
#include "Platform/Files/PosixFileManager.h"
#include "Platform/Files/PreferenceGuard.h"
#include "Platform/Logging/JournalLogSink.h"
#include "Platform/NotificationCenter/LocalNotificationCenter.h"
#include "Platform/Resources/BundleColorProvider.h"
#include "Platform/Resources/BundleTextProvider.h"
#include "Platform/SessionBus/SessionBusAddress.h"
#include "Platform/WidgetHost/SessionBusWidgetCenter.h"
#include "WidgetExtension/ResourceBundleClass.h"
#include "WidgetExtension/ScheduleWidgetServices.h"

#include <mutex>
#include <utility>

namespace Composition {

namespace {

// For a program that nobody can be asked through.
class NobodyToAsk final : public Platform::ConsentPrompt {
public:
    Foundation::Task<Platform::ConsentAnswer> ask() override {
        co_return Platform::ConsentAnswer::unavailable;
    }
};

// Makes a part when it is first asked for.
template <typename Part, typename Make>
std::shared_ptr<Part> once(std::shared_ptr<Part>& part, Make const& make) {
    if (!part) part = make();
    return part;
}

// Those whose stores fall back in silence: the settings, and which calendars are hidden.
std::vector<Platform::GuardedPreference> guardedPreferences() {
    using Platform::GuardedPreference;
    return {{.fileName = Platform::FileUserDefaults::fileName,
             .form = GuardedPreference::Form::object,
             .keeper = GuardedPreference::Keeper::itsStore},
            {.fileName = "hiddenCalendarIdentifiers.json",
             .form = GuardedPreference::Form::listOfTexts,
             .keeper = GuardedPreference::Keeper::guard}};
}

} // namespace

struct LiveServices::Parts {
    Foundation::Environment environment;
    LiveServicesOptions options;

    // Recursive, because one part is made from others. The calendar store is asked for by the provider's
    // task, which may run on a thread of its own.
    std::recursive_mutex mutex;
    std::shared_ptr<Platform::Clock const> clock;
    std::shared_ptr<Platform::RegionSettings const> region;
    std::shared_ptr<Platform::FileManager const> files;
    std::shared_ptr<Platform::LogSink> logSink;
    std::shared_ptr<Platform::NotificationCenter> notifications;
    std::shared_ptr<Platform::Appearance const> appearance;
    std::shared_ptr<Platform::WidgetCenter> widgetCenter;
    std::shared_ptr<Platform::BundleTextProvider const> widgetTexts;
    std::shared_ptr<Platform::BundleTextProvider const> meetingsTexts;
    std::shared_ptr<Platform::CalendarStoreConfiguration const> configuration;
    std::shared_ptr<Platform::ConsentRecord const> consent;
    std::shared_ptr<Platform::UserDefaults> userDefaults;
    std::shared_ptr<Platform::FolderEventStore> eventStore;
    std::shared_ptr<Meetings::EventKitStoring> eventKitStore;

    // The texts of the bundle that `Marker` stands for; `overrides` may name another place for it.
    template <typename Marker>
    std::shared_ptr<Platform::BundleTextProvider const> texts(Foundation::Environment overrides) const {
        return std::make_shared<Platform::BundleTextProvider>(
            std::string(Marker::bundleName), std::move(overrides),
            Platform::BundlePlaces::ofProcess(Marker::marker()),
            Foundation::Locale::textLanguages(environment));
    }

    // The extension's bundle is its own and no package's: nothing names another place for it.
    std::shared_ptr<Platform::BundleTextProvider const> widgetBundle() {
        std::scoped_lock const lock(mutex);
        return once(widgetTexts,
                    [&] { return texts<WidgetExtension::ResourceBundleClass>(Foundation::Environment()); });
    }
};

LiveServices::LiveServices(Foundation::Environment environment, LiveServicesOptions options)
    : parts(std::make_shared<Parts>()) {
    parts->environment = std::move(environment);
    parts->options = std::move(options);
}

LiveServices::LiveServices(std::shared_ptr<Parts> parts) : parts(std::move(parts)) {}

LiveServices::~LiveServices() = default;

Foundation::Environment const& LiveServices::environment() const {
    return parts->environment;
}

std::shared_ptr<Platform::Clock const> LiveServices::clock() {
    std::scoped_lock const lock(parts->mutex);
    return once(parts->clock, [&]() -> std::shared_ptr<Platform::Clock const> {
        if (parts->options.fixedMoment)
            return std::make_shared<Platform::FixedClock>(*parts->options.fixedMoment);
        return std::make_shared<Platform::SystemClock>();
    });
}

std::shared_ptr<Platform::RegionSettings const> LiveServices::region() {
    std::scoped_lock const lock(parts->mutex);
    return once(parts->region,
                [&] { return std::make_shared<Platform::SystemRegionSettings>(parts->environment); });
}

std::shared_ptr<Platform::FileManager const> LiveServices::files() {
    std::scoped_lock const lock(parts->mutex);
    return once(parts->files, [&] {
        // Who holds the files may outlive the rest, and the rest the files.
        auto const tell = [shared = std::weak_ptr(parts)](std::string const& message) {
            if (auto const alive = shared.lock()) LiveServices(alive).logDamage(message);
        };
        using Platform::PosixFileManager;
        auto const missing = parts->options.missingSharedFolder == SharedFolder::isMade
                                 ? PosixFileManager::MissingContainer::isMade
                                 : PosixFileManager::MissingContainer::isLeft;
        return std::make_shared<Platform::PreferenceGuard>(
            std::make_shared<PosixFileManager>(parts->environment, PosixFileManager::Durability::file,
                                               missing),
            guardedPreferences(), tell);
    });
}

void LiveServices::logDamage(std::string const& message) {
    Platform::Logger(logSink(), std::string(Meetings::MeetConfigEnum::loggerSubsystem),
                     std::string(preferencesLogCategory))
        .error(message);
}

std::shared_ptr<Platform::LogSink> LiveServices::logSink() {
    std::scoped_lock const lock(parts->mutex);
    return once(parts->logSink, [&]() -> std::shared_ptr<Platform::LogSink> {
        if (parts->options.logSink) return parts->options.logSink;
        return std::make_shared<Platform::JournalLogSink>(parts->environment);
    });
}

std::shared_ptr<Platform::NotificationCenter> LiveServices::notifications() {
    std::scoped_lock const lock(parts->mutex);
    return once(parts->notifications, [] { return std::make_shared<Platform::LocalNotificationCenter>(); });
}

std::shared_ptr<Platform::Appearance const> LiveServices::appearance() {
    std::scoped_lock const lock(parts->mutex);
    return once(parts->appearance, [&] {
        return std::make_shared<Platform::PortalAppearance>(Platform::sessionBusAddress(parts->environment));
    });
}

std::shared_ptr<Platform::WidgetCenter> LiveServices::widgetCenter() {
    std::scoped_lock const lock(parts->mutex);
    return once(parts->widgetCenter,
                [&] { return std::make_shared<Platform::SessionBusWidgetCenter>(parts->environment); });
}

std::shared_ptr<Platform::TextProvider const> LiveServices::widgetTexts() {
    return parts->widgetBundle();
}

std::shared_ptr<Platform::ColorProvider const> LiveServices::widgetColors() {
    return std::make_shared<Platform::BundleColorProvider>(parts->widgetBundle());
}

std::shared_ptr<Platform::TextProvider const> LiveServices::meetingsTexts() {
    std::scoped_lock const lock(parts->mutex);
    return once(parts->meetingsTexts,
                [&] { return parts->texts<Meetings::BundleFinder>(parts->environment); });
}

std::optional<Platform::CalendarStorePlaces> LiveServices::calendarPlaces() {
    return Platform::CalendarStorePlaces::of(parts->environment, *files());
}

std::shared_ptr<Platform::CalendarStoreConfiguration const> LiveServices::calendarConfiguration() {
    std::scoped_lock const lock(parts->mutex);
    auto const places = calendarPlaces();
    if (!places) return nullptr;
    return once(parts->configuration, [&] {
        return std::make_shared<Platform::CalendarStoreConfiguration>(
            places->configurationDirectory, files(), std::make_shared<Platform::PosixFileLocks>());
    });
}

std::shared_ptr<Platform::ConsentRecord const> LiveServices::consent() {
    std::scoped_lock const lock(parts->mutex);
    auto const places = calendarPlaces();
    if (!places) return nullptr;
    return once(parts->consent, [&] {
        return std::make_shared<Platform::ConsentRecord>(places->configurationDirectory, files());
    });
}

std::shared_ptr<Platform::UserDefaults> LiveServices::userDefaults() {
    std::scoped_lock const lock(parts->mutex);
    auto const places = calendarPlaces();
    if (!places) return nullptr;
    return once(parts->userDefaults, [&] {
        return std::make_shared<Platform::FileUserDefaults>(places->configurationDirectory, files(),
                                                            std::make_shared<Platform::PosixFileLocks>());
    });
}

std::shared_ptr<Platform::EKEventStore> LiveServices::eventStore() {
    return calendarFolders();
}

std::shared_ptr<Platform::FolderEventStore> LiveServices::calendarFolders() {
    std::scoped_lock const lock(parts->mutex);
    return once(parts->eventStore, [&] {
        auto const places = calendarPlaces();
        if (!places) {
            throw Platform::EKError(Texts::noHomeForCalendars());
        }
        auto prompt = parts->options.consentPrompt;
        if (!prompt) prompt = std::make_shared<NobodyToAsk>();
        return std::make_shared<Platform::FolderEventStore>(Platform::FolderEventStoreParts{
            .places = *places,
            .files = files(),
            .region = region(),
            // Files bear the system's time also when the program's clock stands still.
            .fileSystemClock = std::make_shared<Platform::SystemClock>(),
            .prompt = std::move(prompt),
            .logger = Platform::Logger(logSink(), std::string(Meetings::MeetConfigEnum::loggerSubsystem),
                                       std::string(calendarStoreLogCategory)),
            .onDifference = parts->options.calendarsDiffer,
            .onLookDue = parts->options.calendarLookDue,
        });
    });
}

std::shared_ptr<Meetings::EventKitStoring> LiveServices::eventKitStore() {
    std::scoped_lock const lock(parts->mutex);
    return once(parts->eventKitStore,
                [&] { return std::make_shared<Meetings::LiveEventKitStore>(eventStore()); });
}

WidgetExtension::ScheduleWidgetServices
LiveServices::scheduleWidgetServices(Foundation::TaskExecutor executor) {
    return {
        .clock = clock(),
        .region = region(),
        .files = files(),
        .appearance = appearance(),
        .texts = widgetTexts(),
        .colors = widgetColors(),
        .meetingsTexts = meetingsTexts(),
        .logSink = logSink(),
        // The parts are shared, so that a task which outlives this object still finds its store.
        .eventStore = [shared = parts] { return LiveServices(shared).eventKitStore(); },
        .executor = std::move(executor),
    };
}

} // namespace Composition
