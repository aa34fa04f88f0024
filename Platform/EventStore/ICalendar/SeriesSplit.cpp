#include "Platform/EventStore/ICalendar/SeriesSplit.h"

#include "Platform/EventStore/ICalendar/CivilDays.h"
#include "Platform/EventStore/ICalendar/ExceptionText.h"
#include "Platform/EventStore/ICalendar/OccurrenceTimes.h"
#include "Platform/EventStore/ICalendar/RuleExpander.h"
#include "Platform/EventStore/ICalendar/RuleShift.h"
#include "Platform/EventStore/ICalendar/TimeLists.h"
#include "Platform/EventStore/ICalendar/TimeZoneWriter.h"
#include "Platform/EventStore/ICalendar/ValueParser.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Platform::ICalendar {
namespace {

bool isException(EventComponent const& event) {
    return event.recurrenceId && !event.isThisAndFuture;
}

constexpr auto tooOften = "The series repeats too often to be divided";
constexpr auto notMovable =
    "The series repeats by a rule that cannot be moved to another day or time; give it another rule, or "
    "change this event alone";

// The properties that make an event a series.
constexpr std::array<std::string_view, 4> recurrenceProperties{"RRULE", "EXRULE", "RDATE", "EXDATE"};

// Whether nothing but the occurrence itself is to be left.
bool endsRepeating(EventChange const& change) {
    return change.rules && change.rules->empty();
}

std::int64_t lengthOf(EventTimes const& times) {
    return times.end - times.start;
}

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
      times(*parts.series().master(), viewerZone),
      point(parts.series(), times, local) {}

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
            auto const before = point.countBefore(index);
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

EditResult SeriesSplit::dividedAsItIs(Occurrence const& occurrence, std::string const& newUID,
                                      std::int64_t now) const {
    return divided(isException(*occurrence.event) ? withoutException(occurrence) : occurrence, {}, newUID,
                   now, Exception::stays);
}

EditResult SeriesSplit::divided(Occurrence const& occurrence, EventChange const& change,
                                std::string const& newUID, std::int64_t now) const {
    return divided(occurrence, change, newUID, now, Exception::isAbsorbed);
}

// What the series itself would show in place of an exception.
Occurrence SeriesSplit::withoutException(Occurrence const& occurrence) const {
    auto const& master = *parts.series().master();
    auto plain = occurrence;
    auto const length = master.length(viewerZone);
    auto const start = times.clock().rules.instant(split);
    auto const end = endInstant(split, start, length, times.clock().rules);
    plain.event = master.component;
    plain.file = master.clocks->file;
    plain.start = {.secondsSince1970 = static_cast<double>(start)};
    plain.end = {.secondsSince1970 = static_cast<double>(end)};
    plain.isAllDay = times.isAllDay();
    plain.firstDay = std::chrono::local_days(std::chrono::days(dayOf(split)));
    plain.endDay = plain.firstDay + std::chrono::days(length.days);
    return plain;
}

EditResult SeriesSplit::divided(Occurrence const& occurrence, EventChange const& change,
                                std::string const& newUID, std::int64_t now, Exception own) const {
    auto edit = ended(now);
    if (!edit) return edit;
    auto next = continuation(occurrence, change, Reach::rest);
    if (!next) return std::unexpected(std::move(next.error()));
    makeNew(next->event, newUID, now);
    auto components = next->event.text();
    auto const add = [&components, &next](ComponentText const& text) {
        bool const endsInLine = components.ends_with('\n') || components.ends_with('\r');
        if (!endsInLine) components += next->event.lineBreak();
        components += text.text();
    };
    if (own == Exception::isAbsorbed) {
        if (auto kept = keptException(occurrence, change, *next)) {
            kept->set("UID", escapedText(newUID));
            stamp(*kept, Revision::ofTimes, now);
            add(*kept);
        }
    }
    for (auto const& part : parts.all()) {
        if (!counts(part)) continue;
        auto const id = idOf(part);
        bool const isLater = id > split || (id == split && own == Exception::stays &&
                                            part.event.component != occurrence.event);
        if (!isLater || !stays(*next, id)) continue;
        auto exception = parts.textOf(part);
        exception.set("UID", escapedText(newUID));
        if (!next->mapping.isIdentity())
            writeTime(exception, "RECURRENCE-ID", next->mapping.written(idOf(part)));
        add(exception);
    }
    if (!components.ends_with('\n') && !components.ends_with('\r')) components += next->event.lineBreak();
    edit->newItem = {.uid = newUID,
                     .components = std::move(components),
                     .origin = parts.master().source,
                     .viewer = viewer};
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
    auto text = next->event.text();
    text.insert(0, missingTimeZones(text,
                                    {.target = parts.sources()[master.source].file.get(), .viewer = viewer},
                                    next->event.lineBreak()));
    builder.replace(master.source, *master.event.component, std::move(text));
    for (auto const& part : parts.all()) {
        auto const& component = *part.event.component;
        if (!component.recurrenceId) continue;
        bool const isShown = &component == shown;
        auto kept = isShown ? keptException(occurrence, change, *next) : std::nullopt;
        if (kept) {
            stamp(*kept, Revision::ofTimes, now);
            builder.replace(part.source, component, kept->text());
        } else if (isShown || !counts(part) || !stays(*next, idOf(part))) {
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

// Which VEVENT the rest is made of: the series' own, also where one changed occurrence is what others follow.
// An exception that moves all that follow speaks for them, and one that is left alone for itself.
SeriesPart const& SeriesSplit::speaker(Occurrence const& occurrence, EventChange const& change) const {
    bool const isFollowed = isException(*occurrence.event) && !endsRepeating(change);
    return isFollowed ? parts.master() : parts.partOf(occurrence.event);
}

ComponentText SeriesSplit::continuedText(Occurrence const& occurrence, EventChange const& change) const {
    auto const& base = speaker(occurrence, change);
    auto text = parts.textOf(base);
    if (&base == &parts.master()) {
        takeTexts(text, parts.textOf(parts.partOf(occurrence.event)));
        return text;
    }
    // What is shown goes on, with the recurrence of the series.
    text.remove("RECURRENCE-ID");
    auto const original = parts.textOf(parts.master());
    for (auto const name : recurrenceProperties) {
        text.remove(name);
        for (auto const& property : original.properties(name))
            text.add(name, property.parameters, property.value);
    }
    return text;
}

std::expected<SeriesSplit::Continuation, std::string>
SeriesSplit::continuation(Occurrence const& occurrence, EventChange const& change, Reach reach) const {
    auto const& master = parts.master();
    auto text = continuedText(occurrence, change);
    writeTexts(text, change);
    auto mapping = mappingFor(occurrence, change);
    writeStart(text, occurrence, change, mapping, reach);
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
    bool const isSingle = endsRepeating(change);
    bool const isOutOfStep = reach == Reach::rest && anchor() != split;
    auto const isLater = [&](std::int64_t local, bool isDay) {
        if (isSingle) return false;
        if (reach == Reach::whole || (local == split && isOutOfStep)) return true;
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

// How the times of the series change with the occurrence.
TimeMapping SeriesSplit::mappingFor(Occurrence const& occurrence, EventChange const& change) const {
    auto const& component = *occurrence.event;
    bool const isShifted = component.recurrenceId && component.isThisAndFuture;
    bool const isLeftAlone = isException(component) && endsRepeating(change);
    auto const before = timesOf(occurrence);
    auto const after = change.times.value_or(before);
    bool const isMoved = change.times || isShifted || isLeftAlone;
    // By how much an exception is off is its own affair: the others move as far as it does now.
    bool const isOff = !isMoved || (isException(component) && !isLeftAlone &&
                                    before.isAllDay == after.isAllDay && times.isAllDay() == after.isAllDay);
    auto const own = times.clock().rules.instant(split);
    auto const start = isOff ? own + after.start - before.start : after.start;
    auto const clock = clockFor(isMoved ? after.isAllDay : times.isAllDay(), start, change);
    auto const shown = [&](EventTimes const& given) {
        return given.isAllDay ? given.start : clock.rules.local(given.start);
    };
    if (!isOff) return TimeMapping::taking(split, times.clock(), shown(after), clock);
    // On its own clock it stays what it is, also where the clock skips it.
    bool const isOwnClock = clock.form == times.clock().form && clock.zone == times.clock().zone;
    auto const there = isOwnClock ? split : clock.rules.local(own);
    return TimeMapping::taking(split, times.clock(), there + shown(after) - shown(before), clock);
}

// The clock that the series goes on from `start`: its own, unless it takes another one to say what changes.
WritingClock SeriesSplit::clockFor(bool isAllDay, std::int64_t start, EventChange const& change) const {
    if (isAllDay) return {.form = TimeForm::date, .zone = {}, .rules = viewerZone};
    auto const viewersClock = WritingClock::ofViewersDays(viewer);
    if (times.isAllDay()) return viewersClock;
    bool const namesDays = change.rules && !change.rules->empty() && change.rulesNameViewersDays;
    return namesDays && !times.clock().countsDaysAs(viewersClock, start) ? viewersClock : times.clock();
}

// Where the rest of the series begins: at the occurrence; but at the next one of the rule where the
// occurrence is an added date, which would put the rule out of step.
std::int64_t SeriesSplit::anchor() const {
    return parts.series().master()->component->rules.size() == 1 ? point.nextOf(0) : split;
}

// Where the series begins that goes on so far, on the clock that it has now.
std::int64_t SeriesSplit::startOf(Reach reach) const {
    return reach == Reach::whole ? parts.master().event.component->start.localSeconds : anchor();
}

// Writes when the continued series starts.
void SeriesSplit::writeStart(ComponentText& event, Occurrence const& occurrence, EventChange const& change,
                             TimeMapping const& mapping, Reach reach) const {
    auto const& base = speaker(occurrence, change);
    bool const isFromMaster = &base == &parts.master();
    if (isFromMaster && mapping.isIdentity() && !change.times && reach == Reach::whole) return;
    auto const& component = *base.event.component;
    auto const& clock = mapping.to;
    bool const isAllDay = clock.form == TimeForm::date;
    auto const start = mapping(startOf(reach));
    auto const startInstant = isAllDay ? start : clock.rules.instant(start);
    auto const natural = base.event.length(viewerZone);
    auto const lengthBefore = component.isAllDay()
                                  ? natural.days * secondsPerDay
                                  : endInstant(start, startInstant, natural, clock.rules) - startInstant;
    // What a PERIOD or an exception lasted does not go for all that follow, unless it is changed.
    auto const shown = timesOf(occurrence);
    bool const isResized = change.times && (change.times->isAllDay != shown.isAllDay ||
                                            lengthOf(*change.times) != lengthOf(shown));
    bool const isOfOtherKind = component.isAllDay() != isAllDay;
    auto const length = isResized || isOfOtherKind ? lengthOf(change.times.value_or(shown)) : lengthBefore;
    TimesWriting writing{.start = clock, .end = clock, .lengthBefore = std::nullopt, .isRecurring = true};
    if (!isOfOtherKind) writing.lengthBefore = lengthBefore;
    bool const staysOnClock = clock.form == times.clock().form && clock.zone == times.clock().zone;
    if (component.end && !component.isAllDay() && staysOnClock)
        writing.end = WritingClock::of(*component.end, base.event, viewerZone);
    writeTimes(event, {.isAllDay = isAllDay, .start = startInstant, .end = startInstant + length}, writing);
    // A time that the clock skips that day is written as the series has it.
    writeTime(event, "DTSTART", {.form = clock.form, .zone = clock.zone, .localSeconds = start});
}

// The exception from which on a series is changed, changed with it. Absent when it is one no more.
std::optional<ComponentText> SeriesSplit::keptException(Occurrence const& occurrence,
                                                        EventChange const& change,
                                                        Continuation const& next) const {
    if (!isException(*occurrence.event) || !next.repeats) return std::nullopt;
    auto const plain = withoutException(occurrence);
    bool const isOff = occurrence.start != plain.start || occurrence.end != plain.end ||
                       occurrence.isAllDay != plain.isAllDay;
    bool const togglesDays = change.times && change.times->isAllDay != times.isAllDay();
    if (togglesDays) return std::nullopt;
    auto const& base = parts.partOf(occurrence.event);
    auto const& component = *base.event.component;
    auto text = parts.textOf(base);
    writeTexts(text, change);
    if (!isOff && point.happens() && !differsFrom(next.event, text)) return std::nullopt;
    if (change.times) {
        auto const onItsClock = [&](std::optional<CalendarTime> const& time) {
            bool const isTimed = time && time->form != TimeForm::date;
            return isTimed ? WritingClock::of(*time, base.event, viewerZone) : next.mapping.to;
        };
        auto const start = onItsClock(component.start);
        writeTimes(text, *change.times,
                   {.start = start,
                    .end = component.end ? onItsClock(component.end) : start,
                    .lengthBefore = std::nullopt,
                    .isRecurring = false});
    }
    if (!next.mapping.isIdentity()) writeTime(text, "RECURRENCE-ID", next.mapping.written(split));
    return text;
}

// Makes the series' own rules go on from the occurrence.
std::optional<std::string> SeriesSplit::continueRules(ComponentText& event, TimeMapping const& mapping,
                                                      Reach reach) const {
    auto const& master = *parts.series().master();
    auto const start = startOf(reach);
    auto const written = event.properties("RRULE");
    for (auto index = written.size(); index-- > 0;) {
        auto const& rule = master.component->rules[index];
        RuleText text(written[index].value);
        bool isOver = false;
        if (rule.count && reach == Reach::rest) {
            auto const before = point.countBefore(index);
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
        auto const occurrence = point.nextOf(index);
        bool const isMoved =
            moveRule(text, rule, {.before = start, .after = mapping(start)},
                     {.before = occurrence, .after = mapping(occurrence)},
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
        auto const before = point.countBefore(index);
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
