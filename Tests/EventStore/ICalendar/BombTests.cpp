// Rules that ask for the impossible, or for far too much. What they cost is counted in steps, a few
// nanoseconds each, so that the figures hold on every machine.

#include "Tests/EventStore/ICalendar/CalendarFixtures.h"

#include <gtest/gtest.h>

namespace Platform::ICalendar {
namespace {

Expansion threeWeeks(std::string const& properties, ExpansionLimits const& limits = {}) {
    return seriesOf(eventWith(properties))
        .occurrences(instant("2026-03-01T00:00:00Z"), instant("2026-03-22T00:00:00Z"), zone("Europe/Berlin"),
                     limits);
}

struct Bomb {
    std::string name;
    std::string properties;
    std::int64_t mostSteps;
};

class BombTests : public testing::TestWithParam<Bomb> {};

TEST_P(BombTests, costsLittle) {
    auto const& bomb = GetParam();
    auto const found = threeWeeks(bomb.properties);
    EXPECT_LE(found.steps, bomb.mostSteps);
    EXPECT_LE(found.occurrences.size(), 50'000U);
}

INSTANTIATE_TEST_SUITE_P(
    Table, BombTests,
    testing::Values(
        Bomb{"everySecondOfADayThatDoesNotExist",
             "DTSTART:20050103T080000Z\nRRULE:FREQ=SECONDLY;BYMONTH=2;BYMONTHDAY=30\n", 10},
        Bomb{"everySecond", "DTSTART:20050103T080000Z\nRRULE:FREQ=SECONDLY\n", 120'000},
        Bomb{"everySecondCounted", "DTSTART:20050103T080000Z\nRRULE:FREQ=SECONDLY;COUNT=2000000000\n",
             120'000},
        Bomb{"countOfNothing",
             "DTSTART:20050103T080000Z\nRRULE:FREQ=SECONDLY;BYMONTH=2;BYMONTHDAY=30;COUNT=2\n", 100'000},
        Bomb{"countOfMatchingSeconds",
             "DTSTART:20050103T080000Z\nRRULE:FREQ=SECONDLY;BYDAY=MO;COUNT=1000000000\n", 500'000},
        Bomb{"positionThatNoDayHas", "DTSTART:20050103T080000Z\nRRULE:FREQ=DAILY;BYSETPOS=2;COUNT=3\n",
             300'000},
        Bomb{"positionThatNoYearHas",
             "DTSTART:20050103T080000Z\nRRULE:FREQ=YEARLY;BYDAY=MO;BYSETPOS=300;COUNT=3\n", 300'000},
        Bomb{"everySecondOfEveryDayByLists",
             "DTSTART:20050103T080000Z\nRRULE:FREQ=DAILY;BYHOUR=0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,"
             "18,19,20,21,22,23;"
             "BYMINUTE=0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,23,24,25,26,27,28,29,30,31,"
             "32,33,34,35,36,37,"
             "38,39,40,41,42,43,44,45,46,47,48,49,50,51,52,53,54,55,56,57,58,59\n",
             120'000},
        Bomb{"minutesThatNeverMeetTheirSecond",
             "DTSTART:20050103T080030Z\nRRULE:FREQ=SECONDLY;INTERVAL=60;BYSECOND=0\n", 60'000},
        Bomb{"giantInterval", "DTSTART:20050103T080000Z\nRRULE:FREQ=YEARLY;INTERVAL=999999999999999999\n",
             10},
        Bomb{"giantIntervalOfSeconds",
             "DTSTART:20050103T080000Z\nRRULE:FREQ=SECONDLY;INTERVAL=999999999999999999\n", 10},
        Bomb{"eventOfNineThousandYears", "DTSTART:00010101T000000Z\nDURATION:P3285000D\nRRULE:FREQ=DAILY\n",
             300'000},
        Bomb{"impossibleMonthDay",
             "DTSTART:20050103T080000Z\nRRULE:FREQ=MONTHLY;BYMONTHDAY=31;BYMONTH=2,4,6,9,11;COUNT=5\n",
             100'000}),
    [](auto const& sample) { return sample.param.name; });

TEST(BombTests, aRuleOfTooManyTimesIsCutAndReported) {
    auto const found = threeWeeks("DTSTART:20050103T080000Z\nRRULE:FREQ=SECONDLY\n");
    EXPECT_GT(found.occurrences.size(), 0U);
    EXPECT_EQ(
        reasons(found.problems),
        (std::vector<std::string>{
            "line 3: its rule yields too much; only the first occurrences of the time asked for are shown"}));
}

TEST(BombTests, theSameQuestionHasTheSameAnswerTwice) {
    auto const series =
        seriesOf(eventWith("DTSTART:20050103T080000Z\nRRULE:FREQ=SECONDLY;BYDAY=MO;COUNT=1000000000\n"));
    auto const ask = [&series] {
        return series
            .occurrences(instant("2005-01-03T00:00:00Z"), instant("2005-01-04T00:00:00Z"), zone("UTC"))
            .occurrences.size();
    };
    auto const first = ask();
    EXPECT_GT(first, 0U);
    EXPECT_EQ(ask(), first);
}

TEST(BombTests, manyBombsShareOneBound) {
    std::string events;
    for (int event = 0; event < 20; ++event) {
        events += "BEGIN:VEVENT\nUID:" + std::to_string(event) +
                  "\nDTSTART:20050103T080000Z\nRRULE:FREQ=MINUTELY\nEND:VEVENT\n";
    }
    auto const series = seriesOf(events);
    ExpansionLimits const limits{.occurrencesPerSeries = 1000, .occurrences = 5000};
    auto const found = series.occurrences(instant("2026-03-01T00:00:00Z"), instant("2026-03-22T00:00:00Z"),
                                          zone("UTC"), limits);
    EXPECT_EQ(found.occurrences.size(), 5000U);
    EXPECT_EQ(found.problems.size(), 20U);
}

TEST(BombTests, dailySinceTwoThousandAndFiveCostsTheWindowOnly) {
    auto const found = threeWeeks("DTSTART;TZID=Europe/Berlin:20050103T090000\nRRULE:FREQ=DAILY\n");
    EXPECT_EQ(found.occurrences.size(), 21U);
    EXPECT_LE(found.steps, 30);
}

TEST(BombTests, aSeriesOfTwentyThousandCostsTheWindowOnly) {
    auto const found =
        threeWeeks("DTSTART;TZID=Europe/Berlin:20050103T090000\nRRULE:FREQ=DAILY;COUNT=20000\n");
    EXPECT_EQ(found.occurrences.size(), 21U);
    EXPECT_LE(found.steps, 30);
}

TEST(BombTests, aCountThatEndedBeforeTheWindowYieldsNothing) {
    auto const found =
        threeWeeks("DTSTART;TZID=Europe/Berlin:20050103T090000\nRRULE:FREQ=DAILY;COUNT=7000\n");
    EXPECT_TRUE(found.occurrences.empty());
}

TEST(BombTests, manyBombsLeaveRoomForTheirNeighbours) {
    std::string events;
    for (int number = 0; number < 30; ++number) {
        events += "BEGIN:VEVENT\nUID:bomb" + std::to_string(number) +
                  "\nDTSTART:20050103T080000Z\nRRULE:FREQ=SECONDLY\nEND:VEVENT\n";
    }
    events += "BEGIN:VEVENT\nUID:neighbour\nDTSTART:20260321T120000Z\nEND:VEVENT\n";
    auto const series = seriesOf(events);
    auto const found = series.occurrences(instant("2026-03-01T00:00:00Z"), instant("2026-03-22T00:00:00Z"),
                                          zone("Europe/Berlin"));
    ASSERT_EQ(found.occurrences.size(), 30'001U);
    EXPECT_EQ(found.occurrences.back().event->uid, "neighbour");
    EXPECT_EQ(found.problems.size(), 30U);
}

} // namespace
} // namespace Platform::ICalendar
