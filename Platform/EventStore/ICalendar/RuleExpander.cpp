#include "Platform/EventStore/ICalendar/RuleExpander.h"

#include "Platform/EventStore/ICalendar/BitSets.h"
#include "Platform/EventStore/ICalendar/CivilDays.h"

#include <algorithm>

namespace Platform::ICalendar {
namespace {

constexpr std::int64_t minutesPerDay = 1440;
constexpr std::int64_t hoursPerDay = 24;

// The smallest multiple of `interval` away from `base` that is not below `value`.
std::int64_t alignedUp(std::int64_t value, std::int64_t base, std::int64_t interval) {
    return value + floorModulo(base - value, interval);
}

} // namespace

RuleExpander::RuleExpander(RecurrenceRule const& rule, std::int64_t start)
    : rule(rule),
      start(start),
      startDay(floorDivide(start, secondsPerDay)),
      startMonth(RuleMonth::ofDay(startDay).index),
      startWeek(startDay - floorModulo(weekdayOf(startDay) - rule.weekStart, 7)),
      ruleDays(rule, startDay) {
    setTimes();
}

void RuleExpander::setTimes() {
    auto const time = floorModulo(start, secondsPerDay);
    hours = static_cast<std::uint32_t>(bitsOf(rule.byHour));
    minutes = bitsOf(rule.byMinute);
    seconds = bitsOf(rule.bySecond);
    constexpr std::uint64_t leapSecond = std::uint64_t(1) << 60;
    if ((seconds & leapSecond) != 0) seconds = (seconds & ~leapSecond) | leapSecond >> 1;
    filtersTimes = hours != 0 || minutes != 0 || seconds != 0;

    // A unit that the frequency counts is open, a smaller one comes from DTSTART.
    if (hours == 0) hours = isSubDaily() ? lowBits(hoursPerDay) : 1U << (time / 3600);
    if (minutes == 0) {
        bool const isOpen = rule.frequency <= Frequency::minutely;
        minutes = isOpen ? (std::uint64_t(1) << 60) - 1 : std::uint64_t(1) << (time / 60 % 60);
    }
    if (seconds == 0) {
        bool const isOpen = rule.frequency == Frequency::secondly;
        seconds = isOpen ? (std::uint64_t(1) << 60) - 1 : std::uint64_t(1) << (time % 60);
    }
    timesPerDay = bitCount(hours) * bitCount(minutes) * bitCount(seconds);
}

// The days of a month that lie in a counted period of DAILY and WEEKLY rules. Of MONTHLY and YEARLY ones the
// month itself does, or is not visited; the others count units within a day.
std::uint32_t RuleExpander::daysOfInterval(RuleMonth const& month) const {
    if (rule.interval == 1) return lowBits(month.length);
    std::uint32_t days = 0;
    auto const end = month.firstDay + month.length;
    if (rule.frequency == Frequency::daily) {
        auto day = alignedUp(month.firstDay, startDay, rule.interval);
        for (; day < end; day += rule.interval)
            days |= std::uint32_t(1) << (day - month.firstDay);
        return days;
    }
    if (rule.frequency != Frequency::weekly) return lowBits(month.length);
    auto week = month.firstDay - floorModulo(weekdayOf(month.firstDay) - rule.weekStart, 7);
    for (; week < end; week += 7) {
        if (floorModulo((week - startWeek) / 7, rule.interval) != 0) continue;
        auto const offset = week - month.firstDay;
        days |= offset >= 0 ? lowBits(7) << offset : lowBits(7) >> -offset;
    }
    return days;
}

// The first day from `dayNumber` on that may lie in a counted period, of rules up to WEEKLY.
std::int64_t RuleExpander::nextDayOfInterval(std::int64_t dayNumber) const {
    switch (rule.frequency) {
    case Frequency::secondly:
        return floorDivide(alignedUp(dayNumber * secondsPerDay, start, rule.interval), secondsPerDay);
    case Frequency::minutely:
        return floorDivide(alignedUp(dayNumber * minutesPerDay, floorDivide(start, 60), rule.interval),
                           minutesPerDay);
    case Frequency::hourly:
        return floorDivide(alignedUp(dayNumber * hoursPerDay, floorDivide(start, 3600), rule.interval),
                           hoursPerDay);
    case Frequency::daily: return alignedUp(dayNumber, startDay, rule.interval);
    case Frequency::weekly: {
        auto const week = dayNumber - floorModulo(weekdayOf(dayNumber) - rule.weekStart, 7);
        auto const weeks = alignedUp((week - startWeek) / 7, 0, rule.interval);
        return std::max(dayNumber, startWeek + weeks * 7);
    }
    case Frequency::monthly:
    case Frequency::yearly: break;
    }
    return dayNumber;
}

// The first month from `monthIndex` on that may hold a day of a counted period.
std::int64_t RuleExpander::nextMonthOfInterval(std::int64_t monthIndex) const {
    if (rule.interval == 1) return monthIndex;
    if (rule.frequency == Frequency::monthly) return alignedUp(monthIndex, startMonth, rule.interval);
    if (rule.frequency == Frequency::yearly) {
        auto const year = floorDivide(monthIndex, 12);
        auto const next = alignedUp(year, floorDivide(startMonth, 12), rule.interval);
        return next == year ? monthIndex : next * 12;
    }
    auto const firstDay = RuleMonth::withIndex(monthIndex).firstDay;
    auto const next = nextDayOfInterval(firstDay);
    constexpr std::int64_t farAway = 62;
    if (next - firstDay < farAway) return monthIndex;
    return next > lastDayNumber ? RuleMonth::ofDay(lastDayNumber).index + 1 : RuleMonth::ofDay(next).index;
}

// Calls `take` with each month of [firstDay, lastDay] and its matching days within those; stops when it says
// no. False when it did or the steps ran out.
template <typename Take>
bool RuleExpander::forEachMonth(std::int64_t firstDay, std::int64_t lastDay, std::int64_t& steps,
                                Take take) const {
    if (firstDay > lastDay) return true;
    auto const lastIndex = RuleMonth::ofDay(lastDay).index;
    auto index = nextMonthOfInterval(RuleMonth::ofDay(firstDay).index);
    for (; index <= lastIndex; index = nextMonthOfInterval(index + 1)) {
        if (--steps < 0) return false;
        auto const month = RuleMonth::withIndex(index);
        auto days = ruleDays.in(month)&daysOfInterval(month);
        if (month.firstDay < firstDay) days &= ~lowBits(firstDay - month.firstDay);
        if (month.firstDay + month.length - 1 > lastDay) days &= lowBits(lastDay - month.firstDay + 1);
        if (!take(month, days)) return false;
    }
    return true;
}

// The time of day, in seconds, with `position` others of the same day before it.
std::int64_t RuleExpander::timeOfDay(std::int64_t position) const {
    auto const minuteCount = bitCount(minutes);
    auto const secondCount = bitCount(seconds);
    auto const hour = bitAt(hours, position / (minuteCount * secondCount));
    auto const minute = bitAt(minutes, position / secondCount % minuteCount);
    return hour * 3600 + minute * 60 + bitAt(seconds, position % secondCount);
}

// Rules that count days or more, without BYSETPOS: no day depends on another.
template <typename Take>
bool RuleExpander::forEachTimeByDay(std::int64_t from, std::int64_t to, std::int64_t& steps,
                                    Take take) const {
    auto const takeTimes = [&](std::int64_t midnight) {
        for (std::uint64_t hour = hours; hour != 0; hour &= hour - 1) {
            for (auto minute = minutes; minute != 0; minute &= minute - 1) {
                auto const atMinute = midnight + lowestBit(hour) * 3600 + lowestBit(minute) * 60;
                for (auto second = seconds; second != 0; second &= second - 1) {
                    auto const time = atMinute + lowestBit(second);
                    if (time < from || time > to) continue;
                    if (--steps < 0 || !take(time)) return false;
                }
            }
        }
        return true;
    };
    auto const firstDay = floorDivide(from, secondsPerDay);
    auto const lastDay = floorDivide(to, secondsPerDay);
    return forEachMonth(firstDay, lastDay, steps, [&](RuleMonth const& month, std::uint32_t days) {
        for (; days != 0; days &= days - 1) {
            if (!takeTimes((month.firstDay + lowestBit(days)) * secondsPerDay)) return false;
        }
        return true;
    });
}

// Calls `take` with the positions, from 0, that BYSETPOS picks out of `size`, ascending.
template <typename Take>
bool RuleExpander::forEachPosition(std::int64_t size, Take take) const {
    auto const& positions = rule.bySetPosition;
    // Both halves are sorted: those counted from the end, then those from the beginning. Merge them.
    auto fromEnd = positions.begin();
    auto const middle = std::ranges::lower_bound(positions, 0);
    auto fromStart = middle;
    std::int64_t previous = -1;
    while (fromEnd != middle || fromStart != positions.end()) {
        bool const takesEnd =
            fromStart == positions.end() || (fromEnd != middle && size + *fromEnd < *fromStart - 1);
        auto const position = takesEnd ? size + *fromEnd++ : std::int64_t(*fromStart++) - 1;
        if (position <= previous || position >= size) continue;
        previous = position;
        if (!take(position)) return false;
    }
    return true;
}

// Rules that count days or more, with BYSETPOS: a whole period decides.
template <typename Take>
bool RuleExpander::forEachTimeByPeriod(std::int64_t from, std::int64_t to, std::int64_t& steps,
                                       Take take) const {
    auto const lastDay = floorDivide(to, secondsPerDay);
    std::vector<std::int64_t> days;
    auto const addDays = [&](std::int64_t first, std::int64_t last) {
        for (auto day = first; day <= last;) {
            --steps;
            auto const month = RuleMonth::ofDay(day);
            auto matching = ruleDays.in(month) & ~lowBits(day - month.firstDay);
            if (month.firstDay + month.length - 1 > last) matching &= lowBits(last - month.firstDay + 1);
            for (; matching != 0; matching &= matching - 1)
                days.push_back(month.firstDay + lowestBit(matching));
            day = month.firstDay + month.length;
        }
    };
    auto day = floorDivide(from, secondsPerDay);
    for (;;) {
        // The period that `day` lies in, or the next one that the interval counts.
        std::int64_t first = 0;
        std::int64_t last = 0;
        if (rule.frequency == Frequency::yearly) {
            auto const year = alignedUp(civilDay(day).year, floorDivide(startMonth, 12), rule.interval);
            if (year > 9999) return true;
            first = RuleMonth::withIndex(year * 12).firstDay;
            last = first + daysInYear(static_cast<std::int32_t>(year)) - 1;
        } else if (rule.frequency == Frequency::monthly) {
            auto const index = alignedUp(RuleMonth::ofDay(day).index, startMonth, rule.interval);
            if (index > RuleMonth::ofDay(lastDayNumber).index) return true;
            auto const month = RuleMonth::withIndex(index);
            first = month.firstDay;
            last = first + month.length - 1;
        } else if (rule.frequency == Frequency::weekly) {
            auto const next = nextDayOfInterval(day);
            first = next - floorModulo(weekdayOf(next) - rule.weekStart, 7);
            last = first + 6;
        } else {
            first = nextDayOfInterval(day);
            last = first;
        }
        if (first > lastDay) return true;
        days.clear();
        addDays(first, last);
        bool const goesOn = forEachPosition(std::ssize(days) * timesPerDay, [&](std::int64_t position) {
            auto const dayOfTime = days[static_cast<std::size_t>(position / timesPerDay)];
            auto const time = dayOfTime * secondsPerDay + timeOfDay(position % timesPerDay);
            --steps;
            return time < from || (time <= to && take(time));
        });
        if (!goesOn || steps < 0) return false;
        day = last + 1;
    }
}

// The times of one matching day of HOURLY, MINUTELY and SECONDLY rules.
template <typename Take>
bool RuleExpander::forEachTimeWithinDay(std::int64_t day, std::int64_t from, std::int64_t to,
                                        std::int64_t& steps, Take take) const {
    auto const unit = rule.frequency == Frequency::hourly     ? 3600
                      : rule.frequency == Frequency::minutely ? 60
                                                              : 1;
    auto const midnight = day * secondsPerDay;
    auto const base = floorDivide(start, unit);
    auto const last = std::min(midnight + secondsPerDay - 1, to);
    auto const timesPerMinute = bitCount(seconds);
    auto const isOneOfOne = [](std::int32_t position) { return position == 1 || position == -1; };
    bool const takesOneOfOne =
        rule.bySetPosition.empty() || std::ranges::any_of(rule.bySetPosition, isOneOfOne);
    auto const takeAt = [&](std::int64_t time) {
        if (--steps < 0) return false;
        return time < from || (time <= to && take(time));
    };
    auto index = alignedUp(floorDivide(std::max(midnight, from), unit), base, rule.interval);
    for (; index * unit <= last; index += rule.interval) {
        if (--steps < 0) return false;
        auto const time = index * unit;
        auto const hour = (time - midnight) / 3600;
        auto const minute = (time - midnight) / 60 % 60;
        // Over an hour or a minute that is filtered out it leaps, to the last unit before its end.
        if (!hasBit(hours, hour)) {
            auto const nextHour = midnight + (hour + 1) * 3600;
            index = alignedUp(nextHour / unit, base, rule.interval) - rule.interval;
            continue;
        }
        bool const countsMinutes = unit < 3600;
        if (countsMinutes && !hasBit(minutes, minute)) {
            auto const nextMinute = midnight + hour * 3600 + (minute + 1) * 60;
            index = alignedUp(floorDivide(nextMinute, unit), base, rule.interval) - rule.interval;
            continue;
        }
        if (unit == 1) {
            bool const isTaken =
                hasBit(seconds, time - midnight - hour * 3600 - minute * 60) && takesOneOfOne;
            if (isTaken && !takeAt(time)) return false;
            continue;
        }
        auto const size = unit == 60 ? timesPerMinute : bitCount(minutes) * timesPerMinute;
        auto const takePosition = [&](std::int64_t position) {
            auto const minuteOffset = unit == 60 ? 0 : bitAt(minutes, position / timesPerMinute) * 60;
            return takeAt(time + minuteOffset + bitAt(seconds, position % timesPerMinute));
        };
        if (!rule.bySetPosition.empty()) {
            if (!forEachPosition(size, takePosition)) return false;
            continue;
        }
        for (std::int64_t position = 0; position < size; ++position) {
            if (!takePosition(position)) return false;
        }
    }
    return true;
}

// Calls `take` with the rule's times within [from, to], ascending; stops when it says no, at the end, or when
// the steps run out and fall below zero. True when it came to the last day without a stop.
template <typename Take>
bool RuleExpander::forEachTime(std::int64_t from, std::int64_t to, std::int64_t& steps, Take take) const {
    from = std::max(from, start);
    to = std::min(to, lastSecond);
    if (from > to) return true;
    if (!isSubDaily()) {
        return rule.bySetPosition.empty() ? forEachTimeByDay(from, to, steps, take)
                                          : forEachTimeByPeriod(from, to, steps, take);
    }
    auto const lastDay = floorDivide(to, secondsPerDay);
    return forEachMonth(
        floorDivide(from, secondsPerDay), lastDay, steps, [&](RuleMonth const& month, std::uint32_t days) {
            for (; days != 0; days &= days - 1) {
                if (!forEachTimeWithinDay(month.firstDay + lowestBit(days), from, to, steps, take))
                    return false;
            }
            return true;
        });
}

bool RuleExpander::expand(std::int64_t from, std::int64_t to, std::size_t limit, std::int64_t& steps,
                          std::vector<std::int64_t>& times) const {
    bool isFull = false;
    forEachTime(from, to, steps, [&](std::int64_t time) {
        isFull = times.size() >= limit;
        if (!isFull) times.push_back(time);
        return !isFull;
    });
    return !isFull && steps >= 0;
}

bool RuleExpander::yields(std::int64_t time) const {
    // One period is looked at, whose size is bounded.
    std::int64_t steps = 1'000'000;
    bool isFound = false;
    forEachTime(time, time, steps, [&isFound](std::int64_t) {
        isFound = true;
        return false;
    });
    return isFound;
}

// The end of a count that multiplication finds: every counted period yields equally many. -1 for other rules.
std::int64_t RuleExpander::closedCountEnd(std::int64_t count) const {
    bool const isPlain = rule.bySetPosition.empty() && !filtersTimes;
    auto const at = [this](std::int64_t periods, std::int64_t secondsPerPeriod, std::int64_t origin) {
        std::int64_t distance = 0;
        bool const isTooFar = __builtin_mul_overflow(periods, secondsPerPeriod, &distance) ||
                              __builtin_mul_overflow(distance, rule.interval, &distance) ||
                              distance > lastSecond - origin;
        return isTooFar ? lastSecond : origin + distance;
    };
    if (!isPlain) return -1;
    switch (rule.frequency) {
    case Frequency::secondly: return ruleDays.filters() ? -1 : at(count - 1, 1, start);
    case Frequency::minutely: return ruleDays.filters() ? -1 : at(count - 1, 60, start);
    case Frequency::hourly: return ruleDays.filters() ? -1 : at(count - 1, 3600, start);
    case Frequency::daily: return ruleDays.filters() ? -1 : at(count - 1, secondsPerDay, start);
    case Frequency::weekly: {
        if (ruleDays.filtersOthers()) return -1;
        // Bit n: the week's day n, counted from its first.
        std::uint64_t days = 0;
        for (std::int32_t day = 0; day < 7; ++day) {
            if (hasBit(ruleDays.plainWeekdays(), floorModulo(rule.weekStart + day, 7))) setBit(days, day);
        }
        auto const before = bitCount(days & lowBits(startDay - startWeek));
        auto const position = before + count - 1;
        auto const firstOfWeek =
            at(position / bitCount(days), 7 * secondsPerDay, start - (startDay - startWeek) * secondsPerDay);
        if (firstOfWeek == lastSecond) return lastSecond;
        return firstOfWeek + bitAt(days, position % bitCount(days)) * secondsPerDay;
    }
    case Frequency::monthly:
    case Frequency::yearly: break;
    }
    return -1;
}

RuleExpander::CountEnd RuleExpander::endOfCount(std::int64_t count, std::int64_t& steps) const {
    bool const yieldsStart = yields(start);
    if (yieldsStart) {
        auto const closed = closedCountEnd(count);
        if (closed != -1) return {.last = std::min(closed, lastSecond), .isCut = false};
    }
    auto rest = yieldsStart ? count : count - 1;
    if (rest <= 0) return {.last = start, .isCut = false};
    auto last = start;
    auto const take = [&rest, &last](std::int64_t time) {
        last = time;
        return --rest > 0;
    };
    auto from = start;
    bool const countsWholeMonths = !isSubDaily() && rule.bySetPosition.empty();
    if (countsWholeMonths) {
        // Whole months are counted by their days, up to the one in which the count ends. The first day may
        // have times before DTSTART, and so is taken singly.
        auto const endOfStartDay = startDay * secondsPerDay + secondsPerDay - 1;
        forEachTime(start, endOfStartDay, steps, take);
        if (rest <= 0) return {.last = last, .isCut = false};
        from = endOfStartDay + 1;
        bool const isWithinYears =
            forEachMonth(startDay + 1, lastDayNumber, steps, [&](RuleMonth const& month, std::uint32_t days) {
                from = std::max(from, month.firstDay * secondsPerDay);
                auto const times = bitCount(days) * timesPerDay;
                if (times >= rest) return false;
                rest -= times;
                return true;
            });
        if (isWithinYears) return {.last = lastSecond, .isCut = false};
    }
    if (steps >= 0) forEachTime(from, lastSecond, steps, take);
    if (rest <= 0) return {.last = last, .isCut = false};
    if (steps >= 0) return {.last = lastSecond, .isCut = false};
    return {.last = std::max(last, from - 1), .isCut = true};
}

} // namespace Platform::ICalendar
