#include "Platform/EventStore/ICalendar/SeriesExpansion.h"

#include "Platform/EventStore/ICalendar/CivilDays.h"
#include "Platform/EventStore/ICalendar/RuleExpander.h"

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

namespace Platform::ICalendar {
namespace {

// A change of clocks may bring a time into the window from this far outside it.
constexpr std::int64_t clockChange = secondsPerDay;

// A day within the years that a calendar can name, so that what is shown has a name on the clocks of every
// zone.
constexpr std::int64_t earliestShown = firstSecond + secondsPerDay;
constexpr std::int64_t latestShown = lastSecond - secondsPerDay;
constexpr std::int64_t latestDayShown = lastDayNumber - 1;

// How much further than an interval of instants one has to look on a clock: nothing unless it changes nearby.
std::int64_t slackAround(EventZone const& clock, std::int64_t from, std::int64_t to) {
    auto const offsetAt = [&clock](std::int64_t instant) { return clock.local(instant) - instant; };
    return offsetAt(from - clockChange) == offsetAt(to + clockChange) ? 0 : clockChange;
}

std::int64_t dayOf(std::int64_t localSeconds) {
    return floorDivide(localSeconds, secondsPerDay);
}

std::chrono::local_days civilDays(std::int64_t dayNumber) {
    return std::chrono::local_days(std::chrono::days(dayNumber));
}

} // namespace

void SeriesExpansion::Names::add(CalendarTime const& time, ClockedEvent const& owner,
                                 SeriesExpansion const& expansion) {
    bool const namesDay = time.form == TimeForm::date || expansion.series.master()->component->isAllDay();
    if (namesDay) {
        days.push_back(dayOf(time.localSeconds));
    } else {
        instants.push_back(expansion.instantOfName(time, owner));
    }
}

void SeriesExpansion::Names::sort() {
    std::ranges::sort(instants);
    std::ranges::sort(days);
}

bool SeriesExpansion::Names::contains(Instance const& instance) const {
    return std::ranges::binary_search(instants, instance.instant) ||
           std::ranges::binary_search(days, dayOf(instance.local));
}

SeriesExpansion::SeriesExpansion(Series const& series, ExpansionWindow window, EventZone const& viewer,
                                 ExpansionLimits const& limits, Expansion& result,
                                 std::vector<Omission>* omissions)
    : series(series),
      window(window),
      viewer(viewer),
      limits(limits),
      result(result),
      omissions(omissions),
      steps(limits.stepsPerSeries) {}

void SeriesExpansion::run() {
    if (!series.mayTouch(window.firstSecond, window.lastSecond)) return;
    if (!series.isCancelled()) {
        addSeries();
    } else if (omissions != nullptr) {
        auto const first = std::ssize(result.occurrences);
        addSeries();
        omitAllSince(first);
    }
}

void SeriesExpansion::addSeries() {
    auto const first = std::ssize(result.occurrences);
    if (series.master()) addMaster();
    if (hasCutRule) {
        auto const kept = std::min(std::ssize(result.occurrences), first + limits.occurrencesOfCutRule);
        result.occurrences.erase(result.occurrences.begin() + kept, result.occurrences.end());
        added = kept - first;
    }
    addOverrides();
    result.steps += limits.stepsPerSeries - std::max<std::int64_t>(steps, 0);
}

void SeriesExpansion::addMaster() {
    auto const& master = *series.master();
    auto const length = master.length(viewer);
    if (!master.component->isRecurring() && series.overrides().empty()) {
        auto const local = master.component->start.localSeconds;
        addInstance({.local = local, .instant = master.clock(viewer).instant(local), .period = nullptr},
                    length);
        return;
    }
    auto const moves = shifts();
    std::int64_t widening = 0;
    for (auto const& shift : moves) {
        auto const shiftedLength = shift.length.days * secondsPerDay + shift.length.seconds;
        widening = std::max(widening, std::abs(shift.distance) + shiftedLength);
    }
    auto const replaced = namesOf(series.overrides());
    for (auto const& instance : instances(length, widening)) {
        if (replaced.contains(instance)) {
            if (omissions != nullptr) omitReplaced(instance, length);
            continue;
        }
        auto const next = std::ranges::upper_bound(moves, instance.instant, {}, &Shift::instant);
        if (next == moves.begin()) {
            addInstance(instance, length);
        } else {
            addShifted(instance, *std::prev(next));
        }
    }
}

SeriesExpansion::Names SeriesExpansion::namesOf(std::vector<ClockedEvent> const& overrides) const {
    Names names;
    for (auto const& event : overrides)
        names.add(*event.component->recurrenceId, event, *this);
    names.sort();
    return names;
}

// A cancelled event has said so for each of its occurrences.
void SeriesExpansion::omitAllSince(std::ptrdiff_t first) {
    auto const& cause = *series.master();
    auto const begin = result.occurrences.begin() + first;
    for (auto occurrence = begin; occurrence != result.occurrences.end(); ++occurrence) {
        omissions->push_back({.reason = Omission::Reason::cancelledEvent,
                              .occurrence = std::move(*occurrence),
                              .cause = cause.component,
                              .file = cause.clocks->file,
                              .movedTo = std::nullopt});
    }
    result.occurrences.erase(begin, result.occurrences.end());
}

// An override that leaves its occurrence where it was omits nothing.
void SeriesExpansion::omitReplaced(Instance const& instance, CalendarDuration length) {
    for (auto const& event : series.overrides()) {
        auto const& component = *event.component;
        if (!namesOf({event}).contains(instance)) continue;
        if (component.status == EventStatus::cancelled) {
            omit(Omission::Reason::cancelledOccurrence, instance, length, event);
            return;
        }
        auto const start = event.instant(component.start, viewer);
        if (start == instance.instant) return;
        omit(Omission::Reason::movedOccurrence, instance, length, event,
             Foundation::Date{.secondsSince1970 = static_cast<double>(start)});
        return;
    }
}

void SeriesExpansion::omit(Omission::Reason reason, Instance const& instance, CalendarDuration length,
                           ClockedEvent const& cause, std::optional<Foundation::Date> movedTo) {
    auto const placement = placementInWindow(*series.master(), instance.local, instance.instant,
                                             endOf(instance, length), length);
    if (!placement || std::ssize(*omissions) >= limits.occurrencesPerSeries) return;
    omissions->push_back(
        {.reason = reason,
         .occurrence = occurrence(*series.master(), *placement, keyOfInstance(instance.local)),
         .cause = cause.component,
         .file = cause.clocks->file,
         .movedTo = movedTo});
}

// The overrides that stand for all that follows them, by where they begin.
std::vector<SeriesExpansion::Shift> SeriesExpansion::shifts() const {
    std::vector<Shift> found;
    for (auto const& event : series.overrides()) {
        if (!event.component->isThisAndFuture) continue;
        auto const& id = *event.component->recurrenceId;
        auto const& start = event.component->start;
        bool const isSameClock = id.form == start.form && id.zone == start.zone;
        auto const instant = instantOfName(id, event);
        auto const original = isSameClock || start.form == TimeForm::date || id.form == TimeForm::date
                                  ? id.localSeconds
                                  : event.clock(viewer).local(instant);
        auto distance = start.localSeconds - original;
        if (start.form == TimeForm::date)
            distance = (dayOf(start.localSeconds) - dayOf(original)) * secondsPerDay;
        found.push_back(
            {.event = event, .instant = instant, .distance = distance, .length = event.length(viewer)});
    }
    std::ranges::sort(found, {}, &Shift::instant);
    return found;
}

// The recurrence set within the window and its surroundings, without the exceptions.
std::vector<SeriesExpansion::Instance> SeriesExpansion::instances(CalendarDuration length,
                                                                  std::int64_t widening) {
    auto const& master = *series.master();
    auto const& clock = master.clock(viewer);
    bool const isAllDay = master.component->isAllDay();
    auto const span = length.days * secondsPerDay + length.seconds;
    auto const slackBefore = slackAround(clock, window.firstSecond - span, window.firstSecond);
    auto const slackAfter = slackAround(clock, window.lastSecond, window.lastSecond);
    auto const from = clock.local(window.firstSecond) - span - widening - slackBefore;
    auto const to = clock.local(window.lastSecond) + widening + slackAfter;

    std::vector<std::int64_t> times;
    auto const start = master.component->start.localSeconds;
    if (start >= from && start <= to) times.push_back(start);
    addRuleTimes(times, from, to);

    std::vector<Instance> found;
    found.reserve(times.size());
    for (auto const time : times)
        found.push_back({.local = time, .instant = clock.instant(time), .period = nullptr});
    for (auto const& date : master.component->recurrenceDates) {
        bool const mayLast = date.end || date.duration;
        bool const isNear = date.start.localSeconds <= to + clockChange &&
                            (mayLast || date.start.localSeconds >= from - clockChange);
        if (!isNear) continue;
        auto local = date.start.localSeconds;
        if (isAllDay) {
            local = dayOf(local) * secondsPerDay;
        } else if (date.start.form == TimeForm::date) {
            // A bare day in a series of times happens at the series' own time.
            local += floorModulo(start, secondsPerDay);
        } else if (date.start.form != TimeForm::floating) {
            auto const instant = master.instant(date.start, viewer);
            found.push_back(
                {.local = clock.local(instant), .instant = instant, .period = mayLast ? &date : nullptr});
            continue;
        }
        found.push_back(
            {.local = local, .instant = clock.instant(local), .period = mayLast ? &date : nullptr});
    }

    // A set: what a rule and a date both name happens once, with the length that the date gives.
    auto const order = [isAllDay](Instance const& instance) {
        return std::tuple(isAllDay ? instance.local : instance.instant, instance.period == nullptr,
                          instance.local);
    };
    auto const identity = [isAllDay](Instance const& instance) {
        return isAllDay ? instance.local : instance.instant;
    };
    std::ranges::sort(found, {}, order);
    auto const doubles = std::ranges::unique(found, {}, identity);
    found.erase(doubles.begin(), doubles.end());
    removeExceptions(found, length, from, to);
    return found;
}

// Appends what the rules yield on the master's clock within [from, to].
void SeriesExpansion::addRuleTimes(std::vector<std::int64_t>& times, std::int64_t from, std::int64_t to) {
    auto const& master = *series.master();
    auto const& event = *master.component;
    auto const& clock = master.clock(viewer);
    for (std::size_t index = 0; index < event.rules.size(); ++index) {
        auto const& rule = event.rules[index];
        auto const end = series.ruleEnd(index);
        result.steps += end.steps;
        if (end.isCut)
            reportCut("its COUNT could not be followed to the end; later occurrences are not shown");
        auto const first = times.size();
        auto const limit = first + static_cast<std::size_t>(limits.occurrencesPerSeries);
        bool const isWhole = RuleExpander(rule, event.start.localSeconds)
                                 .expand(from, std::min(to, end.last), limit, steps, times);
        if (!isWhole) {
            hasCutRule = true;
            reportCut("its rule yields too much; only the first occurrences of the time asked for are shown");
        }
        bool const endsInUTC = rule.until && rule.until->form == TimeForm::utc && !event.isAllDay();
        if (endsInUTC) {
            auto const isPast = [&](std::int64_t time) {
                return clock.instant(time) > rule.until->localSeconds;
            };
            times.erase(
                std::remove_if(times.begin() + static_cast<std::ptrdiff_t>(first), times.end(), isPast),
                times.end());
        }
    }
}

void SeriesExpansion::removeExceptions(std::vector<Instance>& found, CalendarDuration length,
                                       std::int64_t from, std::int64_t to) {
    auto const& master = *series.master();
    auto const& event = *master.component;
    Names names;
    for (auto const& time : event.exceptionDates) {
        // Years of exceptions cost no more than those near the window.
        bool const isNear =
            time.localSeconds >= from - 2 * clockChange && time.localSeconds <= to + 2 * clockChange;
        if (isNear) names.add(time, master, *this);
    }
    names.sort();
    std::vector<std::int64_t> times;
    for (auto const& rule : event.exceptionRules) {
        auto last = to;
        if (rule.count) {
            auto countSteps = limits.stepsPerSeries;
            last = std::min(
                last, RuleExpander(rule, event.start.localSeconds).endOfCount(*rule.count, countSteps).last);
            result.steps += limits.stepsPerSeries - countSteps;
        }
        if (rule.until) {
            bool const isUTC = rule.until->form == TimeForm::utc && !event.isAllDay();
            auto const until =
                isUTC ? master.clock(viewer).local(rule.until->localSeconds) : rule.until->localSeconds;
            last = std::min(last, rule.until->form == TimeForm::date ? until + secondsPerDay - 1 : until);
        }
        auto const limit = times.size() + static_cast<std::size_t>(limits.occurrencesPerSeries);
        RuleExpander(rule, event.start.localSeconds).expand(from, last, limit, steps, times);
    }
    std::ranges::sort(times);
    std::erase_if(found, [&](Instance const& instance) {
        bool const isNamed = names.contains(instance);
        bool const isExcluded = isNamed || std::ranges::binary_search(times, instance.local);
        if (isExcluded && omissions != nullptr) {
            omit(isNamed ? Omission::Reason::excludedDate : Omission::Reason::excludedByRule, instance,
                 length, master);
        }
        return isExcluded;
    });
}

void SeriesExpansion::addInstance(Instance const& instance, CalendarDuration length) {
    addOccurrence(*series.master(), instance.local, instance.instant, endOf(instance, length), length,
                  keyOfInstance(instance.local));
}

std::int64_t SeriesExpansion::endOf(Instance const& instance, CalendarDuration length) const {
    auto const& master = *series.master();
    auto const& clock = master.clock(viewer);
    if (instance.period == nullptr || master.component->isAllDay())
        return endInstant(instance.local, instance.instant, length, clock);
    auto const& period = *instance.period;
    return period.end ? instantOfName(*period.end, master)
                      : endInstant(instance.local, instance.instant, *period.duration, clock);
}

void SeriesExpansion::addShifted(Instance const& instance, Shift const& shift) {
    if (shift.event.component->status == EventStatus::cancelled) {
        if (omissions != nullptr)
            omit(Omission::Reason::cancelledOccurrence, instance, shift.length, shift.event);
        return;
    }
    auto const& start = shift.event.component->start;
    auto const& masterStart = series.master()->component->start;
    auto const& clock = shift.event.clock(viewer);
    bool const isSameClock = shift.event.clocks == series.master()->clocks &&
                             start.form == masterStart.form && start.zone == masterStart.zone;
    auto const isDay = start.form == TimeForm::date || masterStart.form == TimeForm::date;
    auto local = isSameClock || isDay ? instance.local : clock.local(instance.instant);
    if (start.form == TimeForm::date) local = dayOf(local) * secondsPerDay;
    local += shift.distance;
    auto const instant = clock.instant(local);
    addOccurrence(shift.event, local, instant, endInstant(local, instant, shift.length, clock), shift.length,
                  keyOfInstance(instance.local));
}

void SeriesExpansion::addOverrides() {
    // One that stands for an occurrence alone says more about it than one for all that follows.
    std::vector<std::int64_t> alone;
    for (auto const& event : series.overrides()) {
        if (!event.component->isThisAndFuture)
            alone.push_back(instantOfName(*event.component->recurrenceId, event));
    }
    std::ranges::sort(alone);
    for (auto const& event : series.overrides()) {
        auto const& component = *event.component;
        if (component.status == EventStatus::cancelled) continue;
        bool const isOutdone =
            component.isThisAndFuture &&
            std::ranges::binary_search(alone, instantOfName(*component.recurrenceId, event));
        if (isOutdone) continue;
        auto const& clock = event.clock(viewer);
        auto const length = event.length(viewer);
        auto const local = component.start.localSeconds;
        auto const start = clock.instant(local);
        addOccurrence(event, local, start, endInstant(local, start, length, clock), length,
                      keyOfOverride(event));
    }
}

// Adds what overlaps the window.
void SeriesExpansion::addOccurrence(ClockedEvent const& event, std::int64_t startLocal, std::int64_t start,
                                    std::int64_t end, CalendarDuration length,
                                    std::optional<std::string> key) {
    auto const placement = placementInWindow(event, startLocal, start, end, length);
    if (!placement) return;
    if (placement->start < earliestShown || placement->end > latestShown) {
        report(Problem::Effect::skipped,
               "what of it lies on the first or last day of the years 1 to 9999 is not shown");
        return;
    }
    if (added >= limits.occurrencesPerSeries || std::ssize(result.occurrences) >= limits.occurrences) {
        hasCutRule = true;
        reportCut("it happens too often; only the first occurrences of the time asked for are shown");
        return;
    }
    ++added;
    result.occurrences.push_back(occurrence(event, *placement, std::move(key)));
}

// What lasts "for ever" ends with the last day that every clock can name.
std::optional<SeriesExpansion::Placement>
SeriesExpansion::placementInWindow(ClockedEvent const& event, std::int64_t startLocal, std::int64_t start,
                                   std::int64_t end, CalendarDuration length) const {
    bool const isAllDay = event.component->isAllDay();
    auto const firstDay = isAllDay ? dayOf(startLocal) : 0;
    auto endDay = isAllDay ? firstDay + length.days : 0;
    if (isAllDay && endDay > latestDayShown && firstDay < latestDayShown) {
        endDay = latestDayShown;
        end = viewer.instant(endDay * secondsPerDay);
    } else if (!isAllDay && start <= latestShown) {
        end = std::min(end, latestShown);
    }
    auto const startDate = static_cast<double>(start);
    bool const overlaps = start == end ? startDate >= window.from && startDate < window.to
                                       : startDate<window.to&& static_cast<double>(end)> window.from;
    if (!overlaps) return std::nullopt;
    return Placement{.start = start, .end = end, .firstDay = firstDay, .endDay = endDay};
}

Occurrence SeriesExpansion::occurrence(ClockedEvent const& event, Placement const& placement,
                                       std::optional<std::string> key) const {
    return {.event = event.component,
            .file = event.clocks->file,
            .master = series.master() ? series.master()->component : nullptr,
            .start = {.secondsSince1970 = static_cast<double>(placement.start)},
            .end = {.secondsSince1970 = static_cast<double>(placement.end)},
            .isAllDay = event.component->isAllDay(),
            .firstDay = civilDays(placement.firstDay),
            .endDay = civilDays(placement.endDay),
            .key = std::move(key)};
}

std::optional<std::string> SeriesExpansion::keyOfInstance(std::int64_t local) const {
    auto const& master = *series.master()->component;
    if (!master.isRecurring()) return std::nullopt;
    return CalendarTime{.form = master.start.form, .zone = 0, .localSeconds = local}.text();
}

std::string SeriesExpansion::keyOfOverride(ClockedEvent const& event) const {
    auto const& id = *event.component->recurrenceId;
    if (!series.master()) return id.text();
    auto const& masterStart = series.master()->component->start;
    auto const zoneName = [](ClockedEvent const& owner, CalendarTime const& time) {
        return time.form == TimeForm::zoned ? std::string_view(owner.clocks->file->zoneNames[time.zone]) : "";
    };
    // The same clock shows the time as it stands; through the instant a time in a gap would come out moved.
    bool const isSameClock =
        id.form == masterStart.form && zoneName(event, id) == zoneName(*series.master(), masterStart);
    bool const isLocal = isSameClock || masterStart.form == TimeForm::date || id.form == TimeForm::date ||
                         id.form == TimeForm::floating;
    auto local = isLocal ? id.localSeconds : series.master()->clock(viewer).local(instantOfName(id, event));
    if (id.form == TimeForm::date && masterStart.form != TimeForm::date) {
        local += floorModulo(masterStart.localSeconds, secondsPerDay);
    }
    return CalendarTime{.form = masterStart.form, .zone = 0, .localSeconds = local}.text();
}

// A floating EXDATE or RECURRENCE-ID is read on the master's clock.
std::int64_t SeriesExpansion::instantOfName(CalendarTime const& time, ClockedEvent const& owner) const {
    bool const isFloating = time.form == TimeForm::floating || time.form == TimeForm::date;
    if (isFloating && series.master()) return series.master()->clock(viewer).instant(time.localSeconds);
    return owner.instant(time, viewer);
}

void SeriesExpansion::reportCut(std::string reason) {
    report(Problem::Effect::adjusted, std::move(reason));
}

void SeriesExpansion::report(Problem::Effect effect, std::string reason) {
    if (std::exchange(isReported, true)) return;
    auto const* component =
        series.master() ? series.master()->component : series.overrides().front().component;
    auto const* file =
        series.master() ? series.master()->clocks->file : series.overrides().front().clocks->file;
    if (result.problems.size() >= CalendarFile::maximumProblems) return;
    result.problems.push_back({.path = file->path,
                               .line = component->line,
                               .uid = component->uid,
                               .effect = effect,
                               .reason = std::move(reason)});
}

} // namespace Platform::ICalendar
