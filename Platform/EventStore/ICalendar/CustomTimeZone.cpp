#include "Platform/EventStore/ICalendar/CustomTimeZone.h"

#include "Platform/EventStore/ICalendar/CivilDays.h"
#include "Platform/EventStore/ICalendar/ContentLine.h"
#include "Platform/EventStore/ICalendar/RuleExpander.h"
#include "Platform/EventStore/ICalendar/ValueParser.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace Platform::ICalendar {
namespace {

constexpr std::int64_t endOfChanges = dayNumber({.year = 2200, .month = 12, .day = 31}) * secondsPerDay;
constexpr std::size_t maximumChanges = 4000;

} // namespace

// A STANDARD or DAYLIGHT component.
struct CustomTimeZone::Observance {
    std::optional<std::int64_t> start; // On the clock that runs until then, as all its times.
    std::optional<std::int32_t> before;
    std::optional<std::int32_t> offset;
    std::vector<RecurrenceRule> rules;
    std::vector<std::int64_t> dates;
    bool isWrong = false;

    void read(ContentLine const& content, std::string const& value) {
        if (equalsIgnoringCase(content.name, "DTSTART")) {
            if (auto const time = parseTime(value, {})) start = time->localSeconds;
        } else if (equalsIgnoringCase(content.name, "TZOFFSETFROM")) {
            before = parseOffset(value);
        } else if (equalsIgnoringCase(content.name, "TZOFFSETTO")) {
            offset = parseOffset(value);
        } else if (equalsIgnoringCase(content.name, "RDATE")) {
            for (auto rest = std::string_view(value); !rest.empty();) {
                auto const comma = std::min(rest.find(','), rest.size());
                if (auto const date = parseRecurrenceDate(rest.substr(0, comma), {})) {
                    dates.push_back(date->start.localSeconds);
                }
                rest.remove_prefix(std::min(comma + 1, rest.size()));
            }
        } else if (equalsIgnoringCase(content.name, "RRULE")) {
            auto rule = parseRule(value);
            isWrong = isWrong || !rule;
            if (rule) rules.push_back(std::move(*rule));
        }
    }

    [[nodiscard]] bool isUsable() const { return start && before && offset && !isWrong; }
};

CustomTimeZone::CustomTimeZone(std::vector<Change> changes) : changes(std::move(changes)) {}

void CustomTimeZone::addChanges(Observance const& observance, std::int64_t& steps,
                                std::vector<Change>& changes) {
    std::vector<std::int64_t> times = observance.dates;
    times.push_back(*observance.start);
    for (auto const& rule : observance.rules) {
        RuleExpander const expander(rule, *observance.start);
        auto last = endOfChanges;
        if (rule.count) last = std::min(last, expander.endOfCount(*rule.count, steps).last);
        if (rule.until) {
            bool const isUTC = rule.until->form == TimeForm::utc;
            auto const until = rule.until->localSeconds + (isUTC ? *observance.before : 0);
            last = std::min(last, rule.until->form == TimeForm::date ? until + secondsPerDay - 1 : until);
        }
        expander.expand(*observance.start, last, maximumChanges, steps, times);
    }
    for (auto const time : times) {
        changes.push_back(
            {.start = time - *observance.before, .before = *observance.before, .offset = *observance.offset});
    }
}

std::shared_ptr<CustomTimeZone const> CustomTimeZone::fromComponent(std::string_view bytes,
                                                                    std::int64_t& steps) {
    std::vector<Change> changes;
    std::optional<Observance> observance;
    ContentLineScanner lines(bytes);
    ContentLine content;
    while (lines.next() && changes.size() < maximumChanges) {
        if (!splitContentLine(lines.line(), content)) continue;
        auto const value = unfold(trimmed(content.value));
        bool const isObservance =
            equalsIgnoringCase(value, "STANDARD") || equalsIgnoringCase(value, "DAYLIGHT");
        if (isObservance && equalsIgnoringCase(content.name, "BEGIN")) {
            observance.emplace();
        } else if (isObservance && equalsIgnoringCase(content.name, "END")) {
            if (observance && observance->isUsable()) addChanges(*observance, steps, changes);
            observance.reset();
        } else if (observance) {
            observance->read(content, value);
        }
    }
    if (changes.empty()) return nullptr;
    std::ranges::sort(changes, {},
                      [](Change const& change) { return std::pair(change.start, change.offset); });
    return std::shared_ptr<CustomTimeZone const>(new CustomTimeZone(std::move(changes)));
}

std::int32_t CustomTimeZone::secondsFromUTC(std::int64_t utcSeconds) const {
    auto const next = std::ranges::upper_bound(changes, utcSeconds, {}, &Change::start);
    return next == changes.begin() ? next->before : std::prev(next)->offset;
}

std::int64_t CustomTimeZone::instant(std::int64_t localSeconds) const {
    // No offset reaches a day, so the change that matters lies between these two.
    auto const before = secondsFromUTC(localSeconds - secondsPerDay);
    auto const after = secondsFromUTC(localSeconds + secondsPerDay);
    auto const early = localSeconds - before;
    if (before == after || secondsFromUTC(early) == before) return early;
    auto const late = localSeconds - after;
    return secondsFromUTC(late) == after ? late : early;
}

} // namespace Platform::ICalendar
