#include "Applications/Companion/MeetChange.h"

#include "Applications/Companion/CommandError.h"
#include "Applications/Companion/MeetJSON.h"
#include "Applications/Companion/MeetTexts.h"
#include "Applications/Companion/NamedMeet.h"
#include "Applications/Companion/PlainJSON.h"
#include "Applications/Companion/Texts.h"
#include "Foundation/Task.h"
#include "Meetings/EventKit/EventKitMeetMapper.h"
#include "Meetings/EventKit/EventKitMeetRepositoryError.h"
#include "Meetings/EventKit/EventKitMeetRepositoryImpl.h"
#include "Meetings/EventKit/EventKitStoring.h"
#include "Meetings/MeetValidationError.h"
#include "Platform/Appearance/Appearance.h"
#include "Platform/Clock/RegionSettings.h"
#include "Platform/WidgetHost/WidgetCenter.h"

#include <memory>
#include <utility>

namespace Companion {

using Meetings::MeetEntity;

Meetings::MeetingsApplication meetingsApplication(Composition::LiveServices& services,
                                                  std::optional<std::string> calendarIdentifier) {
    auto const calendar = services.region()->currentCalendar();
    Meetings::EventKitMeetRepositorySettings settings = {
        .calendar = calendar, .defaultCalendarIdentifier = std::move(calendarIdentifier)};
    Meetings::EventKitMeetRepositorySurroundings surroundings = {.clock = services.clock(),
                                                                 .texts = services.meetingsTexts(),
                                                                 .appearance = services.appearance(),
                                                                 .logSink = services.logSink()};
    return {std::make_shared<Meetings::EventKitMeetRepositoryImpl>(
                services.eventKitStore(), std::move(settings), std::move(surroundings)),
            calendar};
}

MeetEntity meetOf(Platform::EKEvent const& event, Composition::LiveServices& services) {
    auto info = Meetings::EventKitMeetMapper::recurrenceInfo(event);
    return Meetings::EventKitMeetMapper::toMeetEntity(event, info.frequency, std::move(info.weekdays),
                                                      *services.meetingsTexts(), *services.appearance());
}

void changing(std::string const& whatWasNotDone, std::function<void()> const& change) {
    try {
        change();
    } catch (Meetings::MeetValidationError const& error) {
        throw CommandError::refused(whatWasNotDone, Texts::told(error.what()));
    } catch (Meetings::EventKitMeetRepositoryError const& error) {
        throw CommandError::refused(whatWasNotDone, Texts::told(error.what()));
    } catch (Platform::EKError const& error) {
        throw CommandError::refused(whatWasNotDone, Texts::told(error.what()));
    }
}

void requireReadiness(MeetEntity const& meet, Composition::LiveServices& services) {
    using Meetings::EventKitMeetRepositoryError;
    using Platform::EKAuthorizationStatus;
    auto const store = services.eventKitStore();
    auto const status = store->authorizationStatus();
    bool isAllowed = status == EKAuthorizationStatus::fullAccess;
    if (status == EKAuthorizationStatus::notDetermined)
        isAllowed = Foundation::runTask(store->requestFullAccessToEvents());
    if (!isAllowed) throw EventKitMeetRepositoryError::accessDenied();
    if (!eventBehind(meet, *store, services.region()->currentCalendar()))
        throw EventKitMeetRepositoryError::eventNotFound();
}

void confirm(Invocation const& invocation, std::string const& plan) {
    if (invocation.values.has("--yes")) return;
    invocation.console.tell(plan);
    if (!invocation.console.canAsk()) throw CommandError::wrongUse(Texts::nobodyAgreed());
    auto const answer = invocation.console.ask(Texts::goAhead());
    if (!answer) throw CommandError::failed(Texts::questionNotAnswered());
    if (!*answer) throw CommandError::failed(Texts::nothingWasChanged());
}

void finishChange(Invocation const& invocation, Composition::LiveServices& services, MeetEntity const& meet,
                  std::string const& whatWasDone) {
    services.widgetCenter()->reloadAllTimelines();
    if (invocation.values.has("--json")) {
        auto document = plainJSON(Foundation::JSON::Object{{"version", 1}, {"meet", meetJSON(meet)}});
        invocation.console.confirm(document + "\n", whatWasDone);
    } else {
        invocation.console.confirmLine(whatWasDone);
    }
}

ChangeReach reachOf(ArgumentValues const& values) {
    if (values.has("--this")) return ChangeReach::thisOccurrence;
    if (values.has("--future")) return ChangeReach::fromThisOneOn;
    return ChangeReach::asTheUseCaseDoes;
}

std::vector<CommandOption> changeOptions(TableText thisHelp, TableText futureHelp) {
    return {{.name = "--this", .help = thisHelp, .excludes = {"--future"}},
            {.name = "--future", .help = futureHelp},
            {.name = "--yes", .help = Texts::text("meet-option-yes")}};
}

} // namespace Companion
