#pragma once

#include "Platform/EventStore/ICalendar/RecurrenceRule.h"

#include <cstdint>

namespace Platform::ICalendar {

/// A month of the calendar.
struct RuleMonth {
    std::int64_t index;    ///< year × 12 + month − 1
    std::int64_t firstDay; ///< Day number of the 1st.
    std::int32_t year;
    std::int32_t month;
    std::int32_t length;

    static RuleMonth withIndex(std::int64_t index);
    static RuleMonth ofDay(std::int64_t dayNumber);
};

/// The days that the BY parts of a rule leave (RFC 5545 §3.3.10), month by month. Which periods the interval
/// counts is another matter.
class RuleDays {
public:
    /// `rule` must outlive this. What it leaves open comes from the day that the series starts on.
    RuleDays(RecurrenceRule const& rule, std::int64_t startDay);

    /// The days of a month that pass every filter, as bits from the 1st on.
    [[nodiscard]] std::uint32_t in(RuleMonth const& month) const;

    /// Whether any day is left out,
    [[nodiscard]] bool filters() const { return filtersWeekdays || filtersOthers(); }
    /// and for another reason than its weekday.
    [[nodiscard]] bool filtersOthers() const {
        return months != 0 || monthDays != 0 || monthDaysFromEnd != 0 || !rule.byYearDay.empty() ||
               !rule.byWeekNumber.empty();
    }

    /// The weekdays that are left, bit 0 being Sunday; none where they do not matter.
    [[nodiscard]] std::uint32_t plainWeekdays() const { return weekdays; }

private:
    [[nodiscard]] std::uint32_t ofMonthDays(RuleMonth const& month) const;
    [[nodiscard]] std::uint32_t ofWeekdays(RuleMonth const& month) const;
    [[nodiscard]] std::uint32_t ofYearDays(RuleMonth const& month) const;
    [[nodiscard]] std::uint32_t ofWeekNumbers(RuleMonth const& month) const;

    RecurrenceRule const& rule;

    // Bit n stands for the value n.
    std::uint32_t months = 0;
    std::uint64_t monthDays = 0;
    std::uint64_t monthDaysFromEnd = 0;
    std::uint32_t weekdays = 0;
    std::uint64_t weekNumbers = 0;
    std::uint64_t weekNumbersFromEnd = 0;
    bool filtersWeekdays = false;
    bool countsWeekdays = false;       // Some BYDAY has an ordinal that counts,
    bool countsWeekdaysInYear = false; // within the year, not the month.
};

} // namespace Platform::ICalendar
