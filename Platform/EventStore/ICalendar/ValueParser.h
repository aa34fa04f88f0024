#pragma once

#include "Platform/EventStore/ICalendar/CalendarTime.h"
#include "Platform/EventStore/ICalendar/EventComponent.h"
#include "Platform/EventStore/ICalendar/RecurrenceRule.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>

/// The value types of RFC 5545 §3.3 that events need. All take unfolded text.
namespace Platform::ICalendar {

/// What a property's parameters say about its times.
struct TimeParameters {
    bool isDate = false;                              ///< VALUE=DATE
    std::optional<std::uint32_t> zone = std::nullopt; ///< Index of its TZID.
};

/// A DATE or DATE-TIME; a value of eight digits is a DATE whatever the parameters say. Absent for anything
/// that names no moment of the years 1…9999.
std::optional<CalendarTime> parseTime(std::string_view text, TimeParameters parameters);

/// A DURATION of at most 9999 years; a negative one keeps its sign. Absent for anything else.
std::optional<CalendarDuration> parseDuration(std::string_view text);

/// One value of an RDATE: a time, or a PERIOD that does not end before it starts.
std::optional<RecurrenceDate> parseRecurrenceDate(std::string_view text, TimeParameters parameters);

/// A UTC-OFFSET in seconds. Absent for anything of a day or more.
std::optional<std::int32_t> parseOffset(std::string_view text);

/// A RECUR value, or a sentence's end that says why it is none.
std::expected<RecurrenceRule, std::string> parseRule(std::string_view text);

} // namespace Platform::ICalendar
