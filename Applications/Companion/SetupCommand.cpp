#include "Applications/Companion/CalendarFolders.h"
#include "Applications/Companion/Commands.h"
#include "Applications/Companion/ProviderRegistry.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Applications/Composition/LiveRegistryServices.h"
#include "CalendarProviders/EnabledCalendarAccountsStore.h"
#include "Foundation/Text.h"
#include "Platform/Clock/Clock.h"
#include "Platform/EventStore/Folder/CalendarStorePlaces.h"
#include "Platform/EventStore/Folder/FolderEventStore.h"
#include "Platform/WidgetHost/WidgetCenter.h"

#include <algorithm>
#include <array>
#include <unistd.h>

namespace Companion {

namespace AccountsStore = CalendarProviders::EnabledCalendarAccountsStore;
using CalendarProviders::AccountProviderEnum;
using CalendarProviders::CalendarProviderEntity;
using Platform::EKAuthorizationStatus;

namespace {

constexpr std::string_view providerId = "eventKit";

// Something to tell one computer's registration from another's; the person may edit it.
std::string personsAddress(Foundation::Environment const& environment) {
    auto user = environment.value("USER").value_or("");
    if (user.empty()) user = environment.value("LOGNAME").value_or("");
    if (user.empty()) user = "me";
    std::array<char, 256> host{};
    bool const isNamed = ::gethostname(host.data(), host.size() - 1) == 0 && host.front() != '\0';
    return Foundation::Text::sanitizedUTF8(user + "@" + (isNamed ? host.data() : "localhost"));
}

// One run of the set-up; each step says what it did and may be repeated at any time.
class Setup {
public:
    Setup(Invocation const& invocation, Composition::LiveServices& services)
        : invocation(invocation),
          services(services),
          takesDefaults(invocation.values.has("--yes")) {}

    ExitCode run() {
        auto const places = services.calendarPlaces();
        if (!places) throw CommandError::failed(Texts::noHome());
        auto const keychain = invocation.values.option("--keychain");
        makeOwnCalendar(*places);
        if (!keychain) enableCalendarAccount();
        settleAccess();
        if (keychain) registerProvider(*keychain);
        for (auto const& folder : foundCalendarFolders(invocation.environment))
            offer(folder);
        services.widgetCenter()->reloadAllTimelines();
        return conclude();
    }

private:
    void say(std::string const& text) const { invocation.console.writeLine(text); }

    void makeOwnCalendar(Platform::CalendarStorePlaces const& places) const {
        std::error_code error;
        bool const isThere = std::filesystem::is_directory(places.nativeCalendar, error);
        if (auto const failure = Platform::createNativeCalendar(places, *services.files()))
            throw CommandError::failed(
                Texts::cannotWrite(shownPath(places.nativeCalendar), failure.message()));
        auto const path = shownPath(places.nativeCalendar);
        say(isThere ? Texts::ownCalendarIsThere(path) : Texts::ownCalendarMade(path));
    }

    void enableCalendarAccount() const {
        WriteWitness const files(services.files());
        auto accounts = AccountsStore::load(files);
        if (accounts.insert(AccountProviderEnum::eventKit).second) AccountsStore::save(files, accounts);
        // The store never fails aloud, so the set-up looks whether the choice was kept.
        if (!AccountsStore::load(files).contains(AccountProviderEnum::eventKit))
            throw CommandError::failed(Texts::accountsNotSaved(whyNotKept(files)));
        say(Texts::accountEnabled());
    }

    // Under the keychain that the person names: the calendars are then switched on by a registration.
    void registerProvider(std::string const& keychain) const {
        Composition::LiveRegistryServices registryServices(services);
        auto const kind = Foundation::fromRawValue<Composition::KeychainKind>(keychain).value();
        auto const chosen = registryServices.chooseKeychain(kind);
        if (!chosen) throw CommandError::failed(chosen.error());
        say(Texts::keychainChosen(kind == Composition::KeychainKind::file));

        auto const notDone = Texts::providerNotRegistered(providerId);
        auto const registry = requiredRegistry(services, notDone);
        auto const known = registered(registry);
        auto provider = known.value_or(thisComputer());
        provider.capIsEnabled = true;
        require(known ? registry.update(provider) : registry.newProvider(provider), notDone);
        checkMirror(services, registry);
        say(Texts::providerRegistered(provider.capDisplayName, provider.capEmail, provider.capId));
    }

    static std::optional<CalendarProviderEntity>
    registered(CalendarProviders::CalendarProviderRegistryApplication const& registry) {
        auto const providers =
            required<std::vector<CalendarProviderEntity>>(registry.getAll(), Texts::providersNotRead());
        auto const found =
            std::ranges::find(providers, AccountProviderEnum::eventKit, &CalendarProviderEntity::capProvider);
        if (found == providers.end()) return std::nullopt;
        return *found;
    }

    [[nodiscard]] CalendarProviderEntity thisComputer() const {
        return {.capId = std::string(providerId),
                .capProvider = AccountProviderEnum::eventKit,
                .capDisplayName = Texts::thisComputersCalendars(),
                .capDescription = "",
                .capEmail = personsAddress(invocation.environment),
                .capIsEnabled = true,
                .capRegisteredAt = services.clock()->now()};
    }

    void settleAccess() const {
        auto const consent = requiredConsent(services);
        if (consent->status() == EKAuthorizationStatus::fullAccess) return;
        if (takesDefaults) {
            if (auto const error = consent->record(EKAuthorizationStatus::fullAccess))
                throw CommandError::failed(Texts::cannotWrite(shownPath(consent->file()), error.message()));
            return;
        }
        try {
            // Asked again even after a no: who runs the set-up may have come to another mind.
            Foundation::runTask(services.eventStore()->requestFullAccessToEvents());
        } catch (Platform::EKError const& error) {
            throw CommandError::failed(error.what());
        }
    }

    void offer(std::filesystem::path const& folder) const {
        auto const configuration = requiredConfiguration(services);
        auto const content = configuration->load();
        if (content.problem) {
            auto const problem = Texts::problemOf(shownPath(configuration->file()), *content.problem);
            if (!content.mayBeChanged) throw CommandError::failed(problem);
            invocation.console.report(problem);
        }
        if (rootAt(folder, content.roots) != nullptr) {
            say(Texts::folderIsAdded(shownPath(folder)));
            return;
        }
        if (auto const nested = nestedSources(folder, content.roots)) {
            say(Texts::nestedFolderLeftOut(shownPath(folder), nested->known->title,
                                           shownPath(nested->known->path)));
            return;
        }
        bool const isWanted =
            takesDefaults || invocation.console.ask(Texts::offerFolder(shownPath(folder))) == true;
        if (!isWanted) {
            say(Texts::folderLeftOut(shownPath(folder)));
            return;
        }
        auto const root = configuration->add(folder, std::nullopt);
        if (!root) throw CommandError::failed(root.error());
        say(Texts::sourceAdded(root->title, shownPath(root->path), root->id));
    }

    ExitCode conclude() const {
        auto const status = requiredConsent(services)->status();
        say(Texts::accessStatus(status));
        if (status == EKAuthorizationStatus::notDetermined)
            throw CommandError::failed(Texts::nobodyWasAsked());
        if (status == EKAuthorizationStatus::denied) say(Texts::accessCanBeGranted());
        say(Texts::setupIsDone());
        return ExitCode::done;
    }

    Invocation const& invocation;
    Composition::LiveServices& services;
    bool takesDefaults;
};

ExitCode run(Invocation const& invocation) {
    auto const services = liveServices(invocation);
    return Setup(invocation, *services).run();
}

} // namespace

Command setupCommand() {
    return {
        .path = "setup",
        .summary = Texts::text("setup-summary"),
        .description = Texts::text("setup-description"),
        .options = {{.name = "--yes", .help = Texts::text("setup-option-yes")},
                    {.name = "--keychain",
                     .valueName = "KEYCHAIN",
                     .help = Texts::text("setup-option-keychain"),
                     .choices = {"secret-service", "file"}}},
        .examples = {{"quillora setup", Texts::text("setup-example-1")},
                     {"quillora setup --yes", Texts::text("setup-example-2")},
                     {"quillora setup --keychain file", Texts::text("setup-example-3")}},
        .run = run,
    };
}

} // namespace Companion
