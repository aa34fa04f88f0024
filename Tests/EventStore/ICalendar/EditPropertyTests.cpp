// What holds for any rule, any event, any series.

#include "Foundation/Text.h"
#include "Platform/EventStore/Folder/EventDifference.h"
#include "Platform/EventStore/Folder/OccurrenceMapping.h"
#include "Platform/EventStore/ICalendar/ContentLineWriter.h"
#include "Platform/EventStore/ICalendar/CustomTimeZone.h"
#include "Platform/EventStore/ICalendar/EventTextWriter.h"
#include "Platform/EventStore/ICalendar/RuleExpander.h"
#include "Platform/EventStore/ICalendar/SeriesEditor.h"
#include "Platform/EventStore/ICalendar/TimeZoneWriter.h"
#include "Platform/EventStore/ICalendar/ValueParser.h"
#include "Tests/EventStore/ICalendar/CalendarFixtures.h"
#include "Tests/EventStore/ICalendar/RandomSeries.h"
#include "Tests/EventStore/ICalendar/WalkingExpander.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <set>

namespace Platform::ICalendar {
namespace {

using RandomSeries::between;
using RandomSeries::isOneIn;

constexpr std::int64_t start2026 = 1767225600;
constexpr auto editTime = start2026;

std::vector<CalendarSource> sourcesOf(std::string const& events) {
    std::vector<CalendarSource> sources;
    sources.push_back(calendarSource(newCalendar(events), "a.ics"));
    return sources;
}

// The files that an edit makes.
std::vector<CalendarSource> sourcesAfter(std::vector<CalendarSource> const& sources,
                                         CalendarEdit const& edit) {
    std::vector<CalendarSource> after;
    for (std::size_t index = 0; index < sources.size(); ++index) {
        auto bytes = sources[index].bytes;
        for (auto const& file : edit.files) {
            if (file.source == index) bytes = spliced(bytes, file.splices);
        }
        after.push_back(calendarSource(std::move(bytes), "a.ics"));
    }
    if (edit.newItem) after.push_back(calendarSource(newCalendar(edit.newItem->components), "new.ics"));
    return after;
}

struct Happening {
    double start;
    double end;
    std::string title;
    friend auto operator<=>(Happening const&, Happening const&) = default;
};

std::vector<Happening> happeningsOf(std::vector<CalendarSource> const& sources,
                                    std::vector<std::string> const& uids) {
    std::vector<std::shared_ptr<CalendarFile const>> files;
    for (auto const& source : sources)
        files.push_back(source.file);
    SeriesSet const set(files, std::make_shared<ZoneCatalog>());
    std::vector<Happening> found;
    for (auto const& uid : uids) {
        auto const expansion = set.occurrencesOfSeries(uid, {start2026 - 86'400.0 * 30},
                                                       {start2026 + 86'400.0 * 900}, zone("Europe/Madrid"));
        for (auto const& occurrence : expansion.occurrences) {
            found.push_back({.start = occurrence.start.secondsSince1970,
                             .end = occurrence.end.secondsSince1970,
                             .title = occurrence.event->summary ? occurrence.event->summary->text() : ""});
        }
    }
    std::ranges::sort(found);
    return found;
}

std::vector<std::string> keysOf(std::vector<CalendarSource> const& sources, std::string const& uid = "one") {
    std::vector<std::shared_ptr<CalendarFile const>> files;
    for (auto const& source : sources)
        files.push_back(source.file);
    SeriesSet const set(files, std::make_shared<ZoneCatalog>());
    std::vector<std::string> keys;
    for (auto const& occurrence : set.occurrencesOfSeries(uid, {start2026 - 86'400.0 * 30},
                                                          {start2026 + 86'400.0 * 400}, zone("Europe/Madrid"))
                                      .occurrences) {
        // What is left as a single event has none; its start is as good.
        keys.push_back(occurrence.key.value_or(occurrence.event->start.text()));
    }
    return keys;
}

// A series with whatever a series may have: an end, exceptions, added dates, changed occurrences.
std::string randomSeries() {
    auto const form = RandomSeries::form();
    bool const isAllDay = form.form == TimeForm::date;
    auto const start = start2026 + between(0, 60) * secondsPerDay + (isAllDay ? 0 : between(0, 96) * 900);
    auto rule = RandomSeries::rule();
    if (isAllDay) {
        if (auto const place = rule.find(";BYHOUR="); place != std::string::npos)
            rule.erase(place, rule.find(';', place + 1) - place);
    }
    if (isOneIn(3)) {
        rule += ";COUNT=" + std::to_string(between(1, 40));
    } else if (isOneIn(2)) {
        auto const until = start + between(1, 400) * secondsPerDay;
        auto const untilForm = form.form == TimeForm::zoned ? TimeForm::utc : form.form;
        rule += ";UNTIL=" + CalendarTime{.form = untilForm, .zone = 0, .localSeconds = until}.text();
    }
    std::string event = "BEGIN:VEVENT\r\nUID:one\r\nSUMMARY:Series\r\nDTSTART" +
                        RandomSeries::text(form, start) + "RRULE:" + rule + "\r\n";
    if (!isAllDay && isOneIn(2)) event += "DURATION:PT" + std::to_string(between(1, 200)) + "M\r\n";
    auto const parsed = parseRule(rule);
    RC_PRE(parsed.has_value());
    std::vector<std::int64_t> times{start};
    std::int64_t steps = 1'000'000;
    RuleExpander(*parsed, start).expand(start, start + 500 * secondsPerDay, 40, steps, times);
    auto const any = [&] { return *rc::gen::elementOf(times); };
    for (auto rest = between(0, 3); rest > 0; --rest)
        event += "EXDATE" + RandomSeries::text(form, any());
    if (isOneIn(4)) event += "RDATE" + RandomSeries::text(form, start + between(1, 90) * secondsPerDay);
    event += "END:VEVENT\r\n";
    for (auto rest = between(0, 3); rest > 0; --rest) {
        auto const time = any();
        event += "BEGIN:VEVENT\r\nUID:one\r\nSUMMARY:Exception\r\nRECURRENCE-ID" +
                 RandomSeries::text(form, time) + "DTSTART" +
                 RandomSeries::text(form, time + between(-3, 4) * secondsPerDay) +
                 (isOneIn(5) ? "STATUS:CANCELLED\r\n" : "") + "END:VEVENT\r\n";
    }
    return event;
}

std::string randomText() {
    static std::vector<std::string> const pieces{"a",    " ",          ",",    ";",    ":",     "\\", "\n",
                                                 "\r\n", "\"",         "\t",   "ä",    "日本",  "😀", "^",
                                                 "\\n",  "END:VEVENT", "\x01", "\xff", "word ", "=",  "\x7f"};
    std::string text;
    for (auto rest = between(0, 60); rest > 0; --rest)
        text += *rc::gen::elementOf(pieces);
    return text;
}

std::optional<std::string> randomOptionalText() {
    if (isOneIn(4)) return std::nullopt;
    return randomText();
}

EKEvent randomRecord() {
    EKEvent record{.eventIdentifier = "c:one",
                   .title = randomOptionalText(),
                   .isAllDay = isOneIn(4),
                   .notes = randomOptionalText(),
                   .location = randomOptionalText(),
                   .calendar = std::make_shared<EKCalendar const>()};
    if (isOneIn(2)) record.url = Foundation::URL::fromText("https://example.org/?q=a;b,c");
    auto const madrid = zone("Europe/Madrid");
    auto const local = start2026 + between(0, 365) * secondsPerDay;
    if (record.isAllDay) {
        auto const end = local + between(1, 5) * secondsPerDay;
        record.startDate = Foundation::Date{static_cast<double>(madrid.resolveLocal(local).first)};
        record.endDate = Foundation::Date{static_cast<double>(madrid.resolveLocal(end).first)};
    } else {
        auto const start = local + between(0, 86'400);
        record.startDate = Foundation::Date{static_cast<double>(start)};
        record.endDate = Foundation::Date{static_cast<double>(start + between(0, 200'000))};
    }
    if (isOneIn(3)) {
        EKRecurrenceRule rule{.frequency = *rc::gen::elementOf(
                                  std::vector{EKRecurrenceFrequency::daily, EKRecurrenceFrequency::weekly,
                                              EKRecurrenceFrequency::monthly, EKRecurrenceFrequency::yearly}),
                              .interval = between(1, 4)};
        if (rule.frequency == EKRecurrenceFrequency::weekly && isOneIn(2))
            rule.daysOfTheWeek = {{.dayOfTheWeek = between(1, 8)}};
        if (rule.frequency == EKRecurrenceFrequency::monthly && isOneIn(2))
            rule.daysOfTheMonth = {between(1, 29)};
        if (isOneIn(2)) rule.occurrenceCount = between(1, 20);
        record.recurrenceRules = {rule};
    }
    return record;
}

EKEvent recordIn(std::vector<CalendarSource> const& sources, EKEvent const& saved) {
    SeriesEditor const editor(sources, "one", std::make_shared<ZoneCatalog>(), zone("Europe/Madrid"));
    auto const occurrence = editor.occurrence(std::nullopt);
    RC_ASSERT(occurrence.has_value());
    return eventOfOccurrence(*occurrence, saved.calendar, zone("Europe/Madrid"));
}

// What a text comes to in a file: no control characters, one kind of line break, a blank one as none.
std::optional<std::string> kept(std::optional<std::string> const& text) {
    if (!text) return std::nullopt;
    std::string result = PropertyValue(escapedText(*text)).text();
    return result.find_first_not_of(" \t\n") == std::string::npos ? std::nullopt : std::optional(result);
}

void expectKept(EKEvent const& saved, EKEvent const& found) {
    RC_ASSERT(found.title == kept(saved.title));
    RC_ASSERT(found.notes == kept(saved.notes));
    RC_ASSERT(found.location == kept(saved.location));
    RC_ASSERT(found.url == saved.url);
    RC_ASSERT(found.isAllDay == saved.isAllDay);
    RC_ASSERT(found.startDate->secondsSince1970 == saved.startDate->secondsSince1970);
    RC_ASSERT(found.endDate->secondsSince1970 == saved.endDate->secondsSince1970);
    RC_ASSERT(found.recurrenceRules == saved.recurrenceRules);
}

std::string written(EKEvent const& record) {
    return newEventText("one", contentOf(record, zone("Europe/Madrid")), zone("Europe/Madrid"), editTime,
                        "\r\n");
}

} // namespace

RC_GTEST_PROP(EditPropertyTests, expandingByJumpingIsExpandingByWalking, ()) {
    auto const rule = parseRule(RandomSeries::rule());
    RC_PRE(rule.has_value());
    auto const start = start2026 + between(-3000, 3000) * secondsPerDay + between(0, 86'400);
    auto const last = start + between(1, 3000) * secondsPerDay;
    auto const from = start + between(0, last - start);
    std::vector<std::int64_t> jumped;
    std::int64_t steps = 10'000'000;
    RC_ASSERT(RuleExpander(*rule, start).expand(from, last, 1'000'000, steps, jumped));
    auto walked = walk(*rule, start, last);
    std::erase_if(walked, [&](std::int64_t time) {
        return time < from || (time == start && !RuleExpander(*rule, start).yields(start));
    });
    RC_ASSERT(jumped == walked);
}

RC_GTEST_PROP(EditPropertyTests, whatIsSavedIsRead, ()) {
    auto const record = randomRecord();
    auto const sources = sourcesOf(written(record));
    RC_ASSERT(sources[0].file->problems.empty());
    expectKept(record, recordIn(sources, record));
    // No physical line is too long, and none is cut inside a character.
    for (auto rest = std::string_view(sources[0].bytes); !rest.empty();) {
        auto const end = rest.find("\r\n");
        RC_ASSERT(end <= 75U);
        RC_ASSERT(Foundation::Text::isValidUTF8(rest.substr(0, end)));
        rest.remove_prefix(end + 2);
    }
}

RC_GTEST_PROP(EditPropertyTests, whatIsChangedIsReadAndTheRestStays, ()) {
    auto before = randomRecord();
    auto const after = randomRecord();
    // An occurrence of a series is not saved as a whole; that is another property.
    before.recurrenceRules.clear();
    auto own = written(before);
    own.insert(own.find("DTSTAMP"), "X-UNKNOWN;X-P=\"a;b\":fol\r\n ded\r\n");
    auto const head = std::string("BEGIN:VEVENT\r\nUID:zero\r\nDTSTART:20260101T000000Z\r\nEND:VEVENT\r\n");
    auto const tail = std::string("BEGIN:VEVENT\r\nUID:two\r\nDTSTART:20260101T000000Z\r\nEND:VEVENT\r\n");
    auto const sources = sourcesOf(head + own + tail);
    auto const madrid = zone("Europe/Madrid");
    SeriesEditor const editor(sources, "one", std::make_shared<ZoneCatalog>(), madrid);
    auto const occurrence = editor.occurrence(std::nullopt);
    auto const change = differenceBetween(after, *occurrence, editor.rules(), madrid);
    auto const edit =
        editor.save(*occurrence, change, EditSpan::thisOccurrence, {.now = editTime, .newUID = "new"});
    RC_ASSERT(edit.has_value());
    auto const changed = sourcesAfter(sources, *edit);
    expectKept(after, recordIn(changed, after));
    auto const& bytes = changed[0].bytes;
    RC_ASSERT(bytes.starts_with(std::string_view(sources[0].bytes).substr(0, sources[0].bytes.find(own))));
    RC_ASSERT(bytes.ends_with(tail + "END:VCALENDAR\r\n"));
    RC_ASSERT(bytes.find("X-UNKNOWN;X-P=\"a;b\":fol\r\n ded\r\n") != std::string::npos);
}

RC_GTEST_PROP(EditPropertyTests, dividingASeriesLosesAndAddsNothing, ()) {
    auto const sources = sourcesOf(randomSeries());
    auto const keys = keysOf(sources);
    RC_PRE(!keys.empty());
    auto const key = *rc::gen::elementOf(keys);
    SeriesEditor const editor(sources, "one", std::make_shared<ZoneCatalog>(), zone("Europe/Madrid"));
    auto const occurrence = editor.occurrence(key);
    RC_ASSERT(occurrence.has_value());
    bool const isException = occurrence->event->recurrenceId.has_value();
    auto const edit = editor.save(*occurrence, EventChange{.location = TextChange{.text = "New"}},
                                  EditSpan::thisAndFuture, {.now = editTime, .newUID = "new"});
    RC_CLASSIFY(!edit.has_value(), "refused");
    if (!edit) {
        // Only what no rule can say is refused.
        RC_ASSERT(
            edit.error().starts_with("The series repeats in a way that cannot be divided at this event"));
        return;
    }
    RC_CLASSIFY(edit->newItem.has_value(), "divided");
    RC_CLASSIFY(isException, "from an exception on");
    auto before = happeningsOf(sources, {"one"});
    auto after = happeningsOf(sourcesAfter(sources, *edit), {"one", "new"});
    // What is done to an exception is done to all from it on: they take over its texts.
    if (isException) {
        for (auto* const happenings : {&before, &after}) {
            for (auto& happening : *happenings)
                happening.title.clear();
        }
    }
    RC_LOG() << sources[0].bytes << (edit->newItem ? edit->newItem->components : std::string());
    for (auto const& file : edit->files)
        RC_LOG() << spliced(sources[0].bytes, file.splices);
    RC_ASSERT(before == after);
}

RC_GTEST_PROP(EditPropertyTests, movingTheRestMovesEachOfItAlike, ()) {
    auto const sources = sourcesOf(randomSeries());
    auto const keys = keysOf(sources);
    RC_PRE(!keys.empty());
    auto const key = *rc::gen::elementOf(keys);
    SeriesEditor const editor(sources, "one", std::make_shared<ZoneCatalog>(), zone("Europe/Madrid"));
    auto const occurrence = editor.occurrence(key);
    // By how much an exception is off is another matter.
    RC_PRE(!occurrence->event->recurrenceId.has_value());

    auto const& start = occurrence->master->start;
    auto const days = between(-3, 4);
    auto const distance = days * secondsPerDay + (start.form == TimeForm::date ? 0 : between(-2, 3) * 3600);
    RC_PRE(distance != 0);
    // The third Monday of each month becomes the third Tuesday, which is not always the day after.
    bool const isNamedByCount =
        std::ranges::any_of(occurrence->master->rules, [](RecurrenceRule const& rule) {
            return std::ranges::any_of(rule.byDay, [](auto const& day) { return day.ordinal != 0; });
        });
    RC_PRE(days == 0 || !isNamedByCount);
    auto const clock = start.form == TimeForm::utc     ? Foundation::TimeZone::utc()
                       : start.form == TimeForm::zoned ? zone(occurrence->file->zoneNames[start.zone])
                                                       : zone("Europe/Madrid");
    auto const local = parseTime(key, {})->localSeconds;
    auto const moved = clock.resolveLocal(local + distance);
    RC_PRE(moved.kind == Foundation::TimeZone::LocalTimeResolution::Kind::unique);
    bool const isAllDay = start.form == TimeForm::date;
    auto const first = isAllDay ? local + distance : moved.first;
    EventChange const change{.times = EventTimes{.isAllDay = isAllDay,
                                                 .start = first,
                                                 .end = first + (isAllDay ? secondsPerDay : 600)}};
    auto const edit =
        editor.save(*occurrence, change, EditSpan::thisAndFuture, {.now = editTime, .newUID = "new"});
    RC_CLASSIFY(!edit.has_value(), "refused");
    if (!edit) return;
    RC_CLASSIFY(edit->newItem.has_value(), "divided");

    auto const lastCompared = start2026 + 300 * secondsPerDay;
    auto const keysAfter = keysOf(sourcesAfter(sources, *edit), edit->uid);
    std::set<std::string> expected;
    std::set<std::string> found;
    for (auto const& old : keys) {
        auto const time = parseTime(old, {})->localSeconds;
        bool const isCompared = time < lastCompared && (old >= key || !edit->newItem);
        if (isCompared)
            expected.insert(
                CalendarTime{.form = start.form, .zone = 0, .localSeconds = time + distance}.text());
    }
    for (auto const& one : keysAfter) {
        if (parseTime(one, {})->localSeconds < lastCompared + distance) found.insert(one);
    }
    RC_LOG() << sources[0].bytes << (edit->newItem ? edit->newItem->components : std::string());
    RC_ASSERT(expected == found);
}

RC_GTEST_PROP(EditPropertyTests, removingTheRestAndTheRestAloneMakeTheWhole, ()) {
    auto const sources = sourcesOf(randomSeries());
    auto const keys = keysOf(sources);
    RC_PRE(!keys.empty());
    auto const key = *rc::gen::elementOf(keys);
    SeriesEditor const editor(sources, "one", std::make_shared<ZoneCatalog>(), zone("Europe/Madrid"));
    auto const occurrence = editor.occurrence(key);
    auto const removal =
        editor.remove(*occurrence, EditSpan::thisAndFuture, {.now = editTime, .newUID = "new"});
    RC_ASSERT(removal.has_value());
    auto const before = happeningsOf(sources, {"one"});
    auto const left = happeningsOf(sourcesAfter(sources, *removal), {"one"});
    // What is left was there before, and is not all of it.
    RC_ASSERT(std::ranges::includes(before, left));
    RC_ASSERT(left.size() < before.size());
    auto const remaining = keysOf(sourcesAfter(sources, *removal));
    RC_ASSERT(std::ranges::none_of(remaining, [&](std::string const& other) { return other >= key; }));
    std::set<std::string> earlier;
    std::ranges::copy_if(keys, std::inserter(earlier, earlier.end()),
                         [&](std::string const& other) { return other < key; });
    RC_ASSERT(std::set(remaining.begin(), remaining.end()) == earlier);
}

RC_GTEST_PROP(EditPropertyTests, oneOccurrenceRemovedIsOneLess, ()) {
    auto const sources = sourcesOf(randomSeries());
    auto const keys = keysOf(sources);
    RC_PRE(!keys.empty());
    auto const key = *rc::gen::elementOf(keys);
    SeriesEditor const editor(sources, "one", std::make_shared<ZoneCatalog>(), zone("Europe/Madrid"));
    auto const occurrence = editor.occurrence(key);
    auto const removal =
        editor.remove(*occurrence, EditSpan::thisOccurrence, {.now = editTime, .newUID = "new"});
    RC_ASSERT(removal.has_value());
    auto expected = happeningsOf(sources, {"one"});
    auto const gone = std::ranges::find_if(expected, [&](Happening const& happening) {
        return happening.start == occurrence->start.secondsSince1970 &&
               happening.end == occurrence->end.secondsSince1970;
    });
    RC_ASSERT(gone != expected.end());
    expected.erase(gone);
    auto const left = happeningsOf(sourcesAfter(sources, *removal), {"one"});
    RC_ASSERT(left.size() == expected.size());
}

RC_GTEST_PROP(EditPropertyTests, aDescribedZoneRunsAsTheSystemsDoes, ()) {
    auto const name = *rc::gen::elementOf(std::vector<std::string>{
        "Europe/Madrid", "America/New_York", "Asia/Kathmandu", "Australia/Lord_Howe", "Africa/Casablanca",
        "America/Sao_Paulo", "Pacific/Apia", "Europe/Dublin", "Asia/Jerusalem", "Etc/GMT+5"});
    auto const year = static_cast<std::int32_t>(between(1970, 2030));
    auto const described = timeZoneComponent(zone(name), year, "\r\n");
    std::int64_t steps = 1'000'000;
    auto const custom = CustomTimeZone::fromComponent(described, steps);
    RC_ASSERT(custom != nullptr);
    auto const first = dayNumber({.year = year, .month = 1, .day = 1}) * secondsPerDay;
    auto const instant = first + between(0, 38 * 366 * secondsPerDay);
    RC_ASSERT(custom->secondsFromUTC(instant) == zone(name).secondsFromUTC(instant));
}

} // namespace Platform::ICalendar
