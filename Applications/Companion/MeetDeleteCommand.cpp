#include "Applications/Companion/Commands.h"
#include "Applications/Companion/MeetChange.h"
#include "Applications/Companion/MeetTexts.h"
#include "Applications/Companion/NamedMeet.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Meetings/EventKit/EventKitMeetRepositoryError.h"
#include "Platform/Clock/RegionSettings.h"
#include "Platform/WidgetHost/WidgetCenter.h"

namespace Companion {

using Meetings::MeetEntity;
using Platform::EKEvent;

namespace {

std::string planOf(MeetEntity const& meet, EKEvent const& event, ChangeReach reach, MeetWords const& words) {
    auto const when = words.when(meet);
    if (!event.occurrenceKey) return Texts::deletesMeet(meet.metName, when, meet.metCalendarName);
    if (reach == ChangeReach::fromThisOneOn)
        return Texts::deletesFuture(meet.metName, when, meet.metCalendarName);
    // The use case deletes the series where the occurrence has its rule, and else the occurrence.
    bool const isOccurrence = reach == ChangeReach::thisOccurrence || event.recurrenceRules.empty();
    if (isOccurrence) return Texts::deletesOccurrence(meet.metName, when, meet.metCalendarName);
    return Texts::deletesSeries(meet.metName, when, meet.metCalendarName);
}

void carryOut(MeetEntity const& meet, EKEvent const& event, ChangeReach reach,
              Composition::LiveServices& services) {
    if (reach == ChangeReach::asTheUseCaseDoes) {
        Foundation::runTask(meetingsApplication(services).deleteMeet(meet));
        return;
    }
    requireReadiness(meet, services);
    services.eventKitStore()->remove(event, reach == ChangeReach::fromThisOneOn
                                                ? Platform::EKSpan::futureEvents
                                                : Platform::EKSpan::thisEvent);
}

ExitCode run(Invocation const& invocation) {
    auto const choice = dayChoice(invocation.values);
    auto const services = liveServices(invocation);
    auto const words = meetWords(*services);
    auto const reach = reachOf(invocation.values);
    auto const day = meetsOfDay(*services, choice);
    auto const meet = meetCalled(invocation.values.arguments().front(), day, invocation, words);
    auto const notDeleted = Texts::meetNotDeleted(meet.metName);
    auto const event = eventBehind(meet, *services->eventKitStore(), services->region()->currentCalendar());
    if (!event) {
        throw CommandError::refused(
            notDeleted, Texts::told(Meetings::EventKitMeetRepositoryError::eventNotFound().what()));
    }
    confirm(invocation, planOf(meet, *event, reach, words) + "\n");
    changing(notDeleted, [&] { carryOut(meet, *event, reach, *services); });
    services->widgetCenter()->reloadAllTimelines();
    invocation.console.confirmLine(Texts::meetDeleted(meet.metName));
    return ExitCode::done;
}

} // namespace

Command meetDeleteCommand() {
    return {
        .path = "meet delete",
        .summary = Texts::text("meet-delete-summary"),
        .description = Texts::text("meet-delete-description"),
        .options = withDayChoice(
            changeOptions(Texts::text("meet-delete-option-this"), Texts::text("meet-delete-option-future"))),
        .arguments = {{.name = "ID", .help = Texts::text("meet-argument-id")}},
        .examples = {{"quillora meet delete 8558", Texts::text("meet-delete-example-1")},
                     {"quillora meet delete 8558 --this --yes", Texts::text("meet-delete-example-2")}},
        .run = run,
    };
}

} // namespace Companion
