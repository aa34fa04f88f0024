#include "Applications/Companion/Commands.h"
#include "Applications/Companion/LaterMeets.h"
#include "Applications/Companion/MeetArguments.h"
#include "Applications/Companion/MeetChange.h"
#include "Applications/Companion/MeetTexts.h"
#include "Applications/Companion/NamedMeet.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Meetings/EventKit/EventKitMeetMapper.h"
#include "Meetings/EventKit/EventKitMeetRepositoryError.h"
#include "Meetings/MeetDomain.h"
#include "Platform/Clock/RegionSettings.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Companion {

using Meetings::MeetEntity;
using Platform::EKEvent;

namespace {

// One edit, from what was typed to the meet as it will be.
struct Edit {
    MeetArguments arguments;
    ChangeReach reach;
    MeetEntity before;
    MeetEntity after;
    EKEvent event;   ///< The store's record of the meet as it is.
    EKEvent changed; ///< The same as it will be.
    /// An occurrence that goes along, where the meet was changed by itself and so says nothing of them.
    std::optional<EKEvent> later;
    std::optional<Platform::EKCalendar> target; ///< The calendar that it goes to, if it does.

    [[nodiscard]] bool changesNothing() const {
        return !target && changed.title == event.title && changed.notes == event.notes &&
               changed.location == event.location && changed.url == event.url &&
               changed.startDate == event.startDate && changed.endDate == event.endDate &&
               changed.recurrenceRules == event.recurrenceRules;
    }
    [[nodiscard]] bool isOfASeries() const { return event.occurrenceKey.has_value(); }
    [[nodiscard]] bool movesSeries() const { return target && isOfASeries(); }
};

MeetEntity editedMeet(MeetEntity meet, MeetArguments const& arguments, Foundation::Calendar const& calendar) {
    auto const times = changedTimes(arguments, meet, calendar);
    writeFields(arguments, meet);
    meet.metDate = times.start;
    meet.metDuration = times.end.timeIntervalSince(times.start);
    return meet;
}

// The use case looks for the meet around its new start and takes what it finds there: of a meet that is moved
// far nothing, or another occurrence of its series.
bool findsTheMeet(Edit const& edit, Meetings::EventKitStoring& store, Foundation::Calendar const& calendar) {
    auto const start = calendar.dateByAddingDays(-1, edit.after.metDate);
    auto const end = calendar.dateByAddingDays(1, edit.after.metDate);
    if (!start || !end) return false;
    auto events = store.eventsMatching(store.predicateForEvents(*start, *end, std::nullopt));
    std::erase_if(events, [&](EKEvent const& event) {
        return Meetings::EventKitMeetMapper::identifier(event) != edit.before.metOriginalIdentifier;
    });
    auto found = std::ranges::find_if(events, [&](EKEvent const& event) {
        return calendar.isDateInSameMinute(*event.startDate, edit.after.metDate);
    });
    if (found == events.end()) found = events.begin();
    return found != events.end() && Meetings::EventKitMeetMapper::stableId(*found) == edit.before.metId;
}

void check(Edit const& edit, Meetings::EventKitStoring& store, Foundation::Calendar const& calendar) {
    checkLastDay(edit.arguments, edit.after.metDate, calendar);
    if (edit.arguments.repetition && edit.isOfASeries() && edit.reach != ChangeReach::fromThisOneOn)
        throw CommandError::wrongUse(Texts::repetitionNeedsFuture());
    bool const isMoreThanAMove = !edit.arguments.isEmpty() || edit.reach != ChangeReach::asTheUseCaseDoes;
    if (edit.movesSeries() && isMoreThanAMove) throw CommandError::wrongUse(Texts::seriesMovesAlone());
    if (edit.reach == ChangeReach::asTheUseCaseDoes && !findsTheMeet(edit, store, calendar))
        throw CommandError::wrongUse(Texts::movedTooFar());
    auto validated = edit.after;
    // A meet may last no time in its calendar; only a length that is typed must be one.
    if (!edit.arguments.givesALength()) validated.metDuration = std::max(validated.metDuration, 1.0);
    changing(Texts::meetNotChanged(edit.before.metName), [&] { Meetings::MeetDomain::validate(validated); });
}

std::string headingOf(Edit const& edit, MeetWords const& words) {
    auto const& meet = edit.before;
    if (edit.movesSeries()) return Texts::movesSeries(meet.metName);
    if (!edit.isOfASeries()) return Texts::changesMeet(meet.metName, words.when(meet));
    if (edit.reach == ChangeReach::fromThisOneOn) return Texts::changesFuture(meet.metName, words.when(meet));
    return Texts::changesOccurrence(meet.metName, words.when(meet));
}

// One line for each thing that an event and what becomes of it tell differently.
std::string differences(EKEvent const& before, EKEvent const& after, MeetWords const& words) {
    std::vector<std::vector<std::string>> rows;
    auto const add = [&](std::string const& label, std::string const& from, std::string const& to) {
        if (from != to) rows.push_back({label, Texts::shortened(from), "→", Texts::shortened(to)});
    };
    auto const link = [](EKEvent const& event) {
        return event.url.value_or(Foundation::URL{}).absoluteString;
    };
    auto const when = [&](EKEvent const& event) {
        return words.when(*event.startDate, *event.endDate, event.isAllDay);
    };
    auto const calendar = [](EKEvent const& event) {
        return Texts::calendarNamed(event.calendar->title, event.calendar->calendarIdentifier);
    };
    add(Texts::titleLabel(), before.title.value_or(""), after.title.value_or(""));
    add(Texts::calendarLabel(), calendar(before), calendar(after));
    add(Texts::whenLabel(), when(before), when(after));
    add(Texts::descriptionLabel(), before.notes.value_or(""), after.notes.value_or(""));
    add(Texts::placeLabel(), before.location.value_or(""), after.location.value_or(""));
    add(Texts::linkLabel(), link(before), link(after));
    add(Texts::repeatsLabel(), words.repetition(before.recurrenceRules),
        words.repetition(after.recurrenceRules));
    return alignedColumns(rows, "  ");
}

std::string planOf(Edit const& edit, MeetWords const& words, Foundation::Calendar const& calendar) {
    auto plan = headingOf(edit, words) + "\n";
    if (!edit.later) return plan + differences(edit.event, edit.changed, words);
    // How the series repeats is told of the later ones: this one bears no rule.
    auto changed = edit.changed;
    changed.recurrenceRules = edit.event.recurrenceRules;
    plan += differences(edit.event, changed, words);
    auto const later = followed(*edit.later, edit.event, edit.changed);
    // Past the last year there is nothing to tell of them.
    if (!calendar.dateByAddingMinutes(0, *later.endDate)) return plan;
    auto const ofLaterOnes = differences(*edit.later, later, words);
    if (ofLaterOnes.empty()) return plan;
    return plan + Texts::changesLaterOnes() + "\n" + ofLaterOnes;
}

// The meet as it is after its series has gone to the other calendar.
MeetEntity moveSeries(Edit const& edit, Composition::LiveServices& services) {
    requireReadiness(edit.before, services);
    auto const store = services.eventKitStore();
    auto first = store->eventWithIdentifier(edit.before.metOriginalIdentifier).value_or(edit.event);
    first.calendar = std::make_shared<Platform::EKCalendar const>(*edit.target);
    store->save(first, Platform::EKSpan::futureEvents);
    auto const start = edit.before.metDate;
    auto const end = start.addingTimeInterval(1);
    for (auto const& event : store->eventsMatching(store->predicateForEvents(start, end, std::nullopt))) {
        if (event.eventIdentifier == first.eventIdentifier && event.startDate == start)
            return meetOf(event, services);
    }
    return meetOf(first, services);
}

MeetEntity carryOut(Edit const& edit, Composition::LiveServices& services) {
    if (edit.movesSeries()) return moveSeries(edit, services);
    if (edit.reach == ChangeReach::asTheUseCaseDoes)
        return Foundation::runTask(meetingsApplication(services).editMeet(edit.after));
    requireReadiness(edit.before, services);
    EKEvent event = edit.changed;
    services.eventKitStore()->save(event, edit.reach == ChangeReach::fromThisOneOn
                                              ? Platform::EKSpan::futureEvents
                                              : Platform::EKSpan::thisEvent);
    return meetOf(event, services);
}

// Absent when it is to stay where it is.
std::optional<Platform::EKCalendar> targetOf(ArgumentValues const& values, EKEvent const& event,
                                             Meetings::EventKitStoring& store) {
    auto const identifier = values.option("--calendar");
    if (!identifier) return std::nullopt;
    auto target = store.calendarWithIdentifier(*identifier);
    if (!target) throw CommandError::wrongUse(Texts::unknownCalendar(*identifier));
    if (target->calendarIdentifier == event.calendar->calendarIdentifier) return std::nullopt;
    return target;
}

Edit editOf(Invocation const& invocation, Composition::LiveServices& services, MeetWords const& words) {
    auto const calendar = services.region()->currentCalendar();
    auto arguments = meetArguments(invocation.values, calendar);
    if (arguments.isEmpty() && !invocation.values.has("--calendar"))
        throw CommandError::wrongUse(Texts::nothingToChange());
    auto const day = meetsOfDay(services, dayChoice(invocation.values));
    auto const meet = meetCalled(invocation.values.arguments().front(), day, invocation, words);
    auto event = eventBehind(meet, *services.eventKitStore(), calendar);
    if (!event) {
        throw CommandError::refused(
            Texts::meetNotChanged(meet.metName),
            Texts::told(Meetings::EventKitMeetRepositoryError::eventNotFound().what()));
    }
    auto after = editedMeet(meet, arguments, calendar);
    auto target = targetOf(invocation.values, *event, *services.eventKitStore());
    if (arguments.isEmpty() && !target)
        throw CommandError::wrongUse(Texts::inThatCalendarAlready(meet.metName));
    auto reach = reachOf(invocation.values);
    // What the use case would leave unwritten or refuse, the store writes to the same one occurrence.
    bool const lastsNoTime = meet.metDuration == 0 && !arguments.givesALength();
    bool const goesBeyond = arguments.goesBeyondAMeet() || lastsNoTime || (target && !event->occurrenceKey);
    if (reach == ChangeReach::asTheUseCaseDoes && goesBeyond) reach = ChangeReach::thisOccurrence;
    auto changed = *event;
    changed.startDate = after.metDate;
    changed.endDate = endOf(after);
    if (target) changed.calendar = std::make_shared<Platform::EKCalendar const>(*target);
    writeFields(arguments, changed, calendar);
    std::optional<EKEvent> later;
    if (reach == ChangeReach::fromThisOneOn)
        later = unchangedOccurrence(*event, *services.eventKitStore(), calendar);
    return {.arguments = std::move(arguments),
            .reach = reach,
            .before = meet,
            .after = std::move(after),
            .event = *std::move(event),
            .changed = std::move(changed),
            .later = std::move(later),
            .target = std::move(target)};
}

ExitCode run(Invocation const& invocation) {
    auto const services = liveServices(invocation);
    auto const words = meetWords(*services);
    auto const calendar = services->region()->currentCalendar();
    auto const edit = editOf(invocation, *services, words);
    check(edit, *services->eventKitStore(), calendar);
    if (edit.changesNothing()) {
        finishChange(invocation, *services, edit.before, Texts::meetIsSoAlready(edit.before.metName));
        return ExitCode::done;
    }
    confirm(invocation, planOf(edit, words, calendar));

    std::optional<MeetEntity> stored;
    changing(Texts::meetNotChanged(edit.before.metName), [&] { stored = carryOut(edit, *services); });
    finishChange(invocation, *services, *stored,
                 Texts::meetChanged(stored->metName, words.when(*stored), stored->metId.uuidString()));
    return ExitCode::done;
}

std::vector<CommandOption> editOptions() {
    std::vector<CommandOption> options = {
        {.name = "--name", .valueName = "NAME", .help = Texts::text("meet-edit-option-name")},
        {.name = "--calendar",
         .valueName = "ID",
         .help = Texts::text("meet-edit-option-calendar"),
         .kind = ValueKind::calendar},
        {.name = "--repeat",
         .valueName = "RHYTHM",
         .help = Texts::text("meet-edit-option-repeat"),
         .choices = {"none", "daily", "weekly", "monthly", "yearly"}},
        {.name = "--json", .help = Texts::text("meet-edit-option-json")}};
    std::ranges::move(meetFieldOptions(), std::back_inserter(options));
    std::ranges::move(
        changeOptions(Texts::text("meet-edit-option-this"), Texts::text("meet-edit-option-future")),
        std::back_inserter(options));
    return withDayChoice(std::move(options));
}

} // namespace

Command meetEditCommand() {
    return {
        .path = "meet edit",
        .summary = Texts::text("meet-edit-summary"),
        .description = Texts::text("meet-edit-description"),
        .options = editOptions(),
        .arguments = {{.name = "ID", .help = Texts::text("meet-argument-id")}},
        .examples = {{"quillora meet edit 8558 --start 10:00", Texts::text("meet-edit-example-1")},
                     {"quillora meet edit 8558 --future --duration 30m --yes",
                      Texts::text("meet-edit-example-2")},
                     {"quillora meet edit 8558 --calendar quillora-native-calendar",
                      Texts::text("meet-edit-example-3")}},
        .run = run,
    };
}

} // namespace Companion
