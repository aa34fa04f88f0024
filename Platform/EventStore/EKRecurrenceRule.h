#pragma once

#include "Foundation/Date.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace Platform {

/// How often a series repeats; `other` is a rule that this list has no word for.
enum class EKRecurrenceFrequency : std::uint8_t { daily = 0, weekly = 1, monthly = 2, yearly = 3, other = 4 };

/// One weekday of a rule; `weekNumber` 0 is every week, 2 the second, -1 the last of the period.
struct EKRecurrenceDayOfWeek {
    std::int64_t dayOfTheWeek; ///< 1 = Sunday … 7 = Saturday; not checked here
    std::int64_t weekNumber = 0;

    bool operator==(EKRecurrenceDayOfWeek const&) const = default;
};

/// How an event repeats, as far as the packages need it. A store keeps the rest of a rule that it read.
struct EKRecurrenceRule {
    EKRecurrenceFrequency frequency;
    std::int64_t interval = 1;
    std::vector<EKRecurrenceDayOfWeek> daysOfTheWeek = {};
    std::vector<std::int64_t> daysOfTheMonth = {};
    std::optional<std::int64_t> occurrenceCount = std::nullopt;
    std::optional<Foundation::Date> endDate = std::nullopt;

    bool operator==(EKRecurrenceRule const&) const = default;
};

} // namespace Platform
