#include "Platform/EventStore/ICalendar/RuleDays.h"

#include "Platform/EventStore/ICalendar/BitSets.h"
#include "Platform/EventStore/ICalendar/CivilDays.h"

#include <cstdlib>

namespace Platform::ICalendar {
namespace {

// Bits 0, 7, 14, 21, 28: the days of a month that share the weekday of the 1st.
constexpr std::uint32_t everySeventhDay = 0x10204081;

// Sets the bit of a month for a day of the year, both counted from 0, if it lies in that month.
void setDayOfYear(std::uint32_t& days, std::int64_t dayOfYear, std::int64_t firstDayOfYear,
                  std::int32_t length) {
    auto const day = dayOfYear - firstDayOfYear;
    if (day >= 0 && day < length) days |= std::uint32_t(1) << day;
}

std::int64_t newYear(std::int32_t year) {
    return dayNumber({.year = year, .month = 1, .day = 1});
}

} // namespace

RuleMonth RuleMonth::withIndex(std::int64_t index) {
    auto const year = static_cast<std::int32_t>(floorDivide(index, 12));
    auto const month = static_cast<std::int32_t>(floorModulo(index, 12)) + 1;
    return {.index = index,
            .firstDay = dayNumber({.year = year, .month = month, .day = 1}),
            .year = year,
            .month = month,
            .length = daysInMonth(year, month)};
}

RuleMonth RuleMonth::ofDay(std::int64_t dayNumber) {
    auto const civil = civilDay(dayNumber);
    return {.index = std::int64_t(civil.year) * 12 + civil.month - 1,
            .firstDay = dayNumber - civil.day + 1,
            .year = civil.year,
            .month = civil.month,
            .length = daysInMonth(civil.year, civil.month)};
}

RuleDays::RuleDays(RecurrenceRule const& rule, std::int64_t startDay) : rule(rule) {
    auto const civil = civilDay(startDay);
    months = static_cast<std::uint32_t>(bitsOf(rule.byMonth));
    for (auto const day : rule.byMonthDay)
        setBit(day > 0 ? monthDays : monthDaysFromEnd, std::abs(day));
    for (auto const week : rule.byWeekNumber)
        setBit(week > 0 ? weekNumbers : weekNumbersFromEnd, std::abs(week));
    bool const mayCount = rule.frequency == Frequency::monthly ||
                          (rule.frequency == Frequency::yearly && rule.byWeekNumber.empty());
    for (auto const& day : rule.byDay) {
        if (day.ordinal != 0 && mayCount) {
            countsWeekdays = true;
        } else {
            weekdays |= 1U << day.weekday;
        }
    }
    countsWeekdaysInYear = countsWeekdays && rule.frequency == Frequency::yearly && rule.byMonth.empty();

    // What the rule leaves open comes from DTSTART.
    bool const namesDays = !rule.byDay.empty() || !rule.byMonthDay.empty() || !rule.byYearDay.empty();
    bool const isYearly = rule.frequency == Frequency::yearly;
    if (!namesDays && isYearly && !rule.byWeekNumber.empty()) {
        weekdays = 1U << weekdayOf(startDay);
    } else if (!namesDays && rule.byWeekNumber.empty()) {
        if (isYearly && months == 0) months = 1U << civil.month;
        if (isYearly || rule.frequency == Frequency::monthly) setBit(monthDays, civil.day);
        if (rule.frequency == Frequency::weekly) weekdays = 1U << weekdayOf(startDay);
    }
    filtersWeekdays = weekdays != 0 || countsWeekdays;
}

std::uint32_t RuleDays::in(RuleMonth const& month) const {
    if (months != 0 && !hasBit(months, month.month)) return 0;
    auto days = lowBits(month.length);
    if (monthDays != 0 || monthDaysFromEnd != 0) days &= ofMonthDays(month);
    if (filtersWeekdays) days &= ofWeekdays(month);
    if (!rule.byYearDay.empty()) days &= ofYearDays(month);
    if (!rule.byWeekNumber.empty()) days &= ofWeekNumbers(month);
    return days;
}

std::uint32_t RuleDays::ofMonthDays(RuleMonth const& month) const {
    auto days = static_cast<std::uint32_t>(monthDays >> 1);
    for (auto rest = monthDaysFromEnd; rest != 0; rest &= rest - 1) {
        auto const day = month.length - lowestBit(rest);
        if (day >= 0) days |= std::uint32_t(1) << day;
    }
    return days;
}

std::uint32_t RuleDays::ofWeekdays(RuleMonth const& month) const {
    std::uint32_t days = 0;
    auto const firstWeekday = weekdayOf(month.firstDay);
    for (std::uint64_t rest = weekdays; rest != 0; rest &= rest - 1) {
        days |= everySeventhDay << floorModulo(lowestBit(rest) - firstWeekday, 7);
    }
    if (!countsWeekdays) return days;

    auto const scopeStart = countsWeekdaysInYear ? newYear(month.year) : month.firstDay;
    auto const scopeLength = countsWeekdaysInYear ? daysInYear(month.year) : month.length;
    for (auto const& counted : rule.byDay) {
        if (counted.ordinal == 0) continue;
        auto const first = floorModulo(counted.weekday - weekdayOf(scopeStart), 7);
        auto const last = first + (scopeLength - 1 - first) / 7 * 7;
        auto const day =
            counted.ordinal > 0 ? first + 7 * (counted.ordinal - 1) : last + 7 * (counted.ordinal + 1);
        if (day < 0 || day >= scopeLength) continue;
        setDayOfYear(days, day, month.firstDay - scopeStart, month.length);
    }
    return days;
}

std::uint32_t RuleDays::ofYearDays(RuleMonth const& month) const {
    std::uint32_t days = 0;
    auto const firstDayOfYear = month.firstDay - newYear(month.year);
    auto const yearLength = daysInYear(month.year);
    for (auto const day : rule.byYearDay) {
        setDayOfYear(days, day > 0 ? day - 1 : yearLength + day, firstDayOfYear, month.length);
    }
    return days;
}

// A week belongs to the year that holds its fourth day, and so most of it.
std::uint32_t RuleDays::ofWeekNumbers(RuleMonth const& month) const {
    std::uint32_t days = 0;
    auto week = month.firstDay - floorModulo(weekdayOf(month.firstDay) - rule.weekStart, 7);
    for (; week < month.firstDay + month.length; week += 7) {
        auto const year = civilDay(week + 3).year;
        auto const number = (week + 3 - newYear(year)) / 7 + 1;
        auto const lateDecember = dayNumber({.year = year, .month = 12, .day = 28});
        auto const lastWeek = lateDecember - floorModulo(weekdayOf(lateDecember) - rule.weekStart, 7);
        auto const weeksInYear = (lastWeek + 3 - newYear(year)) / 7 + 1;
        if (!hasBit(weekNumbers, number) && !hasBit(weekNumbersFromEnd, weeksInYear - number + 1)) continue;
        auto const offset = week - month.firstDay;
        days |= offset >= 0 ? lowBits(7) << offset : lowBits(7) >> -offset;
    }
    return days;
}

} // namespace Platform::ICalendar
