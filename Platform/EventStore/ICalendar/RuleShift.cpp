#include "Platform/EventStore/ICalendar/RuleShift.h"

#include "Platform/EventStore/ICalendar/CivilDays.h"

#include <string>
#include <string_view>
#include <vector>

namespace Platform::ICalendar {
namespace {

class RuleMove {
public:
    RuleMove(RuleText& text, RecurrenceRule const& rule, std::int64_t before, std::int64_t after)
        : text(text),
          rule(rule),
          beforeDay(floorDivide(before, secondsPerDay)),
          afterDay(floorDivide(after, secondsPerDay)),
          beforeTime(floorModulo(before, secondsPerDay)),
          afterTime(floorModulo(after, secondsPerDay)) {}

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
        case Frequency::monthly: return rule.byMonth.empty() && moveDayOfMonth();
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

    // One day of the month, named by its number or as a weekday; unnamed it is the start's own.
    bool moveDayOfMonth() {
        if (!everyMonthHas()) return false;
        if (rule.byDay.empty() && rule.byMonthDay.empty()) return true;
        auto const before = civilDay(beforeDay);
        auto const after = civilDay(afterDay);
        auto const lengthBefore = daysInMonth(before.year, before.month);
        auto const lengthAfter = daysInMonth(after.year, after.month);
        if (rule.byDay.empty()) {
            if (rule.byMonthDay.size() > 1) return false;
            auto const day = rule.byMonthDay.front();
            if (day != before.day && day != before.day - lengthBefore - 1) return false;
            text.set("BYMONTHDAY", std::to_string(day > 0 ? after.day : after.day - lengthAfter - 1));
            return true;
        }
        if (rule.byDay.size() > 1 || !rule.byMonthDay.empty()) return false;
        auto const day = rule.byDay.front();
        bool const isNamed =
            day.ordinal == (before.day - 1) / 7 + 1 || day.ordinal == -((lengthBefore - before.day) / 7 + 1);
        if (!isNamed || day.weekday != weekdayOf(beforeDay)) return false;
        auto const ordinal = day.ordinal > 0 ? (after.day - 1) / 7 + 1 : -((lengthAfter - after.day) / 7 + 1);
        text.set("BYDAY", std::to_string(ordinal) + std::string(weekdayName(weekdayOf(afterDay))));
        return true;
    }

    // Whether the new day is one that comes in every month in which the old one came: else the series would
    // lose some of its events on the way.
    [[nodiscard]] bool everyMonthHas() const {
        auto const before = civilDay(beforeDay);
        auto const after = civilDay(afterDay);
        bool const isSameMonth = before.year == after.year && before.month == after.month;
        constexpr std::int32_t lastOfEveryMonth = 28;
        return isSameMonth && (after.day <= lastOfEveryMonth || after.day <= before.day);
    }

    bool moveDayOfYear() {
        bool const isUnnamed = rule.byMonth.empty() && rule.byDay.empty() && rule.byMonthDay.empty();
        if (isUnnamed) return true;
        bool const isOneMonth = rule.byMonth.size() == 1 && rule.byMonth.front() == civilDay(beforeDay).month;
        if (!isOneMonth) return false;
        text.set("BYMONTH", std::to_string(civilDay(afterDay).month));
        return moveDayOfMonth();
    }

    RuleText& text;
    RecurrenceRule const& rule;
    std::int64_t beforeDay;
    std::int64_t afterDay;
    std::int64_t beforeTime;
    std::int64_t afterTime;
};

} // namespace

bool moveRule(RuleText& text, RecurrenceRule const& rule, std::int64_t before, std::int64_t after,
              bool becomesAllDay) {
    RuleMove move(text, rule, before, after);
    return move.moveTimes(becomesAllDay) && move.moveDays();
}

} // namespace Platform::ICalendar
