#include "Platform/EventStore/ICalendar/Series.h"

#include "Platform/EventStore/ICalendar/CivilDays.h"
#include "Platform/EventStore/ICalendar/RuleExpander.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

namespace Platform::ICalendar {
namespace {

// No offset reaches this far, nor does a change of clocks.
constexpr std::int64_t widestOffset = 2 * secondsPerDay;

// The version to keep: RFC 5546 §2.1.5, and the later one in the files where that does not decide.
bool isAtLeastAsNew(EventComponent const& left, EventComponent const& right) {
    return std::tuple(left.sequence, left.stamp) >= std::tuple(right.sequence, right.stamp);
}

// What an override replaces, to find the versions of one and the same.
std::tuple<bool, bool, std::int64_t> replacedBy(ClockedEvent const& event) {
    auto const& id = *event.component->recurrenceId;
    bool const isLocal = id.form == TimeForm::date || id.form == TimeForm::floating;
    auto const time = isLocal ? id.localSeconds : event.instant(id, EventZone::utc());
    return {event.component->isThisAndFuture, isLocal, time};
}

} // namespace

void Series::add(ClockedEvent event) {
    if (event.component->recurrenceId) {
        chosenOverrides.push_back(event);
    } else if (!chosenMaster || isAtLeastAsNew(*event.component, *chosenMaster->component)) {
        chosenMaster = event;
    }
}

void Series::settle() {
    if (chosenOverrides.size() > 1) {
        std::map<std::tuple<bool, bool, std::int64_t>, ClockedEvent> newest;
        for (auto const& event : chosenOverrides) {
            auto const [entry, isFirst] = newest.try_emplace(replacedBy(event), event);
            if (!isFirst && isAtLeastAsNew(*event.component, *entry->second.component)) entry->second = event;
        }
        chosenOverrides.clear();
        for (auto const& [id, event] : newest)
            chosenOverrides.push_back(event);
    }
    if (chosenMaster && !chosenMaster->component->rules.empty()) {
        countEnds = std::make_unique<CountEnd[]>(chosenMaster->component->rules.size());
    }
    boundRoughly();
}

std::string const& Series::uid() const {
    return chosenMaster ? chosenMaster->component->uid : chosenOverrides.front().component->uid;
}

bool Series::isCancelled() const {
    return chosenMaster && chosenMaster->component->status == EventStatus::cancelled;
}

void Series::boundRoughly() {
    bounds = {.first = INT64_MAX, .last = INT64_MIN};
    for (auto const& event : chosenOverrides)
        bounds.include(roughBounds(*event.component, CountReach::unknown));
    if (chosenMaster) bounds.include(roughBounds(*chosenMaster->component, CountReach::unknown));
}

bool Series::mayTouch(std::int64_t from, std::int64_t to) const {
    return bounds.touch(from, to);
}

Series::RuleEnd Series::ruleEnd(std::size_t ruleIndex) const {
    auto const& master = *chosenMaster->component;
    auto const& rule = master.rules[ruleIndex];
    RuleEnd end{.last = lastSecond, .isEndless = !rule.count && !rule.until, .isCut = false, .steps = 0};
    if (rule.until) {
        auto const until = rule.until->localSeconds;
        auto const endOfDay = until - floorModulo(until, secondsPerDay) + secondsPerDay - 1;
        bool const namesDay = rule.until->form == TimeForm::date || master.isAllDay();
        bool const isElsewhere = rule.until->form == TimeForm::utc;
        // On the master's clock a moment of UTC is less than two days away; the instants decide later.
        end.last = namesDay ? endOfDay : isElsewhere ? until + widestOffset : until;
    }
    if (rule.count) {
        auto& known = countEnds[ruleIndex];
        auto last = known.last.load();
        if (last == CountEnd::unknown) {
            auto steps = mostCountSteps;
            auto const found = RuleExpander(rule, master.start.localSeconds).endOfCount(*rule.count, steps);
            last = found.last;
            end.steps = mostCountSteps - steps;
            known.isCut = found.isCut;
            known.last = last;
        }
        end.isCut = known.isCut;
        end.last = std::min(end.last, last);
    }
    return end;
}

std::optional<SeriesExtent> Series::extent(EventZone const& viewer) const {
    if (isCancelled()) return std::nullopt;
    std::int64_t first = INT64_MAX;
    std::int64_t last = INT64_MIN;
    bool isEndless = false;
    auto const include = [&](std::int64_t local, CalendarDuration length, EventZone const& clock) {
        auto const start = clock.instant(local);
        first = std::min(first, start);
        last = std::max(last, endInstant(local, start, length, clock));
    };
    for (auto const& event : chosenOverrides) {
        if (event.component->status == EventStatus::cancelled) continue;
        include(event.component->start.localSeconds, event.length(viewer), event.clock(viewer));
    }
    if (chosenMaster) {
        auto const& master = *chosenMaster->component;
        auto const length = chosenMaster->length(viewer);
        auto const& clock = chosenMaster->clock(viewer);
        auto const& clocks = *chosenMaster->clocks;
        include(master.start.localSeconds, length, clock);
        for (auto const& date : master.recurrenceDates) {
            auto own = length;
            if (date.duration || date.end) own = {.days = 0, .seconds = roughLength(date, 0) + secondsPerDay};
            include(date.start.localSeconds, own, clocks.clock(date.start, viewer));
        }
        for (std::size_t index = 0; index < master.rules.size(); ++index) {
            auto const end = ruleEnd(index);
            isEndless = isEndless || end.isEndless;
            include(end.last, length, clock);
            for (auto const& event : chosenOverrides) {
                // What is moved from some occurrence on is moved at the end, too.
                if (!event.component->isThisAndFuture) continue;
                auto const shift =
                    event.component->start.localSeconds - event.component->recurrenceId->localSeconds;
                include(end.last + shift + widestOffset, event.length(viewer), clock);
            }
        }
    }
    if (first == INT64_MAX) return std::nullopt;
    SeriesExtent extent{.first = {.secondsSince1970 = static_cast<double>(first)},
                        .last = std::nullopt,
                        .isRecurring = chosenMaster && chosenMaster->component->isRecurring()};
    if (!isEndless) extent.last = Foundation::Date{.secondsSince1970 = static_cast<double>(last)};
    return extent;
}

} // namespace Platform::ICalendar
