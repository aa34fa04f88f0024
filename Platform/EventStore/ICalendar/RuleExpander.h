#pragma once

#include "Platform/EventStore/ICalendar/RecurrenceRule.h"
#include "Platform/EventStore/ICalendar/RuleDays.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Platform::ICalendar {

/// Expands one rule on the wall clock of its DTSTART: all times are seconds from 1970-01-01 00:00 on that
/// clock. Works month by month with a bit for each day, and begins at the month that was asked for, however
/// far from DTSTART it lies. COUNT and UNTIL are the caller's: the first through `endOfCount`.
class RuleExpander {
public:
    /// `rule` must outlive the expander.
    RuleExpander(RecurrenceRule const& rule, std::int64_t start);

    /// Appends the rule's times within [from, to] that do not lie before DTSTART, ascending. Takes what it
    /// does off `steps`; false when those, or `limit` times, did not suffice.
    bool expand(std::int64_t from, std::int64_t to, std::size_t limit, std::int64_t& steps,
                std::vector<std::int64_t>& times) const;

    /// Whether the rule itself yields `time`.
    [[nodiscard]] bool yields(std::int64_t time) const;

    struct CountEnd {
        std::int64_t last; ///< Time of the occurrence that uses up the count, or the end of time.
        bool isCut;        ///< The steps did not suffice: `last` is as far as it got.
    };

    /// Where `count` occurrences end, DTSTART being the first of them even where the rule does not yield it.
    [[nodiscard]] CountEnd endOfCount(std::int64_t count, std::int64_t& steps) const;

private:
    void setTimes();

    [[nodiscard]] std::uint32_t daysOfInterval(RuleMonth const& month) const;
    [[nodiscard]] std::int64_t nextMonthOfInterval(std::int64_t monthIndex) const;
    [[nodiscard]] std::int64_t nextDayOfInterval(std::int64_t dayNumber) const;
    [[nodiscard]] std::int64_t timeOfDay(std::int64_t position) const;
    [[nodiscard]] bool isSubDaily() const { return rule.frequency <= Frequency::hourly; }
    [[nodiscard]] std::int64_t closedCountEnd(std::int64_t count) const;

    template <typename Take>
    bool forEachMonth(std::int64_t firstDay, std::int64_t lastDay, std::int64_t& steps, Take take) const;
    template <typename Take>
    bool forEachTime(std::int64_t from, std::int64_t to, std::int64_t& steps, Take take) const;
    template <typename Take>
    bool forEachTimeByDay(std::int64_t from, std::int64_t to, std::int64_t& steps, Take take) const;
    template <typename Take>
    bool forEachTimeByPeriod(std::int64_t from, std::int64_t to, std::int64_t& steps, Take take) const;
    template <typename Take>
    bool forEachTimeWithinDay(std::int64_t day, std::int64_t from, std::int64_t to, std::int64_t& steps,
                              Take take) const;
    template <typename Take>
    bool forEachPosition(std::int64_t size, Take take) const;

    RecurrenceRule const& rule;
    std::int64_t start;
    std::int64_t startDay;
    std::int64_t startMonth; // year × 12 + month − 1
    std::int64_t startWeek;  // Day number of the first day of DTSTART's week.

    RuleDays ruleDays;

    // Bit n stands for the value n.
    std::uint32_t hours = 0;
    std::uint64_t minutes = 0;
    std::uint64_t seconds = 0;
    bool filtersTimes = false;
    std::int64_t timesPerDay = 0;
};

} // namespace Platform::ICalendar
