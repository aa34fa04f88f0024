#include "Platform/EventStore/ICalendar/SeriesSplit.h"

#include "Platform/EventStore/ICalendar/CivilDays.h"
#include "Platform/EventStore/ICalendar/OccurrenceTimes.h"
#include "Platform/EventStore/ICalendar/RuleExpander.h"
#include "Platform/EventStore/ICalendar/RuleShift.h"
#include "Platform/EventStore/ICalendar/TimeLists.h"
#include "Platform/EventStore/ICalendar/ValueParser.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Platform::ICalendar {
namespace {

constexpr auto tooOften = "The series repeats too often to be divided";
constexpr auto notMovable =
    "The series repeats by a rule that cannot be moved to another day or time; give it another rule, or "
    "change this event alone";

// The properties that make an event a series.
constexpr std::array<std::string_view, 4> recurrenceProperties{"RRULE", "EXRULE", "RDATE", "EXDATE"};

std::int64_t dayOf(std::int64_t local) {
    return floorDivide(local, secondsPerDay);
}

std::int64_t numberIn(std::string const& text) {
    std::int64_t number = 0;
    for (char const digit : text) {
        if (digit >= '0' && digit <= '9')
            number = std::min<std::int64_t>(number * 10 + digit - '0', 1'000'000'000'000);
    }
    return number;
}

} // namespace

SeriesSplit::SeriesSplit(SeriesParts const& parts, std::int64_t local, Foundation::TimeZone const& viewer)
    : parts(parts),
      split(local),
      viewer(viewer),
      viewerZone(viewer),
      times(*parts.series().master(), viewerZone) {}

bool SeriesSplit::hasEarlier() const {
    auto const& master = *parts.series().master()->component;
    auto const& overrides = parts.series().overrides();
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
        if (isShown(times.local(date.start, *parts.series().master()))) return true;
    }
    for (std::size_t index = 0; index < master.rules.size(); ++index) {
        std::vector<std::int64_t> found;
        std::int64_t steps = 2'000'000;
        auto const last = std::min(split - 1, parts.series().ruleEnd(index).last);
        bool const isWhole = RuleExpander(master.rules[index], master.start.localSeconds)
                                 .expand(master.start.localSeconds, last, 200'000, steps, found);
        if (!isWhole || std::ranges::any_of(found, isShown)) return true;
    }
    return false;
}

// What EXDATEs and cancelled exceptions take out, in order. A bare day takes out the series' own time of it.
std::vector<std::int64_t> SeriesSplit::hiddenTimes() const {
    std::vector<std::int64_t> hidden;
    auto const& master = *parts.series().master();
    for (auto const& time : master.component->exceptionDates)
        hidden.push_back(times.local(time, master));
    for (auto const& event : parts.series().overrides()) {
        if (event.component->status == EventStatus::cancelled)
            hidden.push_back(times.local(*event.component->recurrenceId, event));
    }
    std::ranges::sort(hidden);
    return hidden;
}

// How many of a rule's occurrences lie before, DTSTART being the first of them in any case.
std::optional<std::int64_t> SeriesSplit::countBefore(std::size_t rule) const {
    auto const& master = *parts.series().master()->component;
    auto const start = master.start.localSeconds;
    if (split <= start) return 0;
    RuleExpander const expander(master.rules[rule], start);
    std::vector<std::int64_t> found;
    std::int64_t steps = 2'000'000;
    constexpr std::size_t most = 1'000'000;
    if (!expander.expand(start, split - 1, most, steps, found)) return std::nullopt;
    return std::ssize(found) + (expander.yields(start) ? 0 : 1);
}

EditResult SeriesSplit::ended(std::int64_t now) const {
    CalendarEditBuilder builder(parts.sources(), parts.uid());
    auto text = parts.textOf(parts.master());
    if (auto const reason = endSeries(text)) return std::unexpected(*reason);
    stamp(text, Revision::ofTimes, now);
    builder.replace(parts.master().source, *parts.master().event.component, text.text());
    for (auto const& part : parts.all()) {
        if (part.event.component->recurrenceId && idOf(part) >= split)
            builder.remove(part.source, *part.event.component);
    }
    return builder.edit();
}

// Takes out of the master's text all that comes from the occurrence on.
std::optional<std::string> SeriesSplit::endSeries(ComponentText& event) const {
    auto const& master = *parts.series().master();
    auto const written = event.properties("RRULE");
    for (std::size_t index = 0; index < written.size(); ++index) {
        auto const& rule = master.component->rules[index];
        RuleText text(written[index].value);
        if (rule.count) {
            auto const before = countBefore(index);
            if (!before) return tooOften;
            if (*before >= *rule.count) continue;
            text.set("COUNT", std::to_string(*before));
        } else {
            if (rule.until && times.local(*rule.until, master) < split) continue;
            text.set("UNTIL", untilBefore(split, times.clock()));
        }
        event.replace(written[index].line, written[index].parameters, text.text());
    }
    auto const unmoved = TimeMapping::taking(0, times.clock(), 0, times.clock());
    // A bare day may still take out an earlier time of the same day.
    auto const isEarlier = [this](std::int64_t local, bool isDay) {
        return isDay ? dayOf(local) <= dayOf(split) : local < split;
    };
    rewriteTimeLists(event, "EXDATE", master, times, isEarlier, unmoved);
    rewriteTimeLists(
        event, "RDATE", master, times, [this](std::int64_t local, bool) { return local < split; }, unmoved);
    return std::nullopt;
}

EditResult SeriesSplit::divided(Occurrence const& occurrence, EventChange const& change,
                                std::string const& newUID, std::int64_t now) const {
    auto edit = ended(now);
    if (!edit) return edit;
    auto next = continuation(occurrence, change, Reach::rest);
    if (!next) return std::unexpected(std::move(next.error()));
    makeNew(next->event, newUID, now);
    auto components = next->event.text();
    for (auto const& part : parts.all()) {
        bool const isLater = counts(part) && idOf(part) > split;
        if (!isLater || !stays(*next, idOf(part))) continue;
        auto exception = parts.textOf(part);
        exception.set("UID", escapedText(newUID));
        if (!next->mapping.isIdentity())
            writeTime(exception, "RECURRENCE-ID", next->mapping.written(idOf(part)));
        if (!components.ends_with('\n') && !components.ends_with('\r')) components += next->event.lineBreak();
        components += exception.text();
    }
    if (!components.ends_with('\n') && !components.ends_with('\r')) components += next->event.lineBreak();
    edit->newItem = {.uid = newUID, .components = std::move(components), .origin = parts.master().source};
    edit->uid = newUID;
    edit->key.reset();
    if (next->repeats) edit->key = next->mapping.written(split).value();
    return edit;
}

EditResult SeriesSplit::whole(Occurrence const& occurrence, EventChange const& change,
                              std::int64_t now) const {
    auto next = continuation(occurrence, change, Reach::whole);
    if (!next) return std::unexpected(std::move(next.error()));
    auto const& master = parts.master();
    auto const* const shown = occurrence.event;
    if (shown != master.event.component) {
        auto const sequence = std::max(shown->sequence, master.event.component->sequence);
        next->event.set("SEQUENCE", std::to_string(sequence));
    }
    stamp(next->event, change.changesWhen() ? Revision::ofTimes : Revision::ofTexts, now);
    CalendarEditBuilder builder(parts.sources(), parts.uid());
    builder.replace(master.source, *master.event.component, next->event.text());
    for (auto const& part : parts.all()) {
        auto const& component = *part.event.component;
        if (!component.recurrenceId) continue;
        bool const isAbsorbed = shown->recurrenceId && idOf(part) == split;
        if (isAbsorbed || !counts(part) || !stays(*next, idOf(part))) {
            builder.remove(part.source, component);
        } else if (!next->mapping.isIdentity()) {
            auto exception = parts.textOf(part);
            writeTime(exception, "RECURRENCE-ID", next->mapping.written(idOf(part)));
            builder.replace(part.source, component, exception.text());
        }
    }
    auto edit = builder.edit();
    if (next->repeats) edit.key = next->mapping.written(split).value();
    return edit;
}

std::expected<SeriesSplit::Continuation, std::string>
SeriesSplit::continuation(Occurrence const& occurrence, EventChange const& change, Reach reach) const {
    auto const& master = parts.master();
    auto const& base = parts.partOf(occurrence.event);
    auto text = parts.textOf(base);
    if (base.event.component != master.event.component) {
        // What is shown goes on, with the recurrence of the series.
        text.remove("RECURRENCE-ID");
        auto const original = parts.textOf(master);
        for (auto const name : recurrenceProperties) {
            text.remove(name);
            for (auto const& property : original.properties(name))
                text.add(name, property.parameters, property.value);
        }
    }
    writeTexts(text, change);
    auto mapping = writeStart(text, occurrence, change, reach);
    auto const startForm = mapping.to.form;
    if (change.rules) {
        auto rules = *change.rules;
        if (reach == Reach::rest) {
            if (auto const reason = countRest(rules)) return std::unexpected(*reason);
        }
        writeRules(text, rules, startForm, viewerZone);
    } else if (auto const reason = continueRules(text, mapping, reach)) {
        return std::unexpected(*reason);
    }
    bool const isSingle = change.rules && change.rules->empty();
    auto const isLater = [&](std::int64_t local, bool isDay) {
        if (isSingle) return false;
        if (reach == Reach::whole) return true;
        return isDay ? dayOf(local) >= dayOf(split) : local > split;
    };
    if (isSingle) text.remove("EXRULE");
    rewriteTimeLists(text, "EXDATE", master.event, times, isLater, mapping);
    rewriteTimeLists(text, "RDATE", master.event, times, isLater, mapping);

    Continuation next{.event = std::move(text),
                      .mapping = std::move(mapping),
                      .rules = {},
                      .repeats = false,
                      .hasNewRules = change.rules.has_value()};
    for (auto const& property : next.event.properties("RRULE")) {
        auto rule = parseRule(property.value);
        if (rule) next.rules.push_back(*std::move(rule));
    }
    next.repeats = !next.rules.empty() || next.event.first("RDATE").has_value();
    return next;
}

// Writes when the continued series starts, and tells how its times become those.
TimeMapping SeriesSplit::writeStart(ComponentText& event, Occurrence const& occurrence,
                                    EventChange const& change, Reach reach) const {
    auto const& base = parts.partOf(occurrence.event);
    auto const& component = *base.event.component;
    auto const before = timesOf(occurrence);
    auto const after = change.times.value_or(before);
    auto clock = times.clock();
    if (after.isAllDay) {
        clock = {.form = TimeForm::date, .zone = {}, .rules = viewerZone};
    } else if (times.isAllDay()) {
        clock = WritingClock::ofViewer(viewer);
    }
    bool const isBaseMaster = &base == &parts.master();
    bool const keepsTime = isBaseMaster && !change.times;
    auto const shownLocal = after.isAllDay ? after.start : clock.rules.local(after.start);
    auto const target = keepsTime ? split : shownLocal;
    auto mapping = TimeMapping::taking(split, times.clock(), target, clock);
    if (keepsTime && reach == Reach::whole) return mapping;

    auto const start =
        reach == Reach::whole ? mapping(parts.master().event.component->start.localSeconds) : target;
    auto const startInstant = after.isAllDay ? start : clock.rules.instant(start);
    auto length = after.end - after.start;
    auto const natural = base.event.length(viewerZone);
    auto const naturalLength = component.isAllDay()
                                   ? natural.days * secondsPerDay
                                   : endInstant(start, startInstant, natural, clock.rules) - startInstant;
    // What a PERIOD lasted does not go for all that follow.
    if (keepsTime) length = naturalLength;
    TimesWriting writing{.start = clock,
                         .end = clock,
                         .lengthBefore = component.isAllDay() == after.isAllDay ? std::optional(naturalLength)
                                                                                : std::nullopt,
                         .isRecurring = true};
    if (component.end && !component.isAllDay() && !after.isAllDay)
        writing.end = WritingClock::of(*component.end, base.event, viewerZone);
    writeTimes(event, {.isAllDay = after.isAllDay, .start = startInstant, .end = startInstant + length},
               writing);
    // A time that the clock skips that day is written as the series has it.
    writeTime(event, "DTSTART", {.form = clock.form, .zone = clock.zone, .localSeconds = start});
    return mapping;
}

// Makes the series' own rules go on from the occurrence.
std::optional<std::string> SeriesSplit::continueRules(ComponentText& event, TimeMapping const& mapping,
                                                      Reach reach) const {
    auto const& master = *parts.series().master();
    auto const written = event.properties("RRULE");
    for (auto index = written.size(); index-- > 0;) {
        auto const& rule = master.component->rules[index];
        RuleText text(written[index].value);
        bool isOver = false;
        if (rule.count && reach == Reach::rest) {
            auto const before = countBefore(index);
            if (!before) return tooOften;
            isOver = *before >= *rule.count;
            text.set("COUNT", std::to_string(*rule.count - *before));
        }
        if (rule.until) {
            auto const until = times.local(*rule.until, master);
            isOver = isOver || (reach == Reach::rest && until < split);
            if (!mapping.isIdentity()) text.set("UNTIL", untilAt(mapping(until), mapping.to));
        }
        if (isOver) {
            event.removeLine(written[index].line);
            continue;
        }
        bool const isMoved =
            moveRule(text, rule, split, mapping(split),
                     mapping.to.form == TimeForm::date && mapping.from.form != TimeForm::date);
        if (!isMoved) return notMovable;
        if (RuleText(written[index].value) != text)
            event.replace(written[index].line, written[index].parameters, text.text());
    }
    if (!mapping.isIdentity() && !master.component->exceptionRules.empty()) return notMovable;
    return std::nullopt;
}

// Of a count that nobody changed, what lies before the occurrence has been used up.
std::optional<std::string> SeriesSplit::countRest(std::vector<RuleChange>& rules) const {
    auto const& known = parts.series().master()->component->rules;
    for (std::size_t index = 0; index < std::min(rules.size(), known.size()); ++index) {
        auto const count = rules[index].rule.value("COUNT");
        bool const isUnchanged = count && known[index].count && numberIn(*count) == *known[index].count;
        if (!isUnchanged) continue;
        auto const before = countBefore(index);
        if (!before) return tooOften;
        rules[index].rule.set("COUNT",
                              std::to_string(std::max<std::int64_t>(*known[index].count - *before, 1)));
    }
    return std::nullopt;
}

std::int64_t SeriesSplit::idOf(SeriesPart const& part) const {
    return times.local(*part.event.component->recurrenceId, part.event);
}

// Whether it is the version that counts of an exception.
bool SeriesSplit::counts(SeriesPart const& part) const {
    return std::ranges::any_of(parts.series().overrides(), [&](ClockedEvent const& event) {
        return event.component == part.event.component;
    });
}

// Whether an exception of that time still stands for something.
bool SeriesSplit::stays(Continuation const& next, std::int64_t local) const {
    if (!next.repeats) return false;
    if (!next.hasNewRules) return true;
    auto const moved = next.mapping(local);
    auto const start = next.mapping(split);
    return std::ranges::any_of(next.rules, [&](RecurrenceRule const& rule) {
        return moved == start || RuleExpander(rule, start).yields(moved);
    });
}

} // namespace Platform::ICalendar
