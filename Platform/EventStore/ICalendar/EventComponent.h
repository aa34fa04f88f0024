#pragma once

#include "Platform/EventStore/ICalendar/CalendarTime.h"
#include "Platform/EventStore/ICalendar/PropertyValue.h"
#include "Platform/EventStore/ICalendar/RecurrenceRule.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Platform::ICalendar {

enum class EventStatus : std::uint8_t { none, tentative, confirmed, cancelled };

/// One value of an RDATE; a PERIOD brings its own end or duration.
struct RecurrenceDate {
    CalendarTime start;
    std::optional<CalendarTime> end = std::nullopt;
    std::optional<CalendarDuration> duration = std::nullopt;
};

/// A VEVENT (RFC 5545 §3.6.1) as it stands in its file: a single event, the master of a series, or with a
/// `recurrenceId` the override of one occurrence. Its texts point into the file's bytes.
struct EventComponent {
    std::string uid; ///< Made from the content where the file gives none; never empty.
    bool hasUID;     ///< Whether the file gives one.
    CalendarTime start;
    std::optional<CalendarTime> end = std::nullopt;          ///< Exclusive; not before `start`.
    std::optional<CalendarDuration> duration = std::nullopt; ///< Only without `end`; not negative.
    std::optional<PropertyValue> summary = std::nullopt;
    std::optional<PropertyValue> description = std::nullopt;
    std::optional<PropertyValue> location = std::nullopt;
    std::optional<PropertyValue> url = std::nullopt;
    EventStatus status = EventStatus::none;
    std::int64_t sequence = 0;
    std::int64_t stamp = 0; ///< DTSTAMP in UTC seconds; decides between equal sequences.
    std::vector<RecurrenceRule> rules = {};
    std::vector<RecurrenceRule> exceptionRules = {};
    std::vector<RecurrenceDate> recurrenceDates = {};
    std::vector<CalendarTime> exceptionDates = {};
    std::optional<CalendarTime> recurrenceId = std::nullopt;
    bool isThisAndFuture = false; ///< RANGE=THISANDFUTURE
    std::int64_t line = 0;        ///< Of BEGIN:VEVENT, from 1.
    std::size_t offset = 0;       ///< Of the first byte of BEGIN:VEVENT in the file.
    std::size_t length = 0;       ///< Bytes to the end of END:VEVENT, its line break included.

    [[nodiscard]] bool isAllDay() const { return start.form == TimeForm::date; }
    [[nodiscard]] bool isRecurring() const { return !rules.empty() || !recurrenceDates.empty(); }
};

} // namespace Platform::ICalendar
