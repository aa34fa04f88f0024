#include "Platform/EventStore/ICalendar/RuleShift.h"

#include "Platform/EventStore/ICalendar/CivilDays.h"

#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace Platform::ICalendar {
namespace {

class RuleMove {
public:
    RuleMove(RuleText& text, RecurrenceRule const& rule, MovedTime const& occurrence)
        : text(text),
          rule(rule),
          beforeDay(floorDivide(occurrence.before, secondsPerDay)),
          afterDay(floorDivide(occurrence.after, secondsPerDay)),
          beforeTime(floorModulo(occurrence.before, secondsPerDay)),
          afterTime(floorModulo(occurrence.after, secondsPerDay)) {}

    bool moveTimes(bool becomesAllDay) {
        if (becomesAllDay && rule.frequency <= Frequency::hourly) return false;
        if (beforeTime == afterTime && !becomesAllDay) return true;
        bool const isPositional = !rule.bySetPosition.empty() && rule.frequency <= Frequency::daily;
        if (isPositional) return false;
        return moveTime("BYHOUR", rule.byHour, beforeTime / 3600, afterTime / 3600, becomesAllDay) &&
               moveTime("BYMINUTE", rule.byMinute, beforeTime / 60 % 60, afterTime / 60 % 60,
                        becomesAllDay) &&
               moveTime("BYSECOND", rule.bySecond, beforeTime % 60, afterTime % 60, becomesAllDay);
    }

    bool moveDays() {
        if (beforeDay == afterDay) return true;
        bool const isTangled =
            !rule.byYearDay.empty() || !rule.byWeekNumber.empty() || !rule.bySetPosition.empty();
        if (isTangled) return false;
        switch (rule.frequency) {
        case Frequency::secondly:
        case Frequency::minutely:
        case Frequency::hourly: return rule.byDay.empty() && rule.byMonthDay.empty() && rule.byMonth.empty();
        case Frequency::daily: return rule.byMonthDay.empty() && rule.byMonth.empty() && moveWeekdays();
        case Frequency::weekly:
            if (!rule.byMonth.empty() || !rule.byMonthDay.empty()) return false;
            // Weeks that begin as much later hold together what they held.
            if (rule.interval > 1 && !rule.byDay.empty())
                text.set("WKST", std::string(weekdayName(movedWeekday(rule.weekStart))));
            return moveWeekdays();
        case Frequency::monthly: return rule.byMonth.empty() && moveDayOfMonth(shortestMonth);
        case Frequency::yearly: return moveDayOfYear();
        }
        return false;
    }

private:
    bool moveTime(std::string_view name, std::vector<std::int32_t> const& values, std::int64_t before,
                  std::int64_t after, bool becomesAllDay) {
        if (values.empty()) return true;
        if (values.size() > 1 || values.front() != before) return before == after && !becomesAllDay;
        if (becomesAllDay) {
            text.remove(name);
        } else {
            text.set(name, std::to_string(after));
        }
        return true;
    }

    [[nodiscard]] std::int32_t movedWeekday(std::int32_t weekday) const {
        return static_cast<std::int32_t>(floorModulo(weekday + afterDay - beforeDay, 7));
    }

    bool moveWeekdays() {
        if (rule.byDay.empty()) return true;
        std::string list;
        for (auto const& day : rule.byDay) {
            if (day.ordinal != 0) return false;
            if (!list.empty()) list += ',';
            list += weekdayName(movedWeekday(day.weekday));
        }
        text.set("BYDAY", std::move(list));
        return true;
    }

    // One day of the month, named by its number or as a weekday; unnamed it is the start's own. `commonDays`
    // are those that all months of the rule have.
    bool moveDayOfMonth(std::int32_t commonDays) {
        auto const before = civilDay(beforeDay);
        auto const after = civilDay(afterDay);
        if (before.year != after.year || before.month != after.month) return false;
        auto const length = daysInMonth(before.year, before.month);
        if (rule.byDay.empty() && rule.byMonthDay.empty())
            return areCommon(before.day, after.day, commonDays);
        if (rule.byDay.empty()) return moveNumber(before.day, after.day, length, commonDays);
        return rule.byMonthDay.empty() && moveCountedWeekday(before.day, after.day, length);
    }

    bool moveNumber(std::int32_t before, std::int32_t after, std::int32_t length, std::int32_t commonDays) {
        if (rule.byMonthDay.size() > 1) return false;
        auto const number = rule.byMonthDay.front();
        bool const isNamed = number == before || number == before - length - 1;
        auto const moved = number > 0 ? after : after - length - 1;
        if (!isNamed || !areCommon(number, moved, commonDays)) return false;
        text.set("BYMONTHDAY", std::to_string(moved));
        return true;
    }

    bool moveCountedWeekday(std::int32_t before, std::int32_t after, std::int32_t length) {
        if (rule.byDay.size() > 1) return false;
        auto const day = rule.byDay.front();
        auto const fromStart = [](std::int32_t number) { return (number - 1) / 7 + 1; };
        auto const fromEnd = [length](std::int32_t number) { return -((length - number) / 7 + 1); };
        bool const isNamed = day.weekday == weekdayOf(beforeDay) &&
                             (day.ordinal == fromStart(before) || day.ordinal == fromEnd(before));
        auto const moved = day.ordinal > 0 ? fromStart(after) : fromEnd(after);
        constexpr std::int32_t commonWeeks = 4;
        if (!isNamed || !areCommon(day.ordinal, moved, commonWeeks)) return false;
        text.set("BYDAY", std::to_string(moved) + std::string(weekdayName(weekdayOf(afterDay))));
        return true;
    }

    // Whether no month has one and lacks the other, each counted from either end of it: else the series would
    // lose some of its events on the way, or gain some.
    static bool areCommon(std::int32_t before, std::int32_t after, std::int32_t most) {
        return std::abs(before) <= most && std::abs(after) <= most;
    }

    bool moveDayOfYear() {
        auto const before = civilDay(beforeDay);
        auto const after = civilDay(afterDay);
        bool const isUnnamed = rule.byMonth.empty() && rule.byDay.empty() && rule.byMonthDay.empty();
        if (isUnnamed) return !isLeapDay(before) && !isLeapDay(after);
        bool const isOneMonth = rule.byMonth.size() == 1 && rule.byMonth.front() == before.month;
        return isOneMonth && moveDayOfMonth(before.month == february ? shortestMonth : longestMonth);
    }

    static bool isLeapDay(CivilDay const& day) { return day.month == february && day.day > shortestMonth; }

    static constexpr std::int32_t february = 2;
    static constexpr std::int32_t shortestMonth = 28;
    static constexpr std::int32_t longestMonth = 31;

    RuleText& text;
    RecurrenceRule const& rule;
    std::int64_t beforeDay;
    std::int64_t afterDay;
    std::int64_t beforeTime;
    std::int64_t afterTime;
};

// Whether start and occurrence pass over as many midnights, or whatever unit of time it is.
bool passAlike(MovedTime const& start, MovedTime const& occurrence, std::int64_t unit) {
    auto const passed = [unit](MovedTime const& time) {
        return floorDivide(time.after, unit) - floorDivide(time.before, unit);
    };
    return passed(start) == passed(occurrence);
}

// What a rule does not name comes from the start of its series. Where it names a time of day that is not the
// start's, one of them may be moved past midnight and not the other, and then its days are other ones.
bool keepsItsTimes(RecurrenceRule const& rule, MovedTime const& start, MovedTime const& occurrence) {
    constexpr std::int64_t minute = 60;
    constexpr std::int64_t hour = 60 * minute;
    return (rule.frequency < Frequency::daily || passAlike(start, occurrence, secondsPerDay)) &&
           (rule.frequency < Frequency::hourly || passAlike(start, occurrence, hour)) &&
           (rule.frequency < Frequency::minutely || passAlike(start, occurrence, minute));
}

// The months or years that a rule leaves out are counted from the start's own, which a move of a few days may
// leave although the occurrences stay in theirs.
bool keepsItsStep(RecurrenceRule const& rule, MovedTime const& start) {
    if (rule.interval == 1) return true;
    auto const before = civilDay(floorDivide(start.before, secondsPerDay));
    auto const after = civilDay(floorDivide(start.after, secondsPerDay));
    bool const isSameYear = before.year == after.year;
    if (rule.frequency == Frequency::yearly) return isSameYear;
    return rule.frequency != Frequency::monthly || (isSameYear && before.month == after.month);
}

} // namespace

bool moveRule(RuleText& text, RecurrenceRule const& rule, MovedTime start, MovedTime occurrence,
              bool becomesAllDay) {
    RuleMove move(text, rule, occurrence);
    return keepsItsTimes(rule, start, occurrence) && keepsItsStep(rule, start) &&
           move.moveTimes(becomesAllDay) && move.moveDays();
}

} // namespace Platform::ICalendar
