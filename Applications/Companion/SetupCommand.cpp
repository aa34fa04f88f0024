#include "Applications/Companion/BackendTexts.h"
#include "Applications/Companion/CalendarFolders.h"
#include "Applications/Companion/Commands.h"
#include "Applications/Companion/EndingSignals.h"
#include "Applications/Companion/ProviderRegistry.h"
#include "Applications/Companion/ProviderSetup.h"
#include "Applications/Companion/SetupTexts.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "CalendarProviders/EventKitPermissionRepositoryImpl.h"
#include "Platform/EventStore/Folder/CalendarStorePlaces.h"
#include "Platform/EventStore/Folder/FolderEventStore.h"
#include "Platform/WidgetHost/WidgetCenter.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Companion {

using CalendarProviders::AccountProviderEnum;
using Platform::EKAuthorizationStatus;

namespace {

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
        requireSomeoneToAsk();
        QuarantineReport const report(services, invocation.console);
        makeOwnCalendar(*places);
        noteDone(Texts::setUpOwnCalendar());
        if (settleAccess()) {
            noteDone(Texts::setUpAccess());
            registerProvider();
        }
        for (auto const& folder : foundCalendarFolders(invocation.environment))
            offer(folder);
        services.widgetCenter()->reloadAllTimelines();
        return conclude();
    }

private:
    void say(std::string const& text) const { invocation.console.confirmLine(text); }

    // So that who ends the program from now on is told of it.
    void noteDone(std::string part) {
        done.push_back(std::move(part));
        signals.say(Texts::interruptedInTheSetup(done));
    }

    // Before anything is done: access is not for a script to take without a word.
    void requireSomeoneToAsk() const {
        bool const isSettled =
            takesDefaults || requiredConsent(services)->status() != EKAuthorizationStatus::notDetermined;
        if (!isSettled && !invocation.console.canAsk())
            throw CommandError::wrongUse(Texts::setupHasNobodyToAsk());
    }

    void makeOwnCalendar(Platform::CalendarStorePlaces const& places) {
        std::error_code missing;
        bool const isThere = std::filesystem::is_directory(places.nativeCalendar, missing);
        if (auto const error = Platform::createNativeCalendar(places, *services.files()))
            throw CommandError::failed(Texts::cannotWrite(shownPath(places.nativeCalendar), error.message()));
        auto const path = shownPath(places.nativeCalendar);
        hasChanged = !isThere;
        say(isThere ? Texts::ownCalendarIsThere(path) : Texts::ownCalendarMade(path));
    }

    // Whether Quillora may read the calendars now.
    bool settleAccess() {
        auto const consent = requiredConsent(services);
        auto const before = consent->status();
        if (before != EKAuthorizationStatus::fullAccess) settleMissingAccess(*consent, before);
        CalendarProviders::EventKitPermissionRepositoryImpl permission(services.eventStore());
        auto const answered = Foundation::runTask(permission.requestAccess(AccountProviderEnum::eventKit));
        auto const after = consent->status();
        hasChanged = hasChanged || before != after;
        if (answered.result) return true;
        // Allowed on record, and yet not one folder of calendars may be opened; or the answer was not kept.
        bool const isRefused = after == EKAuthorizationStatus::fullAccess ||
                               messageOf(answered) != permission.accessDeniedMessage;
        if (isRefused) throw CommandError::refused(Texts::calendarsRefuse(), messageOf(answered));
        return false;
    }

    void settleMissingAccess(Platform::ConsentRecord const& consent, EKAuthorizationStatus status) const {
        if (takesDefaults) {
            if (auto const error = consent.record(EKAuthorizationStatus::fullAccess))
                throw CommandError::failed(Texts::cannotWrite(shownPath(consent.file()), error.message()));
            return;
        }
        if (status == EKAuthorizationStatus::notDetermined) return;
        try {
            // Asked again even after a no: who runs the set-up may have come to another mind.
            Foundation::runTask(services.eventStore()->requestFullAccessToEvents());
        } catch (Platform::EKError const& error) {
            throw CommandError::failed(Texts::told(error.what()));
        }
    }

    // What fails here is told at the end: it is no reason to leave the rest undone.
    void registerProvider() {
        try {
            bool const isNew = ProviderSetup(invocation, services).run();
            hasChanged = hasChanged || isNew;
            noteDone(Texts::setUpRegistration());
        } catch (CommandError const& error) {
            failure = error;
        }
    }

    void offer(std::filesystem::path const& folder) {
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
        if (!root) throw CommandError::failed(Texts::told(root.error()));
        hasChanged = true;
        say(Texts::sourceAdded(root->title, shownPath(root->path), root->id));
    }

    ExitCode conclude() const {
        auto const status = requiredConsent(services)->status();
        say(Texts::accessStatus(status));
        if (status == EKAuthorizationStatus::notDetermined)
            throw CommandError::failed(Texts::nobodyAnsweredSetup());
        if (failure) throw *failure;
        if (status != EKAuthorizationStatus::fullAccess) {
            say(Texts::notRegisteredWithoutAccess());
            return ExitCode::done;
        }
        if (!hasChanged) say(Texts::setupChangedNothing());
        say(Texts::setupIsDone());
        return ExitCode::done;
    }

    Invocation const& invocation;
    Composition::LiveServices& services;
    bool takesDefaults;
    bool hasChanged = false;
    std::optional<CommandError> failure;
    EndingSignals signals{Texts::interruptedBeforeAChange()};
    std::vector<std::string> done;
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
                     {"quillora setup --yes --keychain file", Texts::text("setup-example-3")}},
        .run = run,
    };
}

} // namespace Companion
