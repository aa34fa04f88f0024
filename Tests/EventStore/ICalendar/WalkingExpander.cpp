#include "Tests/EventStore/ICalendar/WalkingExpander.h"

#include <algorithm>
#include <chrono>
#include <set>

namespace Platform::ICalendar {
namespace {

using std::chrono::days;
using std::chrono::local_days;
using std::chrono::year;
using std::chrono::year_month_day;

constexpr std::int64_t day = 86400;

bool has(std::vector<std::int32_t> const& list, std::int64_t value) {
    return std::ranges::find(list, value) != list.end();
}

std::int64_t floorDiv(std::int64_t value, std::int64_t by) {
    auto quotient = value / by;
    if (value % by < 0) --quotient;
    return quotient;
}

std::int32_t weekday(local_days date) {
    return static_cast<std::int32_t>(std::chrono::weekday(date).c_encoding());
}

local_days weekStart(local_days date, std::int32_t first) {
    while (weekday(date) != first)
        date -= days(1);
    return date;
}

// The first day of week 1: the first week with at least four days in the year.
local_days firstWeek(year of, std::int32_t first) {
    local_days const newYear(of / 1 / 1);
    auto const start = weekStart(newYear, first);
    return newYear - start <= days(3) ? start : start + days(7);
}

bool isInWeeks(RecurrenceRule const& rule, local_days date) {
    auto const civil = year_month_day(date);
    for (auto of = civil.year() - std::chrono::years(1); of <= civil.year() + std::chrono::years(1);
         of += std::chrono::years(1)) {
        auto const first = firstWeek(of, rule.weekStart);
        auto const next = firstWeek(of + std::chrono::years(1), rule.weekStart);
        if (date < first || date >= next) continue;
        auto const number = (date - first).count() / 7 + 1;
        auto const weeks = (next - first).count() / 7;
        return has(rule.byWeekNumber, number) || has(rule.byWeekNumber, number - weeks - 1);
    }
    return false;
}

bool isOrdinal(local_days date, local_days first, local_days last, WeekdayRule const& rule) {
    if (weekday(date) != rule.weekday) return false;
    std::int32_t fromStart = 1;
    for (auto other = date - days(7); other >= first; other -= days(7))
        ++fromStart;
    std::int32_t fromEnd = 1;
    for (auto other = date + days(7); other <= last; other += days(7))
        ++fromEnd;
    return rule.ordinal == fromStart || rule.ordinal == -fromEnd;
}

bool passesWeekdays(RecurrenceRule const& rule, local_days date) {
    auto const civil = year_month_day(date);
    bool const byMonth = rule.frequency == Frequency::monthly ||
                         (rule.frequency == Frequency::yearly && !rule.byMonth.empty());
    bool const byYear = rule.frequency == Frequency::yearly && rule.byMonth.empty();
    local_days const monthStart(civil.year() / civil.month() / 1);
    local_days const monthEnd(civil.year() / civil.month() / std::chrono::last);
    local_days const yearStart(civil.year() / 1 / 1);
    local_days const yearEnd(civil.year() / 12 / 31);
    return std::ranges::any_of(rule.byDay, [&](WeekdayRule const& one) {
        bool const counts = one.ordinal != 0 && rule.byWeekNumber.empty();
        if (counts && byMonth) return isOrdinal(date, monthStart, monthEnd, one);
        if (counts && byYear) return isOrdinal(date, yearStart, yearEnd, one);
        return weekday(date) == one.weekday;
    });
}

bool passesDays(RecurrenceRule const& rule, local_days date, local_days startDate) {
    auto const civil = year_month_day(date);
    auto const start = year_month_day(startDate);
    auto const month = static_cast<unsigned>(civil.month());
    auto const dayOfMonth = static_cast<std::int64_t>(static_cast<unsigned>(civil.day()));
    auto const length = static_cast<std::int64_t>(
        static_cast<unsigned>(year_month_day(civil.year() / civil.month() / std::chrono::last).day()));
    auto const dayOfYear = (date - local_days(civil.year() / 1 / 1)).count() + 1;
    auto const yearLength = civil.year().is_leap() ? 366 : 365;

    if (!rule.byMonth.empty() && !has(rule.byMonth, month)) return false;
    if (!rule.byMonthDay.empty() && !has(rule.byMonthDay, dayOfMonth) &&
        !has(rule.byMonthDay, dayOfMonth - length - 1)) {
        return false;
    }
    if (!rule.byYearDay.empty() && !has(rule.byYearDay, dayOfYear) &&
        !has(rule.byYearDay, dayOfYear - yearLength - 1)) {
        return false;
    }
    if (!rule.byWeekNumber.empty() && !isInWeeks(rule, date)) return false;
    if (!rule.byDay.empty()) return passesWeekdays(rule, date);

    bool const isOpen = rule.byMonthDay.empty() && rule.byYearDay.empty();
    if (!isOpen) return true;
    bool const isSameWeekday = weekday(date) == weekday(startDate);
    if (rule.frequency == Frequency::yearly && !rule.byWeekNumber.empty()) return isSameWeekday;
    if (!rule.byWeekNumber.empty()) return true;
    if (rule.frequency == Frequency::weekly) return isSameWeekday;
    if (rule.frequency == Frequency::monthly) return civil.day() == start.day();
    if (rule.frequency == Frequency::yearly) {
        return civil.day() == start.day() && (!rule.byMonth.empty() || civil.month() == start.month());
    }
    return true;
}

// Which period a time lies in, counted from anywhere.
std::int64_t period(RecurrenceRule const& rule, std::int64_t time) {
    local_days const date{days(floorDiv(time, day))};
    auto const civil = year_month_day(date);
    auto const years = static_cast<int>(civil.year());
    switch (rule.frequency) {
    case Frequency::secondly: return time;
    case Frequency::minutely: return floorDiv(time, 60);
    case Frequency::hourly: return floorDiv(time, 3600);
    case Frequency::daily: return floorDiv(time, day);
    case Frequency::weekly:
        return floorDiv(weekStart(date, rule.weekStart).time_since_epoch().count() + 700, 7);
    case Frequency::monthly: return years * 12 + static_cast<int>(static_cast<unsigned>(civil.month()));
    case Frequency::yearly: return years;
    }
    return 0;
}

// The times of day that a day may have, whatever the interval.
std::vector<std::int64_t> timesOfDay(RecurrenceRule const& rule, std::int64_t start) {
    auto const time = start - floorDiv(start, day) * day;
    std::vector<std::int64_t> times;
    for (std::int64_t second = 0; second < day; ++second) {
        auto const passes = [&](std::vector<std::int32_t> const& list, std::int64_t value, std::int64_t given,
                                Frequency open) {
            if (!list.empty()) return has(list, value) || (value == 59 && has(list, 60));
            return rule.frequency <= open || value == given;
        };
        // Whole hours and minutes are left out at once, or this would take minutes itself.
        if (!passes(rule.byHour, second / 3600, time / 3600, Frequency::hourly)) {
            second += 3599;
            continue;
        }
        if (!passes(rule.byMinute, second / 60 % 60, time / 60 % 60, Frequency::minutely)) {
            second += 59;
            continue;
        }
        if (passes(rule.bySecond, second % 60, time % 60, Frequency::secondly)) times.push_back(second);
    }
    return times;
}

std::vector<std::int64_t> positions(RecurrenceRule const& rule, std::vector<std::int64_t> const& times) {
    if (rule.bySetPosition.empty()) return times;
    std::set<std::int64_t> chosen;
    auto const size = static_cast<std::int64_t>(times.size());
    for (auto const position : rule.bySetPosition) {
        auto const index = position > 0 ? position - 1 : size + position;
        if (index >= 0 && index < size) chosen.insert(times[static_cast<std::size_t>(index)]);
    }
    return {chosen.begin(), chosen.end()};
}

} // namespace

std::vector<std::int64_t> walk(RecurrenceRule const& rule, std::int64_t start, std::int64_t last) {
    local_days const startDate{days(floorDiv(start, day))};
    auto const firstPeriod = period(rule, start);
    auto const times = timesOfDay(rule, start);
    std::set<std::int64_t> found = {start};
    std::vector<std::int64_t> ofPeriod;
    auto present = firstPeriod;
    auto const close = [&] {
        if ((present - firstPeriod) % rule.interval == 0) {
            for (auto const time : positions(rule, ofPeriod)) {
                if (time >= start && time <= last) found.insert(time);
            }
        }
        ofPeriod.clear();
    };
    // A year before and after, for the periods that the ends cut.
    for (auto date = startDate - days(366); date <= local_days{days(last / day + 366)}; date += days(1)) {
        if (!passesDays(rule, date, startDate)) continue;
        for (auto const time : times) {
            auto const moment = date.time_since_epoch().count() * day + time;
            auto const ofMoment = period(rule, moment);
            if (ofMoment != present) close();
            present = ofMoment;
            ofPeriod.push_back(moment);
        }
    }
    close();
    std::vector<std::int64_t> result;
    for (auto const time : found) {
        if (rule.until && time > rule.until->localSeconds) break;
        if (rule.count && static_cast<std::int64_t>(result.size()) == *rule.count) break;
        result.push_back(time);
    }
    return result;
}

} // namespace Platform::ICalendar
