#include "Platform/EventStore/ICalendar/SeriesEditor.h"

#include "Platform/EventStore/ICalendar/CivilDays.h"
#include "Platform/EventStore/ICalendar/EventTextWriter.h"
#include "Platform/EventStore/ICalendar/OccurrenceTimes.h"
#include "Platform/EventStore/ICalendar/TimeZoneWriter.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Platform::ICalendar {
namespace {

std::vector<std::shared_ptr<CalendarFile const>> filesOf(std::vector<CalendarSource> const& sources) {
    std::vector<std::shared_ptr<CalendarFile const>> files;
    files.reserve(sources.size());
    for (auto const& source : sources)
        files.push_back(source.file);
    return files;
}

std::int64_t seconds(Foundation::Date date) {
    return static_cast<std::int64_t>(std::floor(date.secondsSince1970));
}

std::int64_t lengthOf(EventTimes const& times) {
    return times.end - times.start;
}

Splice replacement(EventComponent const& component, std::string text) {
    return {.offset = component.offset, .length = component.length, .text = std::move(text)};
}

} // namespace

SeriesEditor::SeriesEditor(std::vector<CalendarSource> const& sources, std::string uid,
                           std::shared_ptr<ZoneCatalog> zones, Foundation::TimeZone viewer)
    : sources(sources),
      zones(std::move(zones)),
      viewer(std::move(viewer)),
      viewerZone(this->viewer),
      all(filesOf(sources), this->zones),
      parts(sources, std::move(uid), *this->zones) {}

std::optional<Occurrence> SeriesEditor::occurrence(std::optional<std::string> const& key) const {
    if (parts.isEmpty()) return std::nullopt;
    if (!key) return all.firstOccurrence(parts.uid(), viewer);
    // Wherever an exception has moved it: near its own place, near the exceptions, or as far off as one of
    // them moves all that follow.
    std::vector<std::int64_t> places;
    for (auto const& exception : parts.series().overrides()) {
        places.push_back(exception.instant(exception.component->start, viewerZone));
    }
    if (parts.series().master()) {
        SeriesTimes const times(*parts.series().master(), viewerZone);
        auto const local = times.localOfKey(*key);
        if (!local) return std::nullopt;
        auto const place = times.clock().rules.instant(*local);
        places.push_back(place);
        for (auto const& exception : parts.series().overrides()) {
            if (!exception.component->isThisAndFuture) continue;
            auto const& component = *exception.component;
            places.push_back(place + component.start.localSeconds - component.recurrenceId->localSeconds);
        }
    }
    constexpr double near = 2.0 * secondsPerDay;
    for (auto const place : places) {
        Foundation::Date const middle{.secondsSince1970 = static_cast<double>(place)};
        auto found = all.occurrencesOfSeries(parts.uid(), middle.addingTimeInterval(-near),
                                             middle.addingTimeInterval(near), viewer)
                         .occurrences;
        auto const match = std::ranges::find(found, key, &Occurrence::key);
        if (match != found.end()) return std::move(*match);
    }
    return std::nullopt;
}

EditResult SeriesEditor::save(Occurrence const& occurrence, EventChange const& change, EditSpan span,
                              EditCircumstances const& given) const {
    auto const& shown = parts.partOf(occurrence.event);
    if (!parts.series().master() || !occurrence.key) return edited(shown, occurrence, change, given);
    if (span == EditSpan::thisOccurrence) {
        // An exception is one event of its own: it has no rules, whatever the record carried.
        auto own = change;
        own.rules.reset();
        bool const isException =
            shown.event.component->recurrenceId && !shown.event.component->isThisAndFuture;
        if (isException) return edited(shown, occurrence, own, given);
        return withException(occurrence, own, given);
    }
    SeriesTimes const times(*parts.series().master(), viewerZone);
    SeriesSplit const split(parts, times.localOfKey(*occurrence.key).value(), viewer);
    if (!split.hasEarlier()) return split.whole(occurrence, change, given.now);
    // The division itself must neither lose nor add anything; then what changes may go into it.
    auto const plain = split.dividedAsItIs(occurrence, given.newUID, given.now);
    if (!plain) return plain;
    if (!showsTheSame(*plain, occurrence)) {
        return std::unexpected(
            "The series repeats in a way that cannot be divided at this event; change this "
            "event alone, or the whole series from its first event on");
    }
    return split.divided(occurrence, change, given.newUID, given.now);
}

EditResult SeriesEditor::remove(Occurrence const& occurrence, EditSpan span,
                                EditCircumstances const& given) const {
    if (!occurrence.key) return removeAll();
    if (span == EditSpan::thisOccurrence) {
        auto edit = withoutOccurrence(occurrence, given);
        return isEmptyAfter(edit) ? removeAll() : edit;
    }
    if (!parts.series().master()) return removeAll();
    SeriesTimes const times(*parts.series().master(), viewerZone);
    SeriesSplit const split(parts, times.localOfKey(*occurrence.key).value(), viewer);
    if (!split.hasEarlier()) return removeAll();
    return split.ended(given.now);
}

CalendarEdit SeriesEditor::removeAll() const {
    CalendarEditBuilder builder(sources, parts.uid());
    for (auto const& part : parts.all())
        builder.remove(part.source, *part.event.component);
    return builder.edit();
}

bool SeriesEditor::reachesAll(Occurrence const& occurrence, EventChange const& change, EditSpan span) const {
    if (!occurrence.key) return true;
    if (span == EditSpan::thisOccurrence) return false;
    if (!parts.series().master()) return true;
    SeriesTimes const times(*parts.series().master(), viewerZone);
    if (!SeriesSplit(parts, times.localOfKey(*occurrence.key).value(), viewer).hasEarlier()) return true;
    // The first to be seen need not be the first of the rule; but then a change would divide the series.
    auto const first = all.firstOccurrence(parts.uid(), viewer);
    return change.isEmpty() && first && first->key == occurrence.key;
}

// The exceptions of that occurrence, in whatever version. Without a master each stands by its own name.
std::vector<SeriesPart const*> SeriesEditor::exceptionsOf(Occurrence const& occurrence) const {
    std::vector<SeriesPart const*> found;
    for (auto const& part : parts.all()) {
        auto const& id = part.event.component->recurrenceId;
        if (!id) continue;
        bool isMeant = id->text() == occurrence.key;
        if (parts.series().master()) {
            SeriesTimes const times(*parts.series().master(), viewerZone);
            isMeant = times.local(*id, part.event) == times.localOfKey(*occurrence.key);
        }
        if (isMeant) found.push_back(&part);
    }
    return found;
}

TimesWriting SeriesEditor::timesWriting(SeriesPart const& part, Occurrence const& occurrence) const {
    auto const& event = part.event;
    auto const& component = *event.component;
    auto const viewersClock = WritingClock::ofViewer(viewer);
    TimesWriting writing{.start = viewersClock,
                         .end = viewersClock,
                         .lengthBefore = std::nullopt,
                         .isRecurring = component.isRecurring()};
    // What a PERIOD gave its own length, no DURATION of the event says.
    auto const& clock = event.clock(viewerZone);
    auto const start = seconds(occurrence.start);
    auto const naturalEnd = endInstant(clock.local(start), start, event.length(viewerZone), clock);
    if (naturalEnd == seconds(occurrence.end)) writing.lengthBefore = lengthOf(timesOf(occurrence));
    if (component.isAllDay()) return writing;
    writing.start = WritingClock::of(component.start, event, viewerZone);
    writing.end = component.end ? WritingClock::of(*component.end, event, viewerZone) : writing.start;
    return writing;
}

CalendarEdit SeriesEditor::edited(SeriesPart const& part, Occurrence const& occurrence,
                                  EventChange const& change, EditCircumstances const& given) const {
    auto const& component = *part.event.component;
    auto text = parts.textOf(part);
    writeTexts(text, change);
    auto writing = timesWriting(part, occurrence);
    auto const before = timesOf(occurrence);
    auto const after = change.times.value_or(before);
    if (before.isAllDay != after.isAllDay) writing.lengthBefore.reset();
    bool const becomesSeries = change.rules && !change.rules->empty() && !component.isRecurring();
    bool const movesClock =
        becomesSeries && !after.isAllDay && followsAnotherClock(writing.start, after, change);
    if (movesClock) writing.start = writing.end = WritingClock::ofViewersDays(viewer);
    if (becomesSeries) writing.isRecurring = true;
    if (change.times || movesClock) writeTimes(text, after, writing);
    if (change.rules) {
        auto const startForm = after.isAllDay ? TimeForm::date : writing.start.form;
        writeRules(text, *change.rules, startForm, viewerZone);
    }
    stamp(text, change.changesWhen() ? Revision::ofTimes : Revision::ofTexts, given.now);

    auto result = text.text();
    result.insert(0, missingTimeZones(result, {.target = sources[part.source].file.get(), .viewer = viewer},
                                      text.lineBreak()));
    CalendarEdit edit{.uid = parts.uid(), .key = occurrence.key};
    edit.files.push_back({.source = part.source,
                          .splices = {replacement(component, std::move(result))},
                          .leavesNothing = false});
    return edit;
}

// Whether an event that begins to repeat must go over to the viewer's clock: the days of its rule are the
// viewer's, and its hours follow the viewer's summer time.
bool SeriesEditor::followsAnotherClock(WritingClock const& clock, EventTimes const& times,
                                       EventChange const& change) const {
    if (clock.form == TimeForm::utc) return true;
    return change.rulesNameViewersDays &&
           !clock.countsDaysAs(WritingClock::ofViewersDays(viewer), times.start);
}

CalendarEdit SeriesEditor::withException(Occurrence const& occurrence, EventChange const& change,
                                         EditCircumstances const& given) const {
    auto const& base = parts.partOf(occurrence.event);
    auto text = exceptionText(base, occurrence);
    writeTexts(text, change);
    auto writing = timesWriting(base, occurrence);
    auto const before = timesOf(occurrence);
    auto const after = change.times.value_or(before);
    if (before.isAllDay != after.isAllDay) writing.lengthBefore.reset();
    writing.isRecurring = false;
    writeTimes(text, after, writing);
    stamp(text, Revision::ofTimes, given.now);
    return addedBesideMaster(text, base, occurrence);
}

// A copy of what the occurrence shows now, named as an exception in the form of the series' start.
ComponentText SeriesEditor::exceptionText(SeriesPart const& base, Occurrence const& occurrence) const {
    SeriesTimes const times(*parts.series().master(), viewerZone);
    auto text = parts.textOf(base);
    for (auto const name : {"RRULE", "RDATE", "EXDATE", "EXRULE", "RECURRENCE-ID"})
        text.remove(name);
    WrittenTime const id{.form = times.clock().form,
                         .zone = times.clock().zone,
                         .localSeconds = times.localOfKey(*occurrence.key).value()};
    text.add("RECURRENCE-ID", id.parameters(), id.value());
    return text;
}

CalendarEdit SeriesEditor::addedBesideMaster(ComponentText const& text, SeriesPart const& base,
                                             Occurrence const& occurrence) const {
    auto const& master = parts.master();
    auto const& source = sources[master.source];
    auto const end = master.event.component->offset + master.event.component->length;
    auto const ownBytes = std::string_view(source.bytes).substr(0, end);
    auto added = text.text();
    added.insert(
        0,
        missingTimeZones(
            added, {.target = source.file.get(), .origin = sources[base.source].file.get(), .viewer = viewer},
            text.lineBreak()));
    if (!ownBytes.ends_with('\n') && !ownBytes.ends_with('\r')) added.insert(0, text.lineBreak());
    CalendarEdit edit{.uid = parts.uid(), .key = occurrence.key};
    edit.files.push_back({.source = master.source,
                          .splices = {{.offset = end, .length = 0, .text = std::move(added)}},
                          .leavesNothing = false});
    return edit;
}

CalendarEdit SeriesEditor::withoutOccurrence(Occurrence const& occurrence,
                                             EditCircumstances const& given) const {
    CalendarEditBuilder builder(sources, parts.uid());
    bool isShifted = false;
    for (auto const* const part : exceptionsOf(occurrence)) {
        if (part->event.component->isThisAndFuture) {
            isShifted = true;
        } else {
            builder.remove(part->source, *part->event.component);
        }
    }
    if (!parts.series().master()) return builder.edit();
    if (isShifted) {
        // That exception moves all that follow, and has to stay for them.
        auto const& base = parts.partOf(occurrence.event);
        auto text = exceptionText(base, occurrence);
        auto writing = timesWriting(base, occurrence);
        writing.isRecurring = false;
        writeTimes(text, timesOf(occurrence), writing);
        text.set("STATUS", "CANCELLED");
        stamp(text, Revision::ofTimes, given.now);
        auto edit = addedBesideMaster(text, base, occurrence);
        for (auto& file : edit.files)
            builder.add(file.source, std::move(file.splices));
        return builder.edit();
    }
    auto const& master = parts.master();
    SeriesTimes const times(*parts.series().master(), viewerZone);
    auto text = parts.textOf(master);
    WrittenTime const excluded{.form = times.clock().form,
                               .zone = times.clock().zone,
                               .localSeconds = times.localOfKey(*occurrence.key).value()};
    text.add("EXDATE", excluded.parameters(), excluded.value());
    stamp(text, Revision::ofTimes, given.now);
    builder.replace(master.source, *master.event.component, text.text());
    return builder.edit();
}

// The files as they would be.
std::vector<std::shared_ptr<CalendarFile const>> SeriesEditor::filesAfter(CalendarEdit const& edit) const {
    std::vector<std::shared_ptr<CalendarFile const>> files;
    for (std::size_t index = 0; index < sources.size(); ++index) {
        auto const change = std::ranges::find(edit.files, index, &CalendarEdit::FileEdit::source);
        files.push_back(change == edit.files.end() ? sources[index].file
                                                   : read(spliced(sources[index].bytes, change->splices)));
    }
    if (edit.newItem) {
        auto const zonesOfOrigin = missingTimeZones(
            edit.newItem->components,
            {.origin = sources[edit.newItem->origin].file.get(), .viewer = edit.newItem->viewer}, "\r\n");
        files.push_back(read(newCalendar(zonesOfOrigin + edit.newItem->components)));
    }
    return files;
}

// Whether nothing of the event would be left to see.
bool SeriesEditor::isEmptyAfter(CalendarEdit const& edit) const {
    return !SeriesSet(filesAfter(edit), zones).firstOccurrence(parts.uid(), viewer).has_value();
}

// Whether the years around the occurrence would show what they show now.
bool SeriesEditor::showsTheSame(CalendarEdit const& edit, Occurrence const& around) const {
    constexpr double year = 366.0 * secondsPerDay;
    auto const from = around.start.addingTimeInterval(-2 * year);
    auto const to = around.start.addingTimeInterval(4 * year);
    SeriesSet const after(filesAfter(edit), zones);
    bool isCut = false;
    std::vector<std::pair<double, double>> shownBefore;
    std::vector<std::pair<double, double>> shownAfter;
    auto const collect = [&](SeriesSet const& set, std::string const& uid, auto& shown) {
        auto const found = set.occurrencesOfSeries(uid, from, to, viewer);
        isCut = isCut || !found.problems.empty();
        for (auto const& occurrence : found.occurrences)
            shown.emplace_back(occurrence.start.secondsSince1970, occurrence.end.secondsSince1970);
    };
    collect(all, parts.uid(), shownBefore);
    collect(after, parts.uid(), shownAfter);
    collect(after, edit.uid, shownAfter);
    std::ranges::sort(shownBefore);
    std::ranges::sort(shownAfter);
    // Nobody counts what happens tens of thousands of times.
    return isCut || shownBefore == shownAfter;
}

} // namespace Platform::ICalendar
