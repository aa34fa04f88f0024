// What an edit makes of a file, byte for byte. Each folder of Edits/ is one behaviour: before.ics, and what
// comes of it in after.ics and, for a series that is divided, new.ics.

#include "Platform/EventStore/ICalendar/SeriesEditor.h"

#include "Platform/EventStore/ICalendar/CivilDays.h"
#include "Platform/EventStore/ICalendar/EventTextWriter.h"
#include "Platform/EventStore/ICalendar/TimeZoneWriter.h"
#include "Tests/EventStore/ICalendar/CalendarFixtures.h"
#include "Tests/Face/GoldenFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

namespace Platform::ICalendar {
namespace {

using Key = std::optional<std::string>;

std::string const root = QUILLORA_SOURCE_DIR "/";
constexpr auto viewersZone = "Europe/Madrid";
constexpr auto now = "2026-02-01T12:00:00Z";

std::int64_t seconds(std::string_view text) {
    return static_cast<std::int64_t>(instant(text).secondsSince1970);
}

TextChange text(std::string given) {
    return {.text = std::move(given)};
}

EventChange titled(std::string title) {
    return {.title = text(std::move(title))};
}

EventChange at(std::string_view start, std::string_view end) {
    return {.times = EventTimes{.isAllDay = false, .start = seconds(start), .end = seconds(end)}};
}

EventChange onDays(CivilDay first, CivilDay end) {
    return {.times = EventTimes{.isAllDay = true,
                                .start = dayNumber(first) * secondsPerDay,
                                .end = dayNumber(end) * secondsPerDay}};
}

EventChange ruled(std::vector<std::string> const& rules) {
    EventChange change{.rules = std::vector<RuleChange>(), .rulesNameViewersDays = true};
    for (auto const& rule : rules)
        change.rules->push_back({.rule = RuleText(rule), .until = std::nullopt});
    return change;
}

struct Row {
    char const* folder;
    Key key;
    EditSpan span;
    std::optional<EventChange> change; // Absent for a removal.
    bool leavesNothing = false;
};

constexpr auto alone = EditSpan::thisOccurrence;
constexpr auto future = EditSpan::thisAndFuture;

std::string const longTitle = "Übermäßig lange Überschrift mit Umlauten, äöüäöüäöüäöüäöüäöüäöüäöüäöüäöü "
                              "日本語日本語日本語日本語日本語日本語 "
                              "😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀 and a backslash \\ and\na line";

std::vector<Row> rows() {
    return {
        {"what-is-unknown-stays", {}, alone, titled("New title")},
        {"line-feeds-bom-and-lower-case", {}, alone, titled("New title")},
        {"bare-carriage-returns", {}, alone, titled("New title")},
        {"a-new-property-comes-before-the-alarms", {}, alone, EventChange{.notes = text("Notes")}},
        {"a-text-taken-away-is-taken-away-twice", {}, alone, EventChange{.location = TextChange{}}},
        {"an-empty-line-stays", {}, alone, at("2026-03-04T20:30:00Z", "2026-03-04T21:30:00Z")},
        {"another-form-of-the-text-goes", {}, alone, EventChange{.notes = text("New; notes")}},
        {"long-lines-are-folded-between-characters", {}, alone, titled(longTitle)},
        {"an-empty-text-is-written", {}, alone, EventChange{.notes = text("")}},
        {"moved-on-its-own-clocks", {}, alone, at("2026-07-11T10:00:00Z", "2026-07-11T11:00:00Z")},
        {"a-duration-stays-when-it-is-moved", {}, alone, at("2026-03-11T10:00:00Z", "2026-03-11T11:00:00Z")},
        {"a-duration-that-changes", {}, alone, at("2026-03-11T09:00:00Z", "2026-03-11T10:30:05Z")},
        {"a-floating-time-stays-floating", {}, alone, at("2026-03-11T09:00:00Z", "2026-03-11T10:00:00Z")},
        {"an-end-where-there-was-none", {}, alone, at("2026-03-11T09:00:00Z", "2026-03-11T09:30:00Z")},
        {"from-a-time-to-all-day", {}, alone, onDays({2026, 3, 12}, {2026, 3, 14})},
        {"from-all-day-to-a-time", {}, alone, at("2026-03-11T09:00:00Z", "2026-03-11T10:00:00Z")},
        {"the-second-pass-of-an-hour", {}, alone, at("2026-10-25T01:30:00Z", "2026-10-25T03:00:00Z")},
        {"a-rule-makes-a-series-on-the-viewers-clock", {}, alone, ruled({"FREQ=WEEKLY;BYDAY=TH"})},
        {"a-rule-on-its-own-clock", {}, alone, ruled({"FREQ=WEEKLY;BYDAY=MO"})},
        {"an-unfinished-file", {}, alone, titled("New")},
        {"the-version-that-counts-is-changed", {}, alone, titled("Newest")},
        {"an-occurrence-in-the-form-of-its-start", "20260330T090000", alone, titled("Special")},
        {"an-occurrence-of-days", "20260304", alone, onDays({2026, 3, 5}, {2026, 3, 7})},
        {"an-occurrence-in-utc", "20260304T090000Z", alone,
         at("2026-03-04T10:00:00Z", "2026-03-04T11:00:00Z")},
        {"an-occurrence-that-floats", "20260304T090000", alone, titled("Special")},
        {"a-changed-occurrence-is-changed-again", "20260316T090000", alone, titled("Very special")},
        {"an-occurrence-taken-out", "20260316T090000", alone, {}},
        {"a-changed-occurrence-taken-out", "20260316T090000", alone, {}},
        {"the-last-occurrence-taken-out", "20260303T090000Z", alone, {}},
        {"one-of-many-taken-out", {}, alone, {}},
        {"the-only-one-taken-out", {}, alone, {}, true},
        {"divided-by-count", "20260330T090000", future, titled("New")},
        {"divided-by-until", "20260330T090000", future, titled("New")},
        {"divided-without-end", "20260330T090000", future, titled("New")},
        {"divided-days", "20260310", future, titled("New")},
        {"divided-floating", "20260310T090000", future, titled("New")},
        {"divided-with-exceptions", "20260323T090000", future, titled("New")},
        {"divided-and-moved-an-hour", "20260323T090000", future,
         at("2026-03-23T09:00:00Z", "2026-03-23T10:30:00Z")},
        {"divided-and-moved-a-day", "20260304T090000", future,
         at("2026-03-05T08:00:00Z", "2026-03-05T09:00:00Z")},
        {"divided-at-a-changed-occurrence", "20260316T090000", future, titled("All are special")},
        {"divided-at-a-changed-occurrence-that-says-little", "20260316T090000Z", future,
         titled("All are special")},
        {"the-whole-series-from-a-changed-first-occurrence", "20260302T090000Z", future,
         at("2026-03-02T14:00:00Z", "2026-03-02T14:30:00Z")},
        {"divided-into-a-single-changed-event", "20260316T090000Z", future, ruled({})},
        {"divided-at-an-added-date", "20260312T120000", future, titled("New")},
        {"divided-with-another-rule", "20260323T090000", future, ruled({"FREQ=MONTHLY;COUNT=10"})},
        {"days-of-the-viewers-divided", "20260308T233000Z", future, ruled({"FREQ=WEEKLY;BYDAY=MO"})},
        {"days-of-the-viewers-in-a-whole-series", "20260304T200000", future,
         ruled({"FREQ=MONTHLY;BYMONTHDAY=5;COUNT=5"})},
        {"divided-into-a-single-event", "20260323T090000", future, ruled({})},
        {"the-whole-series-renamed", "20260302T090000", future, titled("New")},
        {"the-whole-series-moved", "20260302T090000", future,
         at("2026-03-02T09:00:00Z", "2026-03-02T10:00:00Z")},
        {"the-third-monday-becomes-the-third-tuesday", "20260420T090000", future,
         at("2026-04-21T07:00:00Z", "2026-04-21T08:00:00Z")},
        {"ended-before", "20260323T090000", future, {}},
        {"ended-before-the-first-shown", "20260309T090000", future, {}, true},
        {"an-occurrence-among-shifted-ones", "20260323T090000", alone, titled("Special")},
        {"the-first-of-shifted-ones-taken-out", "20260316T090000", alone, {}},
        {"divided-among-shifted-ones", "20260330T090000", future, titled("New")},
        {"an-orphan-changed", "20260316T090000", alone, titled("New")},
    };
}

std::string contentOf(std::string const& path) {
    std::ifstream stream(root + path, std::ios::binary);
    if (!stream) ADD_FAILURE() << "no " << path;
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

EditResult editOf(std::vector<CalendarSource> const& sources, Row const& row) {
    SeriesEditor const editor(sources, "one", std::make_shared<ZoneCatalog>(), zone(viewersZone));
    auto const occurrence = editor.occurrence(row.key);
    if (!occurrence) return std::unexpected("there is no such occurrence");
    EditCircumstances const given{.now = seconds(now), .newUID = "new"};
    if (row.change) return editor.save(*occurrence, *row.change, row.span, given);
    return editor.remove(*occurrence, row.span, given);
}

class EditTests : public testing::TestWithParam<Row> {};

} // namespace

TEST_P(EditTests, makesTheseBytes) {
    auto const folder = std::string("Tests/EventStore/ICalendar/Edits/") + GetParam().folder;
    std::vector<CalendarSource> const sources{calendarSource(contentOf(folder + "/before.ics"))};
    auto const edit = editOf(sources, GetParam());
    ASSERT_TRUE(edit.has_value()) << edit.error();
    ASSERT_EQ(edit->files.size(), 1U);
    auto const& file = edit->files[0];
    EXPECT_EQ(file.leavesNothing, GetParam().leavesNothing);
    EXPECT_EQ(edit->newItem.has_value(), std::filesystem::exists(root + folder + "/new.ics"));
    if (edit->newItem) GoldenFile::expectSame(folder + "/new.ics", edit->newItem->components);
    if (!file.leavesNothing)
        GoldenFile::expectSame(folder + "/after.ics", spliced(sources[0].bytes, file.splices));
}

// Elsewhere such a zone has no name, and in UTC the days of the rule would be others.
TEST(EditZoneTests, daysOfAViewerWithoutANamedZoneAreTheViewers) {
    struct Row {
        char const* zone;
        char const* start; // Monday, 01:00
        std::vector<std::string> happenings;
    };
    for (auto const& row : std::vector<Row>{
             {"<+03>-3",
              "2026-11-22T22:00:00Z",
              {"2026-11-22T22:00:00Z/2026-11-22T23:00:00Z Run",
               "2026-11-24T22:00:00Z/2026-11-24T23:00:00Z Run",
               "2026-11-29T22:00:00Z/2026-11-29T23:00:00Z Run",
               "2026-12-01T22:00:00Z/2026-12-01T23:00:00Z Run"}},
             {"CET-1CEST,M3.5.0,M10.5.0/3",
              "2026-03-23T00:00:00Z",
              {"2026-03-23T00:00:00Z/2026-03-23T01:00:00Z Run",
               "2026-03-25T00:00:00Z/2026-03-25T01:00:00Z Run",
               "2026-03-29T23:00:00Z/2026-03-30T00:00:00Z Run",
               "2026-03-31T23:00:00Z/2026-04-01T00:00:00Z Run"}},
         }) {
        auto const viewer = zone(row.zone);
        auto content = ruled({"FREQ=WEEKLY;BYDAY=MO,WE;COUNT=4"});
        content.title = text("Run");
        content.times = {.isAllDay = false, .start = seconds(row.start), .end = seconds(row.start) + 3600};
        auto const event = newEventText("one", content, viewer, seconds(now), "\r\n");
        auto const zones = missingTimeZones(event, {.viewer = viewer}, "\r\n");
        // Somebody else, who knows of the clock only what the file says.
        EXPECT_EQ(happenings(seriesOf(zones + event), "2026-01-01T00:00:00Z", "2027-01-01T00:00:00Z"),
                  row.happenings)
            << row.zone;
    }
}

TEST(EditRefusalTests, aSeriesThatCannotBeDividedOrMovedIsLeftAlone) {
    struct Refusal {
        char const* name;
        std::string properties;
        Key key;
        EventChange change;
        std::string reason;
    };
    constexpr auto cannotMove =
        "The series repeats by a rule that cannot be moved to another day or time; give it another rule, or "
        "change this event alone";
    constexpr auto cannotDivide =
        "The series repeats in a way that cannot be divided at this event; change this event alone, or the "
        "whole series from its first event on";
    for (auto const& row : std::vector<Refusal>{
             {"two days of a month moved by one",
              "DTSTART:20260301T090000Z\nRRULE:FREQ=MONTHLY;BYMONTHDAY=1,15\n", "20260315T090000Z",
              at("2026-03-16T09:00:00Z", "2026-03-16T09:00:00Z"), cannotMove},
             {"the last workday moved by one",
              "DTSTART:20260331T090000Z\nRRULE:FREQ=MONTHLY;BYDAY=MO,TU,WE,TH,FR;"
              "BYSETPOS=-1\n",
              "20260430T090000Z", at("2026-04-29T09:00:00Z", "2026-04-29T09:00:00Z"), cannotMove},
             {"the first Tuesday moved into the month before",
              "DTSTART:20260106T090000Z\nRRULE:FREQ=MONTHLY;BYDAY=1TU\n", "20260203T090000Z",
              at("2026-01-31T09:00:00Z", "2026-01-31T09:00:00Z"), cannotMove},
             {"a day that every month has moved to one that some lack",
              "DTSTART:20260128T090000Z\nRRULE:FREQ=MONTHLY\n", "20260328T090000Z",
              at("2026-03-30T09:00:00Z", "2026-03-30T09:00:00Z"), cannotMove},
             {"a day that some months lack moved to one that all have",
              "DTSTART:20260129T090000Z\nRRULE:FREQ=MONTHLY\n", "20260129T090000Z",
              at("2026-01-25T09:00:00Z", "2026-01-25T09:00:00Z"), cannotMove},
             {"an added date moved, and with it the rule's own days into the month before",
              "DTSTART:20260101T090000Z\nRRULE:FREQ=MONTHLY\nRDATE:20260104T090000Z\n", "20260104T090000Z",
              at("2026-01-02T09:00:00Z", "2026-01-02T09:00:00Z"), cannotMove},
             {"months left out that are counted from a start which goes into the month before",
              "DTSTART:20260101T090000Z\nRRULE:FREQ=MONTHLY;INTERVAL=4;BYMONTHDAY=17\n"
              "EXDATE:20260101T090000Z\n",
              "20260117T090000Z", at("2026-01-13T09:00:00Z", "2026-01-13T09:00:00Z"), cannotMove},
             {"an hour that passes midnight where the start does not",
              "DTSTART:20260101T010000Z\nRRULE:FREQ=WEEKLY;BYHOUR=0\nEXDATE:20260101T010000Z\n",
              "20260108T000000Z", at("2026-01-07T23:00:00Z", "2026-01-07T23:00:00Z"), cannotMove},
             {"two hours of a day moved by one", "DTSTART:20260301T090000Z\nRRULE:FREQ=DAILY;BYHOUR=9,14\n",
              "20260302T090000Z", at("2026-03-02T10:00:00Z", "2026-03-02T10:00:00Z"), cannotMove},
             {"divided at an occurrence of one of two rules",
              "DTSTART:20260301T090000Z\nRRULE:FREQ=DAILY;INTERVAL=3\nRRULE:FREQ=DAILY;INTERVAL=5\n",
              "20260304T090000Z", titled("New"), cannotDivide},
         }) {
        std::vector<CalendarSource> const sources{calendarSource(
            "BEGIN:VCALENDAR\nBEGIN:VEVENT\nUID:one\n" + row.properties + "END:VEVENT\nEND:VCALENDAR\n")};
        auto const edit = editOf(sources, {"", row.key, future, row.change});
        ASSERT_FALSE(edit.has_value()) << row.name;
        EXPECT_EQ(edit.error(), row.reason) << row.name;
    }
}

INSTANTIATE_TEST_SUITE_P(Edits, EditTests, testing::ValuesIn(rows()), [](auto const& row) {
    std::string name;
    for (std::string_view const part = row.param.folder; char const byte : part)
        name += byte == '-' ? '_' : byte;
    return name;
});

} // namespace Platform::ICalendar
