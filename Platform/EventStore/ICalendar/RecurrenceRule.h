#pragma once

#include "Platform/EventStore/ICalendar/CalendarTime.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace Platform::ICalendar {

enum class Frequency : std::uint8_t { secondly, minutely, hourly, daily, weekly, monthly, yearly };

/// A BYDAY element; `ordinal` 0 is every such weekday, 2 the second, -1 the last of the period.
struct WeekdayRule {
    std::int32_t weekday; ///< 0 = Sunday … 6 = Saturday
    std::int32_t ordinal;

    friend auto operator<=>(WeekdayRule const&, WeekdayRule const&) = default;
};

/// A RECUR value (RFC 5545 §3.3.10). Lists are sorted and without duplicates; an empty one is an absent part.
struct RecurrenceRule {
    Frequency frequency;
    std::int64_t interval = 1; ///< At least 1.
    std::optional<std::int64_t> count = std::nullopt;
    std::optional<CalendarTime> until = std::nullopt;
    std::int32_t weekStart = 1; ///< As `WeekdayRule::weekday`; Monday unless given.
    std::vector<std::int32_t> bySecond = {};
    std::vector<std::int32_t> byMinute = {};
    std::vector<std::int32_t> byHour = {};
    std::vector<WeekdayRule> byDay = {};
    std::vector<std::int32_t> byMonthDay = {};
    std::vector<std::int32_t> byYearDay = {};
    std::vector<std::int32_t> byWeekNumber = {};
    std::vector<std::int32_t> byMonth = {};
    std::vector<std::int32_t> bySetPosition = {};

    friend bool operator==(RecurrenceRule const&, RecurrenceRule const&) = default;
};

} // namespace Platform::ICalendar
