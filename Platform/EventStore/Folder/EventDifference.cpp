#include "Platform/EventStore/Folder/EventDifference.h"

#include "Foundation/Text.h"
#include "Platform/EventStore/Folder/OccurrenceMapping.h"
#include "Platform/EventStore/ICalendar/CivilDays.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <fmt/format.h>
#include <string_view>
#include <utility>

namespace Platform {

namespace {

using ICalendar::RuleChange;
using ICalendar::RuleText;
using ICalendar::TextChange;

std::int64_t seconds(Foundation::Date date) {
    return static_cast<std::int64_t>(std::floor(date.secondsSince1970));
}

bool isBlank(std::string_view text) {
    return Foundation::Text::trimmingWhitespacesAndNewlines(text).empty();
}

// A record tells a blank text and none apart from others, not from each other.
std::optional<TextChange> textChange(std::optional<std::string> const& text,
                                     std::optional<std::string> const& stored, bool isWritten) {
    if (text == stored) return std::nullopt;
    bool const areBothBlank = !stored && isBlank(*text);
    if (areBothBlank && isWritten) return std::nullopt;
    return TextChange{.text = text};
}

std::optional<std::string> textOf(std::optional<Foundation::URL> const& url) {
    if (!url) return std::nullopt;
    return url->absoluteString;
}

ICalendar::EventTimes timesOf(EKEvent const& event, Foundation::TimeZone const& viewer) {
    auto const start = seconds(*event.startDate);
    auto const end = seconds(*event.endDate);
    if (!event.isAllDay) return {.isAllDay = false, .start = start, .end = end};
    constexpr auto day = ICalendar::secondsPerDay;
    auto const localDay = [&viewer](std::int64_t instant, std::int64_t slack) {
        auto const local = instant + viewer.secondsFromUTC(instant);
        return ICalendar::floorDivide(local + slack, day) * day;
    };
    auto const first = localDay(start, 0);
    // To the nearest midnight: whoever adds 24 hours to a day means its end on a day of 23 hours, too.
    return {.isAllDay = true, .start = first, .end = std::max(localDay(end, day / 2), first + day)};
}

std::string_view frequencyName(EKRecurrenceFrequency frequency) {
    switch (frequency) {
    case EKRecurrenceFrequency::daily: return "DAILY";
    case EKRecurrenceFrequency::weekly: return "WEEKLY";
    case EKRecurrenceFrequency::monthly: return "MONTHLY";
    case EKRecurrenceFrequency::yearly: return "YEARLY";
    case EKRecurrenceFrequency::other: break;
    }
    return "";
}

template <typename Element, typename Text>
void setList(RuleText& rule, std::string_view name, std::vector<Element> const& elements, Text text) {
    if (elements.empty()) return rule.remove(name);
    std::string list;
    for (auto const& element : elements) {
        if (!list.empty()) list += ',';
        list += text(element);
    }
    rule.set(name, std::move(list));
}

// `rule` with what the record says. What it has no word for stays.
RuleChange ruleChange(RuleText rule, EKRecurrenceRule const& record, EKRecurrenceRule const* stored) {
    if (record.interval != (stored ? stored->interval : 1))
        rule.set("INTERVAL", std::to_string(record.interval));
    if (!stored || record.daysOfTheWeek != stored->daysOfTheWeek) {
        setList(rule, "BYDAY", record.daysOfTheWeek, [](EKRecurrenceDayOfWeek const& day) {
            auto const name = ICalendar::weekdayName(static_cast<int>(day.dayOfTheWeek) - 1);
            return day.weekNumber == 0 ? std::string(name) : fmt::format("{}{}", day.weekNumber, name);
        });
    }
    if (!stored || record.daysOfTheMonth != stored->daysOfTheMonth) {
        setList(rule, "BYMONTHDAY", record.daysOfTheMonth,
                [](std::int64_t day) { return std::to_string(day); });
    }
    RuleChange change{.rule = std::move(rule), .until = std::nullopt};
    if (!stored || record.occurrenceCount != stored->occurrenceCount) {
        change.rule.remove("COUNT");
        if (record.occurrenceCount) change.rule.set("COUNT", std::to_string(*record.occurrenceCount));
    }
    if (!stored || record.endDate != stored->endDate) {
        change.rule.remove("UNTIL");
        if (record.endDate) change.until = seconds(*record.endDate);
    }
    return change;
}

bool namesDays(EKRecurrenceRule const& rule) {
    return !rule.daysOfTheWeek.empty() || !rule.daysOfTheMonth.empty();
}

bool hasSameDays(EKRecurrenceRule const& left, EKRecurrenceRule const& right) {
    return left.frequency == right.frequency && left.daysOfTheWeek == right.daysOfTheWeek &&
           left.daysOfTheMonth == right.daysOfTheMonth;
}

// A rule of the same kind is changed part by part; where it turns to other days, what else it said of days is
// of no use any more.
RuleChange changedRule(EKRecurrenceRule const& record, EKRecurrenceRule const* stored,
                       RuleText const* written) {
    if (stored && written && hasSameDays(record, *stored)) return ruleChange(*written, record, stored);
    RuleText rule("FREQ=" + std::string(frequencyName(record.frequency)));
    if (written) {
        if (auto weekStart = written->value("WKST")) rule.set("WKST", *std::move(weekStart));
    }
    return ruleChange(std::move(rule), record, nullptr);
}

void setRules(ICalendar::EventChange& change, std::vector<EKRecurrenceRule> const& records,
              std::vector<EKRecurrenceRule> const& stored, std::vector<RuleText> const& written) {
    change.rules.emplace();
    for (std::size_t index = 0; index < records.size(); ++index) {
        bool const isKnown = index < stored.size() && index < written.size();
        if (isKnown && records[index] == stored[index]) {
            change.rules->push_back({.rule = written[index], .until = std::nullopt});
            continue;
        }
        auto const* const before = isKnown ? &stored[index] : nullptr;
        change.rules->push_back(changedRule(records[index], before, isKnown ? &written[index] : nullptr));
        // Days that nobody changed stay those of the event's own clock.
        if (!before || !hasSameDays(records[index], *before))
            change.rulesNameViewersDays = change.rulesNameViewersDays || namesDays(records[index]);
    }
}

bool isDayOfMonth(std::int64_t day) {
    return day != 0 && day >= -31 && day <= 31;
}

std::optional<std::string> whyNotWritable(EKRecurrenceRule const& rule) {
    bool const hasImpossibleDay =
        std::ranges::any_of(rule.daysOfTheWeek, [](EKRecurrenceDayOfWeek const& day) {
            return day.dayOfTheWeek < 1 || day.dayOfTheWeek > 7;
        });
    if (hasImpossibleDay) return "The event repeats on a weekday outside 1…7";
    bool const hasImpossibleWeek =
        std::ranges::any_of(rule.daysOfTheWeek, [](EKRecurrenceDayOfWeek const& day) {
            return day.weekNumber < -53 || day.weekNumber > 53;
        });
    if (hasImpossibleWeek) return "The event repeats on a weekday of a week outside -53…53";
    if (!std::ranges::all_of(rule.daysOfTheMonth, isDayOfMonth))
        return "The event repeats on a day of the month outside 1…31";
    if (rule.interval < 1) return "The event repeats at an interval below 1";
    if (rule.occurrenceCount && *rule.occurrenceCount < 1) return "The event repeats less than once";
    return std::nullopt;
}

} // namespace

std::optional<std::string> whyNotWritable(EKEvent const& event) {
    if (!event.startDate || !event.endDate) return "The event has no start or no end";
    auto const start = event.startDate->secondsSince1970;
    auto const end = event.endDate->secondsSince1970;
    // A day at each end, so that the event has a name on the clocks of every zone.
    constexpr auto earliest = static_cast<double>(ICalendar::firstSecond + 2 * ICalendar::secondsPerDay);
    constexpr auto latest = static_cast<double>(ICalendar::lastSecond - 2 * ICalendar::secondsPerDay);
    bool const isNamed = start >= earliest && end <= latest && start <= latest && end >= earliest;
    if (!isNamed) return "The event lies outside the years 1 to 9999";
    if (end < start) return "The event ends before it starts";
    for (auto const& rule : event.recurrenceRules) {
        if (auto reason = whyNotWritable(rule)) return reason;
    }
    return std::nullopt;
}

ICalendar::EventChange differenceBetween(EKEvent const& event, ICalendar::Occurrence const& stored,
                                         std::vector<RuleText> const& rules,
                                         Foundation::TimeZone const& viewer) {
    auto const& component = *stored.event;
    auto const record =
        eventOfOccurrence(stored, std::make_shared<EKCalendar const>(*event.calendar), viewer);
    ICalendar::EventChange change;
    change.title = textChange(event.title, record.title, component.summary.has_value());
    change.notes = textChange(event.notes, record.notes, component.description.has_value());
    change.location = textChange(event.location, record.location, component.location.has_value());
    change.url = textChange(textOf(event.url), textOf(record.url), component.url.has_value());
    bool const isMoved = seconds(*event.startDate) != seconds(*record.startDate) ||
                         seconds(*event.endDate) != seconds(*record.endDate) ||
                         event.isAllDay != record.isAllDay;
    if (isMoved) change.times = timesOf(event, viewer);
    if (event.recurrenceRules != record.recurrenceRules)
        setRules(change, event.recurrenceRules, record.recurrenceRules, rules);
    return change;
}

ICalendar::EventChange contentOf(EKEvent const& event, Foundation::TimeZone const& viewer) {
    ICalendar::EventChange change;
    auto const given = [](std::optional<std::string> const& text) {
        return text ? std::optional(TextChange{.text = text}) : std::nullopt;
    };
    change.title = given(event.title);
    change.notes = given(event.notes);
    change.location = given(event.location);
    change.url = given(textOf(event.url));
    change.times = timesOf(event, viewer);
    if (!event.recurrenceRules.empty()) setRules(change, event.recurrenceRules, {}, {});
    return change;
}

} // namespace Platform
