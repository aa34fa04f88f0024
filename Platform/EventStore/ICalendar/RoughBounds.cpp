#include "Platform/EventStore/ICalendar/RoughBounds.h"

#include "Platform/EventStore/ICalendar/CivilDays.h"
#include "Platform/EventStore/ICalendar/RuleExpander.h"

#include <algorithm>

namespace Platform::ICalendar {
namespace {

constexpr std::int64_t endOfTime = lastSecond + secondsPerDay;

// No offset reaches this far, nor does a change of clocks.
constexpr std::int64_t widestOffset = 2 * secondsPerDay;

// The start of the last occurrence, on the clock of its UNTIL or its master.
std::int64_t lastStart(RecurrenceRule const& rule, std::int64_t start, CountReach reach) {
    auto last = rule.until ? rule.until->localSeconds : endOfTime;
    if (rule.count && reach == CountReach::workedOut) {
        auto steps = mostCountSteps;
        last = std::min(last, RuleExpander(rule, start).endOfCount(*rule.count, steps).last);
    }
    return last;
}

} // namespace

void RoughBounds::include(RoughBounds const& other) {
    first = std::min(first, other.first);
    last = std::max(last, other.last);
}

RoughBounds roughBounds(EventComponent const& event, CountReach reach) {
    RoughBounds bounds{.first = INT64_MAX, .last = INT64_MIN};
    auto const include = [&](std::int64_t start, std::int64_t length) {
        bounds.include({.first = start - widestOffset, .last = start + length + widestOffset});
    };
    auto const length = roughLength(event);
    include(event.start.localSeconds, length);
    if (event.recurrenceId) {
        if (event.isThisAndFuture) bounds.last = endOfTime;
        return bounds;
    }
    for (auto const& date : event.recurrenceDates)
        include(date.start.localSeconds, roughLength(date, length));
    for (auto const& rule : event.rules)
        include(lastStart(rule, event.start.localSeconds, reach), length);
    return bounds;
}

std::int64_t roughLength(EventComponent const& event) {
    if (event.duration) return event.duration->days * secondsPerDay + event.duration->seconds;
    if (event.end) return std::max<std::int64_t>(event.end->localSeconds - event.start.localSeconds, 0);
    return secondsPerDay;
}

std::int64_t roughLength(RecurrenceDate const& date, std::int64_t otherwise) {
    if (date.duration) return date.duration->days * secondsPerDay + date.duration->seconds;
    if (date.end) return date.end->localSeconds - date.start.localSeconds;
    return otherwise;
}

} // namespace Platform::ICalendar
