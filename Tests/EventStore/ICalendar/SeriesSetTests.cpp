#include "Tests/EventStore/ICalendar/CalendarFixtures.h"

#include "Foundation/Calendar.h"
#include "Foundation/DateFormatting.h"

#include <gtest/gtest.h>

#include <limits>

namespace Platform::ICalendar {
namespace {

using Lines = std::vector<std::string>;

std::string extentText(std::string const& properties, std::string_view viewer = "UTC") {
    auto const extent = seriesOf(eventWith(properties)).extent("event", zone(viewer));
    if (!extent) return "none";
    return Foundation::iso8601(extent->first) + ' ' +
           (extent->last ? Foundation::iso8601(*extent->last) : "endless") +
           (extent->isRecurring ? " series" : " single");
}

TEST(SeriesSetTests, theExtentOfASingleEventIsItsOwn) {
    EXPECT_EQ(extentText("DTSTART:20260311T080000Z\nDTEND:20260311T090000Z\n"),
              "2026-03-11T08:00:00Z 2026-03-11T09:00:00Z single");
    EXPECT_EQ(extentText("DTSTART:20260311\n", "Europe/Berlin"),
              "2026-03-10T23:00:00Z 2026-03-11T23:00:00Z single");
}

TEST(SeriesSetTests, theExtentOfACountEndsWithItsLastOccurrence) {
    EXPECT_EQ(extentText("DTSTART:20260311T080000Z\nDTEND:20260311T090000Z\nRRULE:FREQ=DAILY;COUNT=20000\n"),
              "2026-03-11T08:00:00Z 2080-12-11T09:00:00Z series");
    EXPECT_EQ(extentText("DTSTART:20260311T080000Z\nRRULE:FREQ=MONTHLY;BYDAY=-1FR;COUNT=3\n"),
              "2026-03-11T08:00:00Z 2026-04-24T08:00:00Z series");
}

TEST(SeriesSetTests, theExtentOfAnEndlessSeriesHasNoEnd) {
    EXPECT_EQ(extentText("DTSTART:20260311T080000Z\nRRULE:FREQ=DAILY\n"),
              "2026-03-11T08:00:00Z endless series");
}

TEST(SeriesSetTests, theExtentOfAnUntilEndsSoonAfterIt) {
    auto const extent =
        seriesOf(eventWith(
                     "DTSTART;TZID=Europe/Berlin:20260311T090000\nRRULE:FREQ=DAILY;UNTIL=20260401T070000Z\n"))
            .extent("event", zone("UTC"));
    ASSERT_TRUE(extent && extent->last);
    EXPECT_GE(*extent->last, instant("2026-04-01T07:00:00Z"));
    EXPECT_LE(*extent->last, instant("2026-04-03T07:00:00Z"));
}

TEST(SeriesSetTests, theExtentReachesAsFarAsOverridesAndAddedDates) {
    auto const series =
        seriesOf(eventWith("DTSTART:20260311T080000Z\nRRULE:FREQ=DAILY;COUNT=2\nRDATE:20260501T080000Z\n") +
                 eventWith("RECURRENCE-ID:20260311T080000Z\nDTSTART:20260201T080000Z\n"));
    auto const extent = series.extent("event", zone("UTC"));
    ASSERT_TRUE(extent && extent->last);
    EXPECT_EQ(extent->first, instant("2026-02-01T08:00:00Z"));
    EXPECT_EQ(extent->last, instant("2026-05-01T08:00:00Z"));
}

TEST(SeriesSetTests, everyOccurrenceLiesWithinTheExtent) {
    for (auto const* name :
         {"this-and-future.ics", "dates-added.ics", "several-rules.ics", "time-in-a-gap.ics",
          "until-as-date.ics", "until-floating.ics", "all-day.ics", "versions.ics"}) {
        auto const series = sampleSeries(name);
        std::size_t checked = 0;
        for (auto const uid : series.uids()) {
            auto const extent = series.extent(uid, zone("Asia/Tokyo"));
            ASSERT_TRUE(extent) << name;
            auto const found = series.occurrencesOfSeries(
                uid, instant("2020-01-01T00:00:00Z"), instant("2030-01-01T00:00:00Z"), zone("Asia/Tokyo"));
            for (auto const& occurrence : found.occurrences) {
                EXPECT_GE(occurrence.start, extent->first) << name;
                EXPECT_TRUE(!extent->last || occurrence.end <= *extent->last) << name;
                ++checked;
            }
        }
        EXPECT_GT(checked, 0U) << name;
    }
}

TEST(SeriesSetTests, aCancelledOrUnknownEventHasNoExtentAndNoFirstOccurrence) {
    auto const series = seriesOf(eventWith("DTSTART:20260311T080000Z\nSTATUS:CANCELLED\n"));
    EXPECT_FALSE(series.extent("event", zone("UTC")));
    EXPECT_FALSE(series.extent("other", zone("UTC")));
    EXPECT_FALSE(series.firstOccurrence("event", zone("UTC")));
    EXPECT_FALSE(series.firstOccurrence("other", zone("UTC")));
    EXPECT_EQ(series.master("other"), nullptr);
}

std::string firstKey(SeriesSet const& series) {
    auto const first = series.firstOccurrence("event", zone("UTC"));
    return first ? Foundation::iso8601(first->start) + ' ' + first->key.value_or("-") : "none";
}

TEST(SeriesSetTests, theFirstOccurrenceIsTheEarliestThatIsLeft) {
    EXPECT_EQ(firstKey(seriesOf(eventWith("DTSTART:20260311T080000Z\n"))), "2026-03-11T08:00:00Z -");
    EXPECT_EQ(firstKey(seriesOf(eventWith("DTSTART:20260311T080000Z\nRRULE:FREQ=YEARLY;COUNT=3\n"
                                          "EXDATE:20260311T080000Z,20270311T080000Z\n"))),
              "2028-03-11T08:00:00Z 20280311T080000Z");
    EXPECT_EQ(firstKey(seriesOf(eventWith("DTSTART:20260311T080000Z\nRRULE:FREQ=DAILY;COUNT=3\n") +
                                eventWith("RECURRENCE-ID:20260313T080000Z\nDTSTART:20260301T080000Z\n"))),
              "2026-03-01T08:00:00Z 20260313T080000Z");
    EXPECT_EQ(
        firstKey(seriesOf(eventWith("DTSTART:20260311T080000Z\nRRULE:FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=30\n"
                                    "EXDATE:20260311T080000Z\n"))),
        "none");
}

TEST(SeriesSetTests, overridesMayStandInAnotherFile) {
    auto const master = read("BEGIN:VEVENT\nUID:e\nSUMMARY:Series\nDTSTART:20260311T080000Z\nRRULE:FREQ="
                             "DAILY;COUNT=2\nEND:VEVENT\n",
                             "a.ics");
    auto const change = read("BEGIN:VEVENT\nUID:e\nSUMMARY:Moved\nRECURRENCE-ID:20260312T080000Z\nDTSTART:"
                             "20260312T100000Z\nEND:VEVENT\n",
                             "b.ics");
    SeriesSet const series({master, change}, std::make_shared<ZoneCatalog>());
    auto const found =
        series.occurrences(instant("2026-03-01T00:00:00Z"), instant("2026-04-01T00:00:00Z"), zone("UTC"))
            .occurrences;
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].file->path, "a.ics");
    EXPECT_EQ(found[1].file->path, "b.ics");
    EXPECT_EQ(found[1].event->summary->text(), "Moved");
    EXPECT_EQ(found[1].master, &master->events[0]);
    EXPECT_EQ(series.master("e"), &master->events[0]);
    EXPECT_EQ(series.uids(), (std::vector<std::string_view>{"e"}));
}

std::string version(std::string_view title, int sequence, std::string_view stamp = "20260101T000000Z") {
    return "BEGIN:VEVENT\nUID:event\nDTSTAMP:" + std::string(stamp) +
           "\nDTSTART:20260311T080000Z\nSUMMARY:" + std::string(title) +
           "\nSEQUENCE:" + std::to_string(sequence) + "\nEND:VEVENT\n";
}

TEST(SeriesSetTests, whatAnotherEventOfTheSameUIDAndSequenceHidesIsTold) {
    auto const series = seriesOf(version("New", 1, "20260301T000000Z") + version("Old", 1));
    EXPECT_EQ(happenings(series, "2026-03-01T00:00:00Z", "2026-04-01T00:00:00Z"),
              (Lines{"2026-03-11T08:00:00Z/2026-03-11T08:00:00Z New"}));
    ASSERT_EQ(series.hiddenEvents().size(), 1U);
    EXPECT_EQ(series.hiddenEvents()[0].effect, Problem::Effect::skipped);
    EXPECT_EQ(series.hiddenEvents()[0].uid, "event");
    auto const lineOfNew = series.master("event")->line;
    EXPECT_EQ(series.hiddenEvents()[0].line, lineOfNew + 7);
    EXPECT_TRUE(
        series.hiddenEvents()[0].reason.contains(":" + std::to_string(lineOfNew) + " has the same UID"))
        << series.hiddenEvents()[0].reason;
}

TEST(SeriesSetTests, whatARevisionReplacesIsNotTold) {
    EXPECT_EQ(seriesOf(version("New", 2) + version("Old", 1)).hiddenEvents(), std::vector<Problem>{});
    // Nor what hid one another before the revision.
    auto const series = seriesOf(version("One", 1) + version("Other", 1) + version("New", 2));
    EXPECT_EQ(series.hiddenEvents(), std::vector<Problem>{});
}

TEST(SeriesSetTests, aCopyWrittenAtAnotherTimeIsNotTold) {
    EXPECT_EQ(seriesOf(version("A", 1) + version("A", 1, "20260301T000000Z")).problems(),
              std::vector<Problem>{});
}

TEST(SeriesSetTests, aTitleThatIsWrittenInAnotherWayIsNotTold) {
    auto const series = seriesOf(version("Lunch\\, late", 1) + version("Lunch\\,\n  late ", 1));
    EXPECT_EQ(series.hiddenEvents(), std::vector<Problem>{});
    EXPECT_EQ(seriesOf(version("Lunch\\, late", 1) + version("Lunch", 1)).hiddenEvents().size(), 1U);
}

struct DifferenceCase {
    char const* name;
    char const* left;
    char const* right;
    bool isTold;
};

class DifferenceTests : public testing::TestWithParam<DifferenceCase> {};

TEST_P(DifferenceTests, isToldWhereAPersonCouldSeeIt) {
    auto const series = seriesOf(eventWith(GetParam().left) + eventWith(GetParam().right));
    EXPECT_EQ(series.hiddenEvents().size(), GetParam().isTold ? 1U : 0U);
}

INSTANTIATE_TEST_SUITE_P(
    SeriesSetTests, DifferenceTests,
    testing::Values(DifferenceCase{"start", "DTSTART:20260311T080000Z\n", "DTSTART:20260312T080000Z\n", true},
                    DifferenceCase{"allDay", "DTSTART:20260311\n", "DTSTART:20260311T000000\n", true},
                    DifferenceCase{"formOfTheStart", "DTSTART;TZID=Europe/Berlin:20260311T090000\n",
                                   "DTSTART:20260311T080000Z\n", false},
                    DifferenceCase{"end", "DTSTART:20260311\n", "DTSTART:20260311\nDTEND:20260312\n", false},
                    DifferenceCase{"override", "DTSTART:20260311\nRRULE:FREQ=DAILY\n",
                                   "DTSTART:20260313\nRECURRENCE-ID;VALUE=DATE:20260312\n", false}),
    [](auto const& row) { return std::string(row.param.name); });

TEST(SeriesSetTests, theSameNameOfAZoneMayMeanDifferentRulesInDifferentFiles) {
    auto const fileWith = [](std::string const& offset, std::string const& uid) {
        return read("BEGIN:VCALENDAR\nBEGIN:VTIMEZONE\nTZID:Local\nBEGIN:STANDARD\nDTSTART:"
                    "19700101T000000\nTZOFFSETFROM:" +
                    offset + "\nTZOFFSETTO:" + offset +
                    "\nEND:STANDARD\nEND:VTIMEZONE\nBEGIN:VEVENT\nUID:" + uid + "\nSUMMARY:" + uid +
                    "\nDTSTART;TZID=Local:20260311T120000\nEND:VEVENT\nEND:VCALENDAR\n");
    };
    SeriesSet const series({fileWith("+0100", "one"), fileWith("+0300", "two")},
                           std::make_shared<ZoneCatalog>());
    EXPECT_EQ(happenings(series, "2026-03-11T00:00:00Z", "2026-03-12T00:00:00Z"),
              (Lines{"2026-03-11T09:00:00Z/2026-03-11T09:00:00Z two",
                     "2026-03-11T11:00:00Z/2026-03-11T11:00:00Z one"}));
}

TEST(SeriesSetTests, aWindowThatIsNoIntervalHoldsNothing) {
    auto const series = seriesOf(eventWith("DTSTART:20260311T080000Z\nDTEND:20260311T090000Z\n"));
    Foundation::Date const nowhere{.secondsSince1970 = std::numeric_limits<double>::quiet_NaN()};
    Foundation::Date const never{.secondsSince1970 = std::numeric_limits<double>::infinity()};
    Foundation::Date const always{.secondsSince1970 = -std::numeric_limits<double>::infinity()};
    EXPECT_TRUE(series.occurrences(nowhere, never, zone("UTC")).occurrences.empty());
    EXPECT_TRUE(series.occurrences(always, nowhere, zone("UTC")).occurrences.empty());
    EXPECT_TRUE(series.occurrences(never, always, zone("UTC")).occurrences.empty());
    EXPECT_EQ(series.occurrences(always, never, zone("UTC")).occurrences.size(), 1U);
}

TEST(SeriesSetTests, nothingHappensWhereSomeClockHasLeftTheYearsThatACalendarKnows) {
    auto const series =
        seriesOf(eventWith("DTSTART;TZID=Asia/Tokyo:99991229T120000\nRRULE:FREQ=DAILY\nDURATION:PT1H\n"));
    EXPECT_EQ(keys(series, "9999-12-01T00:00:00Z", "9999-12-31T23:59:59Z"),
              (Lines{"99991229T120000", "99991230T120000"}));
    auto const early = seriesOf(eventWith("DTSTART;TZID=Asia/Tokyo:00010101T000000\nDURATION:P2D\n"));
    EXPECT_EQ(keys(early, "0001-01-01T00:00:00Z", "0001-02-01T00:00:00Z"), Lines{});
}

struct FarEvent {
    std::string name;
    std::string properties;
    std::string viewer;
    Lines happenings;
    Lines reasons;
};

class FarEventTests : public testing::TestWithParam<FarEvent> {};

TEST_P(FarEventTests, everyClockCanNameItsBounds) {
    auto const& far = GetParam();
    auto const series = seriesOf(eventWith(far.properties));
    EXPECT_EQ(happenings(series, "0001-01-01T00:00:00Z", "9999-12-31T23:59:59Z", far.viewer), far.happenings);
    auto const found = series.occurrences(instant("0001-01-01T00:00:00Z"), instant("9999-12-31T23:59:59Z"),
                                          zone(far.viewer));
    EXPECT_EQ(reasons(found.problems), far.reasons);
    for (auto const* const clock : {"UTC", "Europe/Berlin", "America/New_York", "Pacific/Kiritimati"}) {
        Foundation::Calendar const calendar(zone(clock));
        for (auto const& occurrence : found.occurrences) {
            EXPECT_GE(calendar.components(occurrence.start).year, 1) << clock;
            EXPECT_LE(calendar.components(occurrence.end).year, 9999) << clock;
        }
    }
}

Lines const onTheEdge = {
    "line 3: what of it lies on the first or last day of the years 1 to 9999 is not shown"};

INSTANTIATE_TEST_SUITE_P(
    Table, FarEventTests,
    testing::Values(
        FarEvent{"forEverInBerlin",
                 "DTSTART:20260311T100000Z\nDTEND:99991231T235959Z\n",
                 "Europe/Berlin",
                 {"2026-03-11T10:00:00Z/9999-12-30T23:59:59Z Event"},
                 {}},
        FarEvent{"forEverInNewYork",
                 "DTSTART;TZID=America/New_York:20260311T100000\n"
                 "DTEND;TZID=America/New_York:99991231T235959\n",
                 "America/New_York",
                 {"2026-03-11T14:00:00Z/9999-12-30T23:59:59Z Event"},
                 {}},
        FarEvent{"allDaysForEverInBerlin",
                 "DTSTART;VALUE=DATE:20260311\nDTEND;VALUE=DATE:99991231\n",
                 "Europe/Berlin",
                 {"2026-03-11/9999-12-30 Event"},
                 {}},
        FarEvent{"allDaysForEverInNewYork",
                 "DTSTART;VALUE=DATE:20260311\nDTEND;VALUE=DATE:99991231\n",
                 "America/New_York",
                 {"2026-03-11/9999-12-30 Event"},
                 {}},
        FarEvent{"lastDayInBerlin", "DTSTART;VALUE=DATE:99991231\n", "Europe/Berlin", {}, onTheEdge},
        FarEvent{"lastDayInNewYork", "DTSTART;VALUE=DATE:99991231\n", "America/New_York", {}, onTheEdge},
        FarEvent{"firstHourInNewYork",
                 "DTSTART:00010101T000000Z\nDURATION:PT1H\n",
                 "America/New_York",
                 {},
                 onTheEdge}),
    [](auto const& sample) { return sample.param.name; });

} // namespace
} // namespace Platform::ICalendar
