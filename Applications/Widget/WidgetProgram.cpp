#include "Applications/Widget/WidgetProgram.h"

#include "Applications/Composition/LiveHTMLReader.h"
#include "Applications/Watching/EntryChanges.h"
#include "Applications/Widget/CalendarProgram.h"
#include "Applications/Widget/FaceContent.h"
#include "Applications/Widget/FirstFrame.h"
#include "Applications/Widget/MeetPage.h"
#include "Applications/Widget/Texts.h"
#include "Meetings/MeetConfigEnum.h"
#include "Platform/Desktop/Display.h"
#include "Platform/EventStore/Folder/CalendarStorePlaces.h"
#include "Platform/EventStore/Folder/ConsentRecord.h"
#include "Platform/Logging/Logger.h"
#include "Platform/SessionBus/SessionBusAddress.h"
#include "Platform/SessionBus/SessionLock.h"
#include "Platform/WidgetHost/LocalWidgetCenter.h"
#include "Platform/WidgetHost/StoppedWallClockTimer.h"
#include "Platform/WidgetHost/TimerfdWallClockTimer.h"

#include <csignal>
#include <cstdio>
#include <utility>

namespace Widget {

namespace {

std::unique_ptr<Platform::WallClockTimer> makeTimer(WidgetOptions const& options) {
    if (options.fixedMoment) {
        return std::make_unique<Platform::StoppedWallClockTimer>();
    }
    return std::make_unique<Platform::TimerfdWallClockTimer>();
}

Platform::Logger logger(Composition::LiveServices& services) {
    return {services.logSink(), std::string(Meetings::MeetConfigEnum::loggerSubsystem), "Widget"};
}

/// A picture of another moment looks as its options say, and leaves no trace.
std::optional<WidgetStateStore> stateStore(Composition::LiveServices& services,
                                           WidgetOptions const& options) {
    auto const folder = stateFolder(services.environment());
    if (options.fixedMoment || !folder) {
        return std::nullopt;
    }
    return WidgetStateStore(*folder, services.files(), logger(services));
}

Platform::WidgetFamily firstFamily(WidgetOptions const& options, WidgetState const& remembered) {
    return options.family.or_else([&] { return remembered.family; })
        .value_or(Platform::WidgetFamily::systemLarge);
}

} // namespace

WidgetProgram::WidgetProgram(Foundation::Environment const& environment, WidgetOptions const& options)
    : options(options),
      mainExecutor(mainLoop),
      timer(makeTimer(options)),
      consentDialog(std::make_shared<Platform::ConsentDialog>(mainLoop, Texts::consent())),
      services(environment, {.fixedMoment = options.fixedMoment,
                             .consentPrompt = consentDialog,
                             .calendarsDiffer = [this] { mainLoop.invoke([this] { reload(); }); }}),
      bundle(services.scheduleWidgetServices(taskThread.executor())),
      widget(bundle.body().front()),
      provider(widget.timelineProvider()),
      meetDialog(Texts::meetDialog(), [this](Foundation::URL const& link) { openLink(link); }),
      workspace(Platform::sessionBusAddress(environment)),
      looks(services.appearance(), options.colorScheme, mainLoop, [this] { showNewLooks(); }),
      memory(stateStore(services, options), [this] { return window ? window->place() : std::nullopt; }),
      host(*provider, *services.clock(), *timer, mainLoop, {.family = firstFamily(options, memory.state())},
           {
               .show = [this](Entry const& entry, Platform::EntryKind kind) { show(entry, kind); },
               .nextChange =
                   [this](Entry const& entry, Foundation::Date now) {
                       return Watching::nextChange(entry, now, services.region()->currentCalendar());
                   },
           }) {}

std::expected<void, std::string> WidgetProgram::run(Platform::SingleInstance* instance) {
    // Before the display is opened: the calendars are read meanwhile.
    host.start();
    if (!Platform::openDisplay(services.environment(), options.placement)) {
        return std::unexpected(Texts::noDisplay());
    }
    followPresses();
    followCalendars();
    followPreferences();
    followTheDesktop();
    followSignals();
    openWindow();
    if (instance != nullptr) {
        serve(*instance);
    }
    host.showAgain();
    window->present();
    mainLoop.run();
    memory.settle();
    return {};
}

void WidgetProgram::show(Entry const& entry, Platform::EntryKind kind) {
    if (!window) {
        return; // Shown again once there is one.
    }
    auto const view = widget.content(entry, host.family(), looks.colorScheme());
    auto content = faceContent(view, isLocked ? Platform::EntryKind::placeholder : kind,
                               Composition::liveHTMLReader(), mainExecutor);
    shownMeets = std::move(content.meets);
    window->show(std::move(content.shown));
    if (kind == Platform::EntryKind::loaded) {
        loadedDayIsShown();
    }
}

void WidgetProgram::loadedDayIsShown() {
    preferences->renew();
    if (health) {
        health->check();
    }
    if (!std::exchange(hasShownTheDay, true)) {
        window->afterNextFrame([this] { firstFrameIsPainted(); });
    }
}

void WidgetProgram::firstFrameIsPainted() {
    if (options.printsFirstFrame) {
        std::printf("%.0f\n", millisecondsSinceProcessStart());
        std::fflush(stdout);
    }
    if (options.quitsAfterFirstFrame) {
        quit();
    }
}

void WidgetProgram::showNotices() {
    window->setNotice(notices.text(services.region()->currentCalendar()));
}

void WidgetProgram::showNewLooks() {
    window->setAccent(looks.accentColor());
    host.showAgain();
}

void WidgetProgram::followPresses() {
    presses.emplace(
        taskThread.executor(), services.files(),
        std::make_shared<Platform::LocalWidgetCenter>(mainLoop, [this] { reload(); }),
        [this](PressOutcome const& outcome) { mainLoop.invoke([this, outcome] { pressIsDone(outcome); }); });
    consentDialog->onAnswer([this] { reload(); });
}

void WidgetProgram::followCalendars() {
    auto const places = services.calendarPlaces();
    if (!places) {
        return;
    }
    calendars.emplace(folderEvents, *places, services.calendarConfiguration(), taskThread.executor(),
                      mainLoop, [this] { reload(); });
    calendars->update();
    health.emplace(services.calendarConfiguration(), taskThread.executor(), mainLoop, services.clock(),
                   [this](std::optional<CalendarTrouble> const& trouble) {
                       notices.calendarTrouble = trouble;
                       showNotices();
                   });
}

void WidgetProgram::followPreferences() {
    auto const places = services.calendarPlaces();
    preferences.emplace(
        folderEvents, *services.files(),
        places.transform([](auto const& known) { return known.configurationDirectory; }),
        Watching::PreferenceFiles{.shared = {"scheduleWidgetDayOffset.json", "hiddenCalendarIdentifiers.json",
                                             "enabledCalendarAccounts.json"},
                                  .configuration = {"calendar-store.json", "calendar-access.json"}},
        [this] { preferencesChanged(); });
}

void WidgetProgram::followTheDesktop() {
    auto const bus = Platform::sessionBusAddress(services.environment());
    reloadListener.emplace(bus, [this] { reload(); });
    appearanceWatch.emplace(bus, [this] { looks.askAgain(); });
    if (!options.fixedMoment) {
        lockListener.emplace(Platform::systemBusAddress(services.environment()),
                             [this](bool isLockedNow) { lockChanged(isLockedNow); });
    }
}

void WidgetProgram::followSignals() {
    interrupted = Platform::GLibSource::onSignal(SIGINT, [this] { quit(); });
    terminated = Platform::GLibSource::onSignal(SIGTERM, [this] { quit(); });
}

// Locked, the face shows its header alone: no meets, and not that there are none.
void WidgetProgram::lockChanged(bool isLockedNow) {
    isLocked = isLockedNow;
    if (isLocked) {
        meetDialog.close();
    }
    host.showAgain();
}

void WidgetProgram::preferencesChanged() {
    withdrawAnsweredQuestion();
    reload();
    if (calendars) {
        calendars->update();
    }
}

// A question that was answered elsewhere, in a terminal for example, need not stand any longer.
void WidgetProgram::withdrawAnsweredQuestion() {
    auto const consent = services.consent();
    if (consent && consent->status() != Platform::EKAuthorizationStatus::notDetermined) {
        consentDialog->withdraw();
    }
}

void WidgetProgram::pressIsDone(PressOutcome const& outcome) {
    if (auto const trouble = troubleOf(outcome)) {
        logger(services).error(*trouble);
    }
    notices.lastPress = outcome;
    showNotices();
}

// Who asks for the day in person may be asked for the calendars once more.
void WidgetProgram::reloadByHand() {
    consentDialog->askAnew();
    reload();
}

// What is open stays as it was opened, also when the day moves on: it is being read.
void WidgetProgram::openMeet(std::size_t row) {
    auto const& meet = shownMeets.at(row);
    if (!meet) {
        return;
    }
    meetDialog.show(meetPage(*meet, services.region()->currentCalendar(), services.region()->currentLocale(),
                             Composition::liveHTMLReader(), mainExecutor),
                    looks.colorScheme());
}

void WidgetProgram::startCalendarProgram() {
    openCalendarProgram(workspace, [this](Platform::DetailPage const& trouble) {
        meetDialog.show(trouble, looks.colorScheme());
    });
}

void WidgetProgram::openLink(Foundation::URL const& link) {
    workspace.open(link, [this](std::string const& failure) {
        if (failure.empty()) {
            meetDialog.close();
        } else {
            meetDialog.tell(Texts::linkNotOpened(failure));
        }
    });
}

void WidgetProgram::openWindow() {
    window.emplace(options.placement, Texts::window(),
                   Platform::FaceWindowActions{
                       .previousDay = [this] { presses->previousDay(); },
                       .nextDay = [this] { presses->nextDay(); },
                       .today = [this] { presses->today(); },
                       .reload = [this] { reloadByHand(); },
                       .openCalendarProgram = [this] { startCalendarProgram(); },
                       .quit = [this] { quit(); },
                       .chooseFamily = [this](Platform::WidgetFamily family) { chooseFamily(family); },
                       .openRow = [this](std::size_t row) { openMeet(row); },
                       .moved = [this] { memory.windowMoved(); },
                   });
    window->setAccent(looks.accentColor());
    if (auto const place = memory.state().place) {
        window->standAt(*place);
    }
}

void WidgetProgram::chooseFamily(Platform::WidgetFamily family) {
    host.setFamily(family);
    memory.familyWasChosen(family);
}

void WidgetProgram::serve(Platform::SingleInstance& instance) {
    instance.serve({
        .activate = [this] { window->present(); },
        .previousDay = [this] { presses->previousDay(); },
        .nextDay = [this] { presses->nextDay(); },
        .today = [this] { presses->today(); },
        .reload = [this] { reloadByHand(); },
        .quit = [this] { quit(); },
        .chooseFamily = [this](Platform::WidgetFamily family) { chooseFamily(family); },
    });
}

} // namespace Widget
