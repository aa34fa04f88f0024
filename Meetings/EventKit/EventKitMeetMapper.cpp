#include "Meetings/EventKit/EventKitMeetMapper.h"

#include "Foundation/FatalError.h"
#include "Foundation/Numbers.h"
#include "Meetings/CGColorHexUtil.h"
#include "Meetings/EventKitSourceTypeEnum.h"
#include "Meetings/StableIdentifier.h"

#include <utility>

namespace Meetings::EventKitMeetMapper {
namespace {

Foundation::Date startOf(Platform::EKEvent const& event) {
    if (!event.startDate) Foundation::fatalError("the calendar store gave an event without a start");
    return *event.startDate;
}

Foundation::Date endOf(Platform::EKEvent const& event) {
    if (!event.endDate) Foundation::fatalError("the calendar store gave an event without an end");
    return *event.endDate;
}

Platform::EKCalendar const& calendarOf(Platform::EKEvent const& event) {
    if (!event.calendar) Foundation::fatalError("the calendar store gave an event without a calendar");
    return *event.calendar;
}

std::set<std::int64_t> weekdaysOf(Platform::EKRecurrenceRule const& rule) {
    std::set<std::int64_t> weekdays;
    for (auto const& day : rule.daysOfTheWeek)
        weekdays.insert(day.dayOfTheWeek);
    return weekdays;
}

Platform::EKRecurrenceRule weeklyRule(std::set<std::int64_t> const& weekdays) {
    Platform::EKRecurrenceRule rule = {.frequency = Platform::EKRecurrenceFrequency::weekly};
    for (auto const weekday : weekdays)
        rule.daysOfTheWeek.push_back({.dayOfTheWeek = weekday});
    return rule;
}

EventKitCalendarInfoEntity calendarInfo(Platform::EKCalendar const& calendar,
                                        Platform::Appearance const& appearance) {
    return {.eciId = calendar.calendarIdentifier,
            .eciTitle = calendar.title,
            .eciColorHex = CGColorHexUtil::hexString(calendar.cgColor, appearance)};
}

} // namespace

std::string identifier(Platform::EKEvent const& event) {
    if (event.eventIdentifier) return *event.eventIdentifier;
    return event.calendarItemIdentifier.value_or("");
}

Foundation::UUID stableId(Platform::EKEvent const& event) {
    auto const seconds = Foundation::shortestDecimal(startOf(event).secondsSince1970);
    return StableIdentifier::uuid(identifier(event) + "|" + seconds);
}

RecurrenceInfo recurrenceInfo(Platform::EKEvent const& event) {
    if (event.recurrenceRules.empty()) return {.frequency = MeetRecurrenceFrequency::none, .weekdays = {}};
    auto const& rule = event.recurrenceRules.front();
    switch (rule.frequency) {
    case Platform::EKRecurrenceFrequency::daily:
        return {.frequency = MeetRecurrenceFrequency::daily, .weekdays = {}};
    case Platform::EKRecurrenceFrequency::weekly:
        return {.frequency = MeetRecurrenceFrequency::weekly, .weekdays = weekdaysOf(rule)};
    case Platform::EKRecurrenceFrequency::monthly:
        return {.frequency = MeetRecurrenceFrequency::monthly, .weekdays = {}};
    case Platform::EKRecurrenceFrequency::yearly:
    case Platform::EKRecurrenceFrequency::other: break;
    }
    // A yearly event is shown as not repeating, on purpose: a meet knows no such rhythm.
    return {.frequency = MeetRecurrenceFrequency::none, .weekdays = {}};
}

MeetEntity toMeetEntity(Platform::EKEvent const& event, MeetRecurrenceFrequency frequency,
                        std::set<std::int64_t> recurringWeekdays, Platform::TextProvider const& texts,
                        Platform::Appearance const& appearance) {
    auto const start = startOf(event);
    auto const& calendar = calendarOf(event);
    return {
        .metId = stableId(event),
        .metName = event.title ? *event.title : texts.text("eventkit-meet-untitled"),
        .metDate = start,
        .metDescription = event.notes.value_or(""),
        .metDuration = endOf(event).timeIntervalSince(start),
        .metColor = {.hexValue = CGColorHexUtil::hexString(calendar.cgColor, appearance)},
        .metIsAllDay = event.isAllDay,
        .metLocation = event.location,
        .metUrl = event.url,
        .metCalendarName = calendar.title,
        .metCalendarIdentifier = calendar.calendarIdentifier,
        .metRecurrenceFrequency = frequency,
        .metRecurringWeekdays = std::move(recurringWeekdays),
        .metOriginalIdentifier = identifier(event),
        .metSource = MeetSource::eventKit,
    };
}

void applyRecurrence(MeetRecurrenceFrequency frequency, std::set<std::int64_t> const& weekdays,
                     Platform::EKEvent& event, Foundation::Calendar const& calendar) {
    switch (frequency) {
    case MeetRecurrenceFrequency::none: return;
    case MeetRecurrenceFrequency::daily:
        event.recurrenceRules.push_back({.frequency = Platform::EKRecurrenceFrequency::daily});
        return;
    case MeetRecurrenceFrequency::weekly:
        if (weekdays.empty()) {
            event.recurrenceRules.push_back(weeklyRule({calendar.components(startOf(event)).weekday}));
        } else {
            event.recurrenceRules.push_back(weeklyRule(weekdays));
        }
        return;
    case MeetRecurrenceFrequency::monthly:
        event.recurrenceRules.push_back({.frequency = Platform::EKRecurrenceFrequency::monthly,
                                         .daysOfTheMonth = {calendar.components(startOf(event)).day}});
        return;
    }
}

std::vector<EventKitAccountCalendarsEntity>
buildAccountCalendars(std::vector<std::shared_ptr<EventKitSourceRepresentable const>> const& sources,
                      Platform::Appearance const& appearance) {
    std::vector<EventKitAccountCalendarsEntity> accounts;
    for (auto const& source : sources) {
        EventKitAccountCalendarsEntity account = {
            .eacId = source->sourceIdentifier(),
            .eacAccountTitle = source->title(),
            .eacAccountType = std::string(EventKitSourceTypeEnum::description(source->sourceType())),
            .eacCalendars = {},
        };
        for (auto const& calendar : source->eventCalendars()) {
            account.eacCalendars.push_back(calendarInfo(calendar, appearance));
        }
        accounts.push_back(std::move(account));
    }
    return accounts;
}

} // namespace Meetings::EventKitMeetMapper
