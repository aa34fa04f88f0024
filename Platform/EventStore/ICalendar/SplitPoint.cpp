#include "Platform/EventStore/ICalendar/SplitPoint.h"

#include "Platform/EventStore/ICalendar/CivilDays.h"
#include "Platform/EventStore/ICalendar/RuleExpander.h"

#include <algorithm>

namespace Platform::ICalendar {
namespace {

std::int64_t dayOf(std::int64_t local) {
    return floorDivide(local, secondsPerDay);
}

} // namespace

SplitPoint::SplitPoint(Series const& series, SeriesTimes const& times, std::int64_t local)
    : series(series),
      times(times),
      split(local) {}

bool SplitPoint::hasEarlier() const {
    auto const& master = *series.master()->component;
    auto const& overrides = series.overrides();
    bool const hasException = std::ranges::any_of(overrides, [&](ClockedEvent const& event) {
        return event.component->status != EventStatus::cancelled && !event.component->isThisAndFuture &&
               times.local(*event.component->recurrenceId, event) < split;
    });
    if (hasException) return true;
    auto const hidden = hiddenTimes();
    auto const isShown = [&](std::int64_t local) {
        return local < split && !std::ranges::binary_search(hidden, local);
    };
    if (isShown(master.start.localSeconds)) return true;
    for (auto const& date : master.recurrenceDates) {
        if (isShown(times.local(date.start, *series.master()))) return true;
    }
    for (std::size_t index = 0; index < master.rules.size(); ++index) {
        std::vector<std::int64_t> found;
        std::int64_t steps = 2'000'000;
        auto const last = std::min(split - 1, series.ruleEnd(index).last);
        bool const isWhole = RuleExpander(master.rules[index], master.start.localSeconds)
                                 .expand(master.start.localSeconds, last, 200'000, steps, found);
        if (!isWhole || std::ranges::any_of(found, isShown)) return true;
    }
    return false;
}

// What EXDATEs and cancelled exceptions take out, in order. A bare day takes out the series' own time of it.
std::vector<std::int64_t> SplitPoint::hiddenTimes() const {
    std::vector<std::int64_t> hidden;
    auto const& master = *series.master();
    for (auto const& time : master.component->exceptionDates)
        hidden.push_back(times.local(time, master));
    for (auto const& event : series.overrides()) {
        if (event.component->status == EventStatus::cancelled)
            hidden.push_back(times.local(*event.component->recurrenceId, event));
    }
    std::ranges::sort(hidden);
    return hidden;
}

std::optional<std::int64_t> SplitPoint::countBefore(std::size_t rule) const {
    auto const& master = *series.master()->component;
    auto const start = master.start.localSeconds;
    if (split <= start) return 0;
    RuleExpander const expander(master.rules[rule], start);
    std::vector<std::int64_t> found;
    std::int64_t steps = 2'000'000;
    constexpr std::size_t most = 1'000'000;
    if (!expander.expand(start, split - 1, most, steps, found)) return std::nullopt;
    return std::ssize(found) + (expander.yields(start) ? 0 : 1);
}

bool SplitPoint::happens() const {
    auto const& master = *series.master();
    auto const& event = *master.component;
    bool const isExcluded = std::ranges::any_of(event.exceptionDates, [&](CalendarTime const& time) {
        auto const local = times.local(time, master);
        return time.form == TimeForm::date ? dayOf(local) == dayOf(split) : local == split;
    });
    if (isExcluded || !event.exceptionRules.empty()) return false;
    if (event.start.localSeconds == split) return true;
    bool const isAdded = std::ranges::any_of(event.recurrenceDates, [&](RecurrenceDate const& date) {
        return times.local(date.start, master) == split;
    });
    if (isAdded) return true;
    for (std::size_t index = 0; index < event.rules.size(); ++index) {
        bool const yields = RuleExpander(event.rules[index], event.start.localSeconds).yields(split);
        if (yields && split <= series.ruleEnd(index).last) return true;
    }
    return false;
}

std::int64_t SplitPoint::nextOf(std::size_t rule) const {
    auto const& master = *series.master()->component;
    RuleExpander const expander(master.rules[rule], master.start.localSeconds);
    if (expander.yields(split)) return split;
    auto const last = std::min(series.ruleEnd(rule).last, lastSecond);
    // Windows that grow: nearly always the first holds it.
    for (std::int64_t from = split, width = 40 * secondsPerDay; from <= last; from += width, width *= 4) {
        std::vector<std::int64_t> found;
        std::int64_t steps = 100'000;
        expander.expand(from, std::min(from + width - 1, last), 1, steps, found);
        if (!found.empty()) return found.front();
    }
    return split;
}

} // namespace Platform::ICalendar
