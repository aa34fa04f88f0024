#include "Platform/EventStore/Folder/OccurrenceMapping.h"

#include "Foundation/Text.h"

#include <optional>
#include <utility>

namespace Platform {

namespace {

EKRecurrenceFrequency frequencyOf(ICalendar::Frequency frequency) {
    switch (frequency) {
    case ICalendar::Frequency::secondly:
    case ICalendar::Frequency::minutely:
    case ICalendar::Frequency::hourly: return EKRecurrenceFrequency::other;
    case ICalendar::Frequency::daily: return EKRecurrenceFrequency::daily;
    case ICalendar::Frequency::weekly: return EKRecurrenceFrequency::weekly;
    case ICalendar::Frequency::monthly: return EKRecurrenceFrequency::monthly;
    case ICalendar::Frequency::yearly: return EKRecurrenceFrequency::yearly;
    }
    return EKRecurrenceFrequency::other;
}

Foundation::Date instantOf(ICalendar::CalendarTime const& time, Foundation::TimeZone const& viewer) {
    auto const seconds = time.form == ICalendar::TimeForm::utc ? time.localSeconds
                                                               : viewer.resolveLocal(time.localSeconds).first;
    return {.secondsSince1970 = static_cast<double>(seconds)};
}

EKRecurrenceRule ruleOf(ICalendar::RecurrenceRule const& rule, Foundation::TimeZone const& viewer) {
    EKRecurrenceRule record{.frequency = frequencyOf(rule.frequency), .interval = rule.interval};
    for (auto const& day : rule.byDay) {
        record.daysOfTheWeek.push_back({.dayOfTheWeek = day.weekday + 1, .weekNumber = day.ordinal});
    }
    record.daysOfTheMonth.assign(rule.byMonthDay.begin(), rule.byMonthDay.end());
    record.occurrenceCount = rule.count;
    if (rule.until) record.endDate = instantOf(*rule.until, viewer);
    return record;
}

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// A text of blanks alone tells a reader no more than none. No more is decoded than is kept: folds and escapes
// take at most eight bytes for one.
std::optional<std::string> textOf(std::optional<ICalendar::PropertyValue> const& value) {
    if (!value) return std::nullopt;
    constexpr std::size_t widest = 8;
    auto text = ICalendar::PropertyValue(value->raw().substr(0, widest * longestEventText)).text();
    if (text.size() > longestEventText) {
        auto end = longestEventText;
        while (end > 0 && isContinuation(text[end]))
            --end;
        text.resize(end);
    }
    if (Foundation::Text::trimmingWhitespacesAndNewlines(text).empty()) return std::nullopt;
    return text;
}

} // namespace

std::string eventIdentifier(std::string_view calendarIdentifier, std::string_view uid) {
    std::string identifier(calendarIdentifier);
    identifier += ':';
    identifier += uid;
    return identifier;
}

EKEvent eventOfOccurrence(ICalendar::Occurrence const& occurrence, std::shared_ptr<EKCalendar const> calendar,
                          Foundation::TimeZone const& viewer) {
    auto const& component = *occurrence.event;
    EKEvent event{
        .eventIdentifier = eventIdentifier(calendar->calendarIdentifier, component.uid),
        .calendarItemIdentifier = component.uid,
        .title = textOf(component.summary),
        .startDate = occurrence.start,
        .endDate = occurrence.end,
        .isAllDay = occurrence.isAllDay,
        .notes = textOf(component.description),
        .location = textOf(component.location),
        .calendar = std::move(calendar),
        .occurrenceKey = occurrence.key,
        .sourceFile = Foundation::Text::sanitizedUTF8(occurrence.file->path),
        .sourceLine = component.line,
    };
    if (component.url) event.url = Foundation::URL::fromText(component.url->uri());
    if (!component.recurrenceId) {
        for (auto const& rule : component.rules)
            event.recurrenceRules.push_back(ruleOf(rule, viewer));
    }
    return event;
}

std::int64_t textBytes(EKEvent const& event) {
    std::size_t bytes = event.url ? event.url->absoluteString.size() : 0;
    for (auto const* const text :
         {&event.eventIdentifier, &event.calendarItemIdentifier, &event.title, &event.notes, &event.location})
        bytes += *text ? (*text)->size() : 0;
    return static_cast<std::int64_t>(bytes);
}

} // namespace Platform
