#include "Tests/EventStore/ICalendar/CalendarFixtures.h"

#include <gtest/gtest.h>

#include <random>

namespace Platform::ICalendar {
namespace {

using Lines = std::vector<std::string>;

Lines uids(std::shared_ptr<CalendarFile const> const& file) {
    Lines found;
    for (auto const& event : file->events)
        found.push_back(event.uid);
    return found;
}

TEST(RobustnessTests, aBrokenEventIsSkippedWithItsReasonAndCostsNoNeighbour) {
    auto const file = sampleFile("broken-among-good.ics");
    EXPECT_EQ(uids(file), (Lines{"good-1", "bad-exception", "good-2"}));
    EXPECT_EQ(
        reasons(file->problems),
        (Lines{"line 10: the event has no DTSTART",
               "line 20: DTSTART \"20260230T080000Z\" is not a date or time of the years 1 to 9999",
               "line 27: RRULE \"FREQ=FORTNIGHTLY\" cannot be followed: its FREQ is not usable",
               "line 34: RRULE \"FREQ=DAILY;RSCALE=HEBREW\" cannot be followed: its part RSCALE is not "
               "understood",
               "line 42: EXDATE \"tomorrow\" is not a date or time of the years 1 to 9999; it is left out",
               "line 48: DTSTART \"00000101T000000Z\" is not a date or time of the years 1 to 9999"}));
    EXPECT_EQ(file->problems[1].uid, "bad-day");
    EXPECT_EQ(file->problems[1].path, "broken-among-good.ics");
    for (auto const& problem : file->problems) {
        auto const effect =
            problem.uid == "bad-exception" ? Problem::Effect::adjusted : Problem::Effect::skipped;
        EXPECT_EQ(problem.effect, effect) << problem.reason;
    }
}

TEST(RobustnessTests, aBadExceptionOrAddedDateIsLeftOutAloneAndReported) {
    auto const components = eventWith("DTSTART:20260311T080000Z\nRRULE:FREQ=DAILY;COUNT=3\n"
                                      "EXDATE:garbage,20260312T080000Z,,20260230T080000Z\n"
                                      "RDATE:soon,20260320T080000Z\n"
                                      "RDATE;VALUE=PERIOD:20260321T080000Z/20260321T070000Z\n");
    EXPECT_EQ(happenings(seriesOf(components), "2026-03-01T00:00:00Z", "2026-04-01T00:00:00Z"),
              (Lines{"2026-03-11T08:00:00Z/2026-03-11T08:00:00Z Event",
                     "2026-03-13T08:00:00Z/2026-03-13T08:00:00Z Event",
                     "2026-03-20T08:00:00Z/2026-03-20T08:00:00Z Event"}));
    auto const file = read(components);
    std::string const isNone = " is not a date or time of the years 1 to 9999; it is left out";
    EXPECT_EQ(reasons(file->problems),
              (Lines{"line 6: EXDATE \"garbage\"" + isNone, "line 6: EXDATE \"20260230T080000Z\"" + isNone,
                     "line 7: RDATE \"soon\"" + isNone,
                     "line 8: RDATE \"20260321T080000Z/20260321T070000Z\"" + isNone}));
    for (auto const& problem : file->problems) {
        EXPECT_EQ(problem.effect, Problem::Effect::adjusted);
        EXPECT_EQ(problem.uid, "event");
    }
}

TEST(RobustnessTests, ofAnEventThatIsSkippedOnlyTheReasonForThatIsTold) {
    auto const file = read(eventWith("EXDATE:garbage\nRRULE:FREQ=NEVER\nDTSTART:20260311\n"));
    EXPECT_EQ(reasons(file->problems),
              (Lines{"line 5: RRULE \"FREQ=NEVER\" cannot be followed: its FREQ is not usable"}));
}

TEST(RobustnessTests, endlessBadDatesAreReportedUpToTheBound) {
    std::string values = "x";
    for (int number = 0; number < 20'000; ++number)
        values += ",x";
    auto const file = read(eventWith("DTSTART:20260311\nEXDATE:" + values + "\n"));
    EXPECT_EQ(uids(file), (Lines{"event"}));
    EXPECT_EQ(file->problems.size(), CalendarFile::maximumProblems);
}

struct WrongValue {
    std::string name;
    std::string line;
};

class WrongValueTests : public testing::TestWithParam<WrongValue> {};

TEST_P(WrongValueTests, costsItsOwnEventOnly) {
    auto const& line = GetParam().line;
    bool const isStart = line.starts_with("DTSTART");
    auto const file =
        read("BEGIN:VCALENDAR\nBEGIN:VEVENT\nUID:wrong\n" +
             std::string(isStart ? "" : "DTSTART:20260311T080000Z\n") + line +
             "\nEND:VEVENT\nBEGIN:VEVENT\nUID:good\nDTSTART:20260311T080000Z\nEND:VEVENT\nEND:VCALENDAR\n");
    EXPECT_EQ(uids(file), (Lines{"good"}));
    ASSERT_EQ(file->problems.size(), 1U);
    EXPECT_EQ(file->problems[0].uid, "wrong");
    EXPECT_EQ(file->problems[0].effect, Problem::Effect::skipped);
}

INSTANTIATE_TEST_SUITE_P(
    Table, WrongValueTests,
    testing::Values(WrongValue{"emptyStart", "DTSTART:"}, WrongValue{"wordForAStart", "DTSTART:soon"},
                    WrongValue{"monthThirteen", "DTSTART:20261301"},
                    WrongValue{"dayZero", "DTSTART:20260300"}, WrongValue{"notALeapYear", "DTSTART:20260229"},
                    WrongValue{"hourTwentyFour", "DTSTART:20260311T240000Z"},
                    WrongValue{"minuteSixty", "DTSTART:20260311T086000"},
                    WrongValue{"secondSixtyOne", "DTSTART:20260311T080061"},
                    WrongValue{"timeWithoutSeconds", "DTSTART:20260311T0800"},
                    WrongValue{"separators", "DTSTART:2026-03-11T08:00:00Z"},
                    WrongValue{"fiveDigitYear", "DTSTART:120260311T080000"},
                    WrongValue{"signedYear", "DTSTART:-0010311"},
                    WrongValue{"afterTheZ", "DTSTART:20260311T080000ZZ"},
                    WrongValue{"wrongEnd", "DTEND:never"}, WrongValue{"wrongDuration", "DURATION:1H"},
                    WrongValue{"durationOfNothing", "DURATION:P"}, WrongValue{"hoursBeforeT", "DURATION:P1H"},
                    WrongValue{"endlessDuration", "DURATION:P99999999999999999999D"},
                    WrongValue{"wrongName", "RECURRENCE-ID:first"},
                    WrongValue{"ruleWithoutFrequency", "RRULE:COUNT=3"},
                    WrongValue{"intervalZero", "RRULE:FREQ=DAILY;INTERVAL=0"},
                    WrongValue{"countZero", "RRULE:FREQ=DAILY;COUNT=0"},
                    WrongValue{"monthInARule", "RRULE:FREQ=YEARLY;BYMONTH=13"},
                    WrongValue{"dayZeroInARule", "RRULE:FREQ=MONTHLY;BYMONTHDAY=0"},
                    WrongValue{"weekdayOfNoWeek", "RRULE:FREQ=WEEKLY;BYDAY=XX"},
                    WrongValue{"zerothMonday", "RRULE:FREQ=MONTHLY;BYDAY=0MO"},
                    WrongValue{"twoCounts", "RRULE:FREQ=DAILY;COUNT=3;COUNT=4"},
                    WrongValue{"wrongUntil", "RRULE:FREQ=DAILY;UNTIL=later"},
                    WrongValue{"emptyList", "RRULE:FREQ=DAILY;BYHOUR="},
                    WrongValue{"unknownPart", "RRULE:FREQ=DAILY;BYEASTER=0"},
                    WrongValue{"lunarCalendar", "RRULE:RSCALE=CHINESE;FREQ=YEARLY"}),
    [](auto const& sample) { return sample.param.name; });

TEST(RobustnessTests, anEndBeforeTheStartIsNoEnd) {
    auto const series = sampleSeries("end-before-start.ics");
    EXPECT_EQ(happenings(series, "2026-03-11T00:00:00Z", "2026-03-12T00:00:00Z"),
              (Lines{"2026-03-11T09:00:00Z/2026-03-11T09:00:00Z Backwards"}));
    auto const file = sampleFile("end-before-start.ics");
    ASSERT_EQ(file->problems.size(), 1U);
    EXPECT_EQ(file->problems[0].effect, Problem::Effect::adjusted);
    EXPECT_EQ(file->problems[0].reason, "DTEND lies before DTSTART; the event is shown as if it had no end");
}

TEST(RobustnessTests, anEventWithoutItsEndLineIsTakenAsWhole) {
    auto const file = read(
        "BEGIN:VCALENDAR\nBEGIN:VEVENT\nUID:a\nDTSTART:20260311\nBEGIN:VEVENT\nUID:b\nDTSTART:20260311\n"
        "END:VCALENDAR\nBEGIN:VCALENDAR\nBEGIN:VEVENT\nUID:c\nDTSTART:20260311\nEND:VEVENT\nEND:VCALENDAR\n");
    EXPECT_EQ(uids(file), (Lines{"a", "b", "c"}));
    EXPECT_EQ(file->problems.size(), 2U);
}

TEST(RobustnessTests, anEventThatTheFileCutsOffIsSkipped) {
    auto const file = read("BEGIN:VCALENDAR\nBEGIN:VEVENT\nUID:a\nDTSTART:20260311\nEND:VEVENT\n"
                           "BEGIN:VEVENT\nUID:b\nDTSTART:20260311\nRRULE:FREQ=DAILY;COUNT=1");
    EXPECT_EQ(uids(file), (Lines{"a"}));
    EXPECT_EQ(reasons(file->problems), (Lines{"line 6: the file ends inside the event"}));
}

TEST(RobustnessTests, anEventNeedsNoCalendarAroundIt) {
    EXPECT_EQ(uids(read("BEGIN:VEVENT\nUID:a\nDTSTART:20260311\nEND:VEVENT\n")), (Lines{"a"}));
}

TEST(RobustnessTests, whatIsNoCalendarHoldsNothing) {
    for (auto const* const nothing : {"", "\r\n\n\r", "\xEF\xBB\xBF", " \t\n"}) {
        EXPECT_TRUE(read(nothing)->events.empty());
        EXPECT_EQ(reasons(read(nothing)->problems), Lines{}) << nothing;
    }
    std::string const wide("\0B\0E\0G\0I\0N\0:\0V\0E\0V\0E\0N\0T", 24);
    struct Row {
        std::string name;
        std::string bytes;
        std::string reason;
    };
    std::string const foreign = "line 1: it is no iCalendar file";
    for (auto const& row :
         std::vector<Row>{{"nuls", std::string(100'000, '\0'), foreign},
                          {"colons", std::string(100'000, ':'), foreign},
                          {"page", "<html><body>Sign in</body></html>", foreign},
                          {"endsAlone", "END:VEVENT\nEND:VCALENDAR\nEND:VALARM\n", foreign},
                          {"otherComponent", "BEGIN:VCARD\nEND:VCARD\n", foreign},
                          {"littleWide", "\xFF\xFE" + wide, foreign + ": its text is UTF-16, not UTF-8"},
                          {"bigWide", "\xFE\xFF" + wide, foreign + ": its text is UTF-16, not UTF-8"}}) {
        EXPECT_TRUE(read(row.bytes)->events.empty()) << row.name;
        EXPECT_EQ(reasons(read(row.bytes)->problems), Lines{row.reason}) << row.name;
    }
    EXPECT_EQ(reasons(read("BEGIN:VCALENDAR\nEND:VCALENDAR\n")->problems), Lines{});
}

TEST(RobustnessTests, aDelimiterMayBeFolded) {
    EXPECT_EQ(uids(read("BEGIN:VCALEN\r\n DAR\r\nBEGIN:VE\r\n VENT\r\nUID:a\r\nDTSTART:20260311\r\n"
                        "EN\r\n D:VEVENT\r\nBEGIN:VEVENT\r\nUID:b\r\nDTSTART:20260311\r\nEND:VEVE\r\n NT\r\n"
                        "END:VCALENDAR\r\n")),
              (Lines{"a", "b"}));
}

TEST(RobustnessTests, aHugeLineIsHarmless) {
    std::string const huge(4'000'000, 'x');
    auto const file = read("BEGIN:VCALENDAR\nBEGIN:VEVENT\nUID:u\nDTSTART:20260311\nX-DATA:" + huge +
                           "\nSUMMARY:" + huge + "\nEND:VEVENT\nEND:VCALENDAR\n");
    ASSERT_EQ(uids(file), (Lines{"u"}));
    EXPECT_EQ(file->events[0].summary->text().size(), huge.size());
}

TEST(RobustnessTests, aMillionNulsAreEachReplaced) {
    constexpr std::size_t count = 1'000'000;
    std::string replaced;
    for (std::size_t nul = 0; nul < count; ++nul)
        replaced += "\xEF\xBF\xBD";
    EXPECT_EQ(PropertyValue("a" + std::string(count, '\0') + "b").text(), "a" + replaced + "b");
}

TEST(RobustnessTests, problemsAreBounded) {
    std::string bytes = "BEGIN:VCALENDAR\n";
    for (int event = 0; event < 5000; ++event)
        bytes += "BEGIN:VEVENT\nDTSTART:x\nEND:VEVENT\n";
    EXPECT_EQ(read(bytes + "END:VCALENDAR\n")->problems.size(), CalendarFile::maximumProblems);
}

TEST(RobustnessTests, aLongWrongValueIsQuotedInPart) {
    auto const file = read("BEGIN:VEVENT\nDTSTART:" + std::string(500, '9') + "\nEND:VEVENT\n");
    ASSERT_EQ(file->problems.size(), 1U);
    EXPECT_EQ(file->problems[0].reason,
              "DTSTART \"" + std::string(60, '9') + "…\" is not a date or time of the years 1 to 9999");
}

// Every cut of a file with all that the reader knows, and a great many damages, end in fewer or other events
// and never in a crash; the sanitizers watch.
TEST(RobustnessTests, everyCutOfAFileIsRead) {
    auto const bytes = sampleBytes("zone-of-the-file.ics") + sampleBytes("dates-added.ics") +
                       sampleBytes("this-and-future.ics");
    auto const whole = read(bytes)->events.size();
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        auto const file = read(bytes.substr(0, length));
        ASSERT_LE(file->events.size(), whole);
        for (auto const& event : file->events)
            ASSERT_LE(event.offset + event.length, length);
    }
}

TEST(RobustnessTests, damagedFilesAreReadAndExpanded) {
    auto const sample = sampleBytes("zone-of-the-file.ics") + sampleBytes("dates-added.ics") +
                        sampleBytes("this-and-future.ics") + sampleBytes("several-rules.ics");
    std::mt19937 random(20260311);
    constexpr std::string_view spice = ":;,=\"\\\r\n \tT0Z9-+/^BY";
    std::size_t survivors = 0;
    for (int round = 0; round < 1500; ++round) {
        auto bytes = sample;
        for (auto damages = random() % 8 + 1; damages > 0; --damages) {
            auto const place = random() % bytes.size();
            switch (random() % 3) {
            case 0: bytes[place] = spice[random() % spice.size()]; break;
            case 1: bytes.insert(place, 1, spice[random() % spice.size()]); break;
            default: bytes.erase(place, random() % 5 + 1); break;
            }
        }
        auto const file = read(bytes);
        SeriesSet const series({file}, std::make_shared<ZoneCatalog>());
        survivors += series
                         .occurrences(instant("2026-03-01T00:00:00Z"), instant("2026-04-01T00:00:00Z"),
                                      zone("Europe/Berlin"))
                         .occurrences.size();
        for (auto const uid : series.uids())
            static_cast<void>(series.extent(uid, zone("Europe/Berlin")));
    }
    EXPECT_GT(survivors, 15'000U) << "most damages should cost one event at the most";
}

TEST(RobustnessTests, partsThatChangeNothingCostNoEvent) {
    auto const file = read("BEGIN:VCALENDAR\nBEGIN:VEVENT\nUID:a\nDTSTART:20260311T080000Z\n"
                           "RRULE:RSCALE=GREGORIAN;FREQ=DAILY;COUNT=2;SKIP=OMIT;X-OTHER=1\n"
                           "END:VEVENT\nEND:VCALENDAR\n");
    EXPECT_TRUE(file->problems.empty());
    ASSERT_EQ(file->events.size(), 1U);
    EXPECT_EQ(file->events[0].rules.at(0).count, 2);
}

} // namespace
} // namespace Platform::ICalendar
