#include "Applications/Companion/CalendarAccounts.h"
#include "Applications/Companion/Commands.h"
#include "Applications/Companion/MeetArguments.h"
#include "Applications/Companion/MeetChange.h"
#include "Applications/Companion/MeetTexts.h"
#include "Applications/Companion/NamedMeet.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Meetings/EventKit/EventKitMeetRepositoryError.h"
#include "Meetings/MeetDomain.h"
#include "Platform/Clock/Clock.h"
#include "Platform/Clock/RegionSettings.h"
#include "Platform/Resources/TextProvider.h"
#include "WidgetExtension/ScheduleWidgetDayOffsetStore.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Companion {

using Meetings::MeetEntity;

namespace {

std::chrono::local_days chosenDay(DayChoice const& choice, Composition::LiveServices& services) {
    if (choice.day) return *choice.day;
    auto const offset =
        choice.offset.value_or(WidgetExtension::ScheduleWidgetDayOffsetStore::load(*services.files()));
    auto const calendar = services.region()->currentCalendar();
    auto const date = calendar.dateByAddingDays(offset, services.clock()->now());
    if (!date) throw CommandError::wrongUse(Texts::noSuchDay(offset));
    return calendar.day(*date);
}

MeetEntity meetToAdd(MeetArguments const& arguments, MeetTimes const& times) {
    MeetEntity meet = {
        .metId = Foundation::UUID::random(), // The store gives it another.
        .metName = "",
        .metDate = times.start,
        .metDescription = "",
        .metDuration = times.end.timeIntervalSince(times.start),
        .metColor = {.hexValue = ""},
        .metIsAllDay = arguments.isAllDay,
        .metLocation = std::nullopt,
        .metUrl = std::nullopt,
        .metCalendarName = "",
        .metCalendarIdentifier = "",
        .metRecurrenceFrequency = Meetings::MeetRecurrenceFrequency::none,
        .metRecurringWeekdays = {},
        .metOriginalIdentifier = "",
        .metSource = Meetings::MeetSource::eventKit,
    };
    writeFields(arguments, meet);
    return meet;
}

Platform::EKCalendar targetCalendar(Composition::LiveServices& services,
                                    std::optional<std::string> const& identifier) {
    auto const store = services.eventKitStore();
    auto calendar = identifier ? store->calendarWithIdentifier(*identifier) : std::nullopt;
    if (!calendar) calendar = store->defaultCalendarForNewEvents();
    if (!calendar) {
        throw Meetings::EventKitMeetRepositoryError::saveFailed(
            services.meetingsTexts()->text("eventkit-meet-no-default-calendar"));
    }
    return *std::move(calendar);
}

// The use case writes no whole days, place, link, or end of a repetition, so such a meet goes to the store as
// the event that it is.
MeetEntity addToStore(MeetArguments const& arguments, MeetTimes const& times,
                      Composition::LiveServices& services, std::optional<std::string> const& calendar) {
    Meetings::MeetDomain::validate(meetToAdd(arguments, times));
    auto const store = services.eventKitStore();
    auto event = store->makeEvent();
    event.startDate = times.start;
    event.endDate = times.end;
    event.isAllDay = arguments.isAllDay;
    event.calendar = std::make_shared<Platform::EKCalendar const>(targetCalendar(services, calendar));
    writeFields(arguments, event, services.region()->currentCalendar());
    store->save(event, Platform::EKSpan::thisEvent);
    return meetOf(event, services);
}

ExitCode run(Invocation const& invocation) {
    auto const services = liveServices(invocation);
    auto const calendar = services->region()->currentCalendar();
    auto const arguments = meetArguments(invocation.values, calendar);
    auto const times = newTimes(arguments, chosenDay(dayChoice(invocation.values), *services), calendar);
    checkLastDay(arguments, times.start, calendar);
    auto const target = invocation.values.option("--calendar");
    static_cast<void>(requiredConfiguration(*services));
    // Also asks for access, which the store by itself does not.
    auto const accounts = availableAccounts(*services);
    if (target && !calendarTitle(accounts, *target))
        throw CommandError::wrongUse(Texts::unknownCalendar(*target));

    std::optional<MeetEntity> added;
    changing(Texts::meetNotAdded(), [&] {
        added = arguments.goesBeyondAMeet()
                    ? addToStore(arguments, times, *services, target)
                    : Foundation::runTask(
                          meetingsApplication(*services, target).createMeet(meetToAdd(arguments, times)));
    });
    finishChange(invocation, *services, *added,
                 Texts::meetAdded(added->metName, meetWords(*services).when(*added), added->metCalendarName,
                                  added->metId.uuidString()));
    return ExitCode::done;
}

std::vector<CommandOption> addOptions() {
    std::vector<CommandOption> options = {
        {.name = "--name",
         .valueName = "NAME",
         .help = Texts::text("meet-add-option-name"),
         .isRequired = true},
        {.name = "--all-day", .help = Texts::text("meet-add-option-all-day")},
        {.name = "--calendar",
         .valueName = "ID",
         .help = Texts::text("meet-add-option-calendar"),
         .kind = ValueKind::calendar},
        {.name = "--repeat",
         .valueName = "RHYTHM",
         .help = Texts::text("meet-add-option-repeat"),
         .choices = {"daily", "weekly", "monthly", "yearly"}},
        {.name = "--json", .help = Texts::text("meet-add-option-json")}};
    std::ranges::move(meetFieldOptions(), std::back_inserter(options));
    return withDayChoice(std::move(options));
}

} // namespace

Command meetAddCommand() {
    return {
        .path = "meet add",
        .summary = Texts::text("meet-add-summary"),
        .description = Texts::text("meet-add-description"),
        .options = addOptions(),
        .examples = {{"quillora meet add --name Tea --start 15:30", Texts::text("meet-add-example-1")},
                     {"quillora meet add --name Run --start 07:00 --repeat weekly --weekdays mon,wed",
                      Texts::text("meet-add-example-2")},
                     {"quillora meet add --name Fair --all-day --start 2026-03-11 --end 2026-03-13",
                      Texts::text("meet-add-example-3")}},
        .run = run,
    };
}

} // namespace Companion
