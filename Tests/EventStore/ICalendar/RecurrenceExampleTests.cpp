// The examples by which RFC 5545 §3.8.5.3 explains recurrence rules, all in America/New_York, with the dates
// that it lists (or the first of them for an endless rule).

#include "Tests/EventStore/ICalendar/CalendarFixtures.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Platform::ICalendar {
namespace {

struct Example {
    std::string name;
    std::string start; // On the clock of New York.
    std::string rule;
    std::string days; // Blank between dates; a date stands for the start's time of that day.
    std::string until = "2010-01-01T00:00:00Z";
};

void PrintTo(Example const& example, std::ostream* stream) {
    *stream << example.name;
}

std::vector<std::string> expectedKeys(Example const& example) {
    std::vector<std::string> expected;
    std::istringstream words(example.days);
    for (std::string word; words >> word;) {
        expected.push_back(word.size() == 8 ? word + example.start.substr(8) : word);
    }
    return expected;
}

class RecurrenceExampleTests : public testing::TestWithParam<Example> {};

TEST_P(RecurrenceExampleTests, yieldsTheListedDates) {
    auto const& example = GetParam();
    auto const series = seriesOf(
        eventWith("DTSTART;TZID=America/New_York:" + example.start + "\nRRULE:" + example.rule + "\n"));
    EXPECT_EQ(keys(series, "1990-01-01T00:00:00Z", example.until), expectedKeys(example));
}

auto const examples = std::vector<Example>{
    {.name = "dailyForTenOccurrences",
     .start = "19970902T090000",
     .rule = "FREQ=DAILY;COUNT=10",
     .days = "19970902 19970903 19970904 19970905 19970906 19970907 19970908 19970909 19970910 19970911"},
    {.name = "everyOtherDay",
     .start = "19970902T090000",
     .rule = "FREQ=DAILY;INTERVAL=2",
     .days = "19970902 19970904 19970906 19970908 19970910 19970912",
     .until = "1997-09-13T00:00:00Z"},
    {.name = "everyTenDaysFiveTimes",
     .start = "19970902T090000",
     .rule = "FREQ=DAILY;INTERVAL=10;COUNT=5",
     .days = "19970902 19970912 19970922 19971002 19971012"},
    {.name = "weeklyForTenOccurrences",
     .start = "19970902T090000",
     .rule = "FREQ=WEEKLY;COUNT=10",
     .days = "19970902 19970909 19970916 19970923 19970930 19971007 19971014 19971021 19971028 19971104"},
    {.name = "weeklyUntilTheDayBeforeChristmas",
     .start = "19970902T090000",
     .rule = "FREQ=WEEKLY;UNTIL=19971224T000000Z",
     .days = "19970902 19970909 19970916 19970923 19970930 19971007 19971014 19971021 19971028 19971104 "
             "19971111 19971118 19971125 19971202 19971209 19971216 19971223"},
    {.name = "everyOtherWeek",
     .start = "19970902T090000",
     .rule = "FREQ=WEEKLY;INTERVAL=2;WKST=SU",
     .days = "19970902 19970916 19970930 19971014 19971028 19971111 19971125 19971209 19971223 19980106 "
             "19980120 19980203",
     .until = "1998-02-10T00:00:00Z"},
    {.name = "tuesdaysAndThursdaysForFiveWeeksByUntil",
     .start = "19970902T090000",
     .rule = "FREQ=WEEKLY;UNTIL=19971007T000000Z;WKST=SU;BYDAY=TU,TH",
     .days = "19970902 19970904 19970909 19970911 19970916 19970918 19970923 19970925 19970930 19971002"},
    {.name = "tuesdaysAndThursdaysForFiveWeeksByCount",
     .start = "19970902T090000",
     .rule = "FREQ=WEEKLY;COUNT=10;WKST=SU;BYDAY=TU,TH",
     .days = "19970902 19970904 19970909 19970911 19970916 19970918 19970923 19970925 19970930 19971002"},
    {.name = "everyOtherWeekOnThreeDays",
     .start = "19970901T090000",
     .rule = "FREQ=WEEKLY;INTERVAL=2;UNTIL=19971224T000000Z;WKST=SU;BYDAY=MO,WE,FR",
     .days = "19970901 19970903 19970905 19970915 19970917 19970919 19970929 19971001 19971003 19971013 "
             "19971015 19971017 19971027 19971029 19971031 19971110 19971112 19971114 19971124 19971126 "
             "19971128 19971208 19971210 19971212 19971222"},
    {.name = "everyOtherWeekOnTwoDaysEightTimes",
     .start = "19970902T090000",
     .rule = "FREQ=WEEKLY;INTERVAL=2;COUNT=8;WKST=SU;BYDAY=TU,TH",
     .days = "19970902 19970904 19970916 19970918 19970930 19971002 19971014 19971016"},
    {.name = "firstFridayTenTimes",
     .start = "19970905T090000",
     .rule = "FREQ=MONTHLY;COUNT=10;BYDAY=1FR",
     .days = "19970905 19971003 19971107 19971205 19980102 19980206 19980306 19980403 19980501 19980605"},
    {.name = "firstFridayUntilTheDayBeforeChristmas",
     .start = "19970905T090000",
     .rule = "FREQ=MONTHLY;UNTIL=19971224T000000Z;BYDAY=1FR",
     .days = "19970905 19971003 19971107 19971205"},
    {.name = "firstAndLastSundayOfEveryOtherMonth",
     .start = "19970907T090000",
     .rule = "FREQ=MONTHLY;INTERVAL=2;COUNT=10;BYDAY=1SU,-1SU",
     .days = "19970907 19970928 19971102 19971130 19980104 19980125 19980301 19980329 19980503 19980531"},
    {.name = "secondToLastMonday",
     .start = "19970922T090000",
     .rule = "FREQ=MONTHLY;COUNT=6;BYDAY=-2MO",
     .days = "19970922 19971020 19971117 19971222 19980119 19980216"},
    {.name = "thirdToLastDayOfTheMonth",
     .start = "19970928T090000",
     .rule = "FREQ=MONTHLY;BYMONTHDAY=-3",
     .days = "19970928 19971029 19971128 19971229 19980129 19980226",
     .until = "1998-03-01T00:00:00Z"},
    {.name = "secondAndFifteenth",
     .start = "19970902T090000",
     .rule = "FREQ=MONTHLY;COUNT=10;BYMONTHDAY=2,15",
     .days = "19970902 19970915 19971002 19971015 19971102 19971115 19971202 19971215 19980102 19980115"},
    {.name = "firstAndLastDayOfTheMonth",
     .start = "19970930T090000",
     .rule = "FREQ=MONTHLY;COUNT=10;BYMONTHDAY=1,-1",
     .days = "19970930 19971001 19971031 19971101 19971130 19971201 19971231 19980101 19980131 19980201"},
    {.name = "tenthToFifteenthEveryEighteenMonths",
     .start = "19970910T090000",
     .rule = "FREQ=MONTHLY;INTERVAL=18;COUNT=10;BYMONTHDAY=10,11,12,13,14,15",
     .days = "19970910 19970911 19970912 19970913 19970914 19970915 19990310 19990311 19990312 19990313"},
    {.name = "everyTuesdayOfEveryOtherMonth",
     .start = "19970902T090000",
     .rule = "FREQ=MONTHLY;INTERVAL=2;BYDAY=TU",
     .days = "19970902 19970909 19970916 19970923 19970930 19971104 19971111 19971118 19971125 19980106 "
             "19980113 19980120 19980127 19980303 19980310 19980317 19980324 19980331",
     .until = "1998-05-01T00:00:00Z"},
    {.name = "inJuneAndJuly",
     .start = "19970610T090000",
     .rule = "FREQ=YEARLY;COUNT=10;BYMONTH=6,7",
     .days = "19970610 19970710 19980610 19980710 19990610 19990710 20000610 20000710 20010610 20010710"},
    {.name = "everyOtherYearInThreeMonths",
     .start = "19970310T090000",
     .rule = "FREQ=YEARLY;INTERVAL=2;COUNT=10;BYMONTH=1,2,3",
     .days = "19970310 19990110 19990210 19990310 20010110 20010210 20010310 20030110 20030210 20030310"},
    {.name = "threeDaysOfEveryThirdYear",
     .start = "19970101T090000",
     .rule = "FREQ=YEARLY;INTERVAL=3;COUNT=10;BYYEARDAY=1,100,200",
     .days = "19970101 19970410 19970719 20000101 20000409 20000718 20030101 20030410 20030719 20060101"},
    {.name = "twentiethMondayOfTheYear",
     .start = "19970519T090000",
     .rule = "FREQ=YEARLY;BYDAY=20MO",
     .days = "19970519 19980518 19990517",
     .until = "2000-01-01T00:00:00Z"},
    {.name = "mondayOfWeekTwenty",
     .start = "19970512T090000",
     .rule = "FREQ=YEARLY;BYWEEKNO=20;BYDAY=MO",
     .days = "19970512 19980511 19990517",
     .until = "2000-01-01T00:00:00Z"},
    {.name = "everyThursdayInMarch",
     .start = "19970313T090000",
     .rule = "FREQ=YEARLY;BYMONTH=3;BYDAY=TH",
     .days = "19970313 19970320 19970327 19980305 19980312 19980319 19980326 19990304 19990311 19990318 "
             "19990325",
     .until = "2000-01-01T00:00:00Z"},
    {.name = "everyThursdayInSummer",
     .start = "19970605T090000",
     .rule = "FREQ=YEARLY;BYDAY=TH;BYMONTH=6,7,8",
     .days = "19970605 19970612 19970619 19970626 19970703 19970710 19970717 19970724 19970731 19970807 "
             "19970814 19970821 19970828 19980604 19980611 19980618 19980625 19980702 19980709 19980716 "
             "19980723 19980730 19980806 19980813 19980820 19980827",
     .until = "1999-01-01T00:00:00Z"},
    {.name = "fridayTheThirteenth",
     .start = "19970902T090000",
     .rule = "FREQ=MONTHLY;BYDAY=FR;BYMONTHDAY=13\nEXDATE;TZID=America/New_York:19970902T090000",
     .days = "19980213 19980313 19981113 19990813 20001013",
     .until = "2001-01-01T00:00:00Z"},
    {.name = "saturdayAfterTheFirstSunday",
     .start = "19970913T090000",
     .rule = "FREQ=MONTHLY;BYDAY=SA;BYMONTHDAY=7,8,9,10,11,12,13",
     .days = "19970913 19971011 19971108 19971213 19980110 19980207 19980307 19980411 19980509 19980613",
     .until = "1998-07-01T00:00:00Z"},
    {.name = "electionDay",
     .start = "19961105T090000",
     .rule = "FREQ=YEARLY;INTERVAL=4;BYMONTH=11;BYDAY=TU;BYMONTHDAY=2,3,4,5,6,7,8",
     .days = "19961105 20001107 20041102",
     .until = "2008-01-01T00:00:00Z"},
    {.name = "thirdOfThreeWeekdays",
     .start = "19970904T090000",
     .rule = "FREQ=MONTHLY;COUNT=3;BYDAY=TU,WE,TH;BYSETPOS=3",
     .days = "19970904 19971007 19971106"},
    {.name = "secondToLastWorkday",
     .start = "19970929T090000",
     .rule = "FREQ=MONTHLY;BYDAY=MO,TU,WE,TH,FR;BYSETPOS=-2",
     .days = "19970929 19971030 19971127 19971230 19980129 19980226 19980330",
     .until = "1998-04-01T00:00:00Z"},
    // The RFC's own UNTIL is in the wrong zone; this is what its list means.
    {.name = "everyThreeHoursOfOneDay",
     .start = "19970902T090000",
     .rule = "FREQ=HOURLY;INTERVAL=3;UNTIL=19970902T210000Z",
     .days = "19970902T090000 19970902T120000 19970902T150000"},
    {.name = "everyQuarterOfAnHourSixTimes",
     .start = "19970902T090000",
     .rule = "FREQ=MINUTELY;INTERVAL=15;COUNT=6",
     .days =
         "19970902T090000 19970902T091500 19970902T093000 19970902T094500 19970902T100000 19970902T101500"},
    {.name = "everyHourAndAHalfFourTimes",
     .start = "19970902T090000",
     .rule = "FREQ=MINUTELY;INTERVAL=90;COUNT=4",
     .days = "19970902T090000 19970902T103000 19970902T120000 19970902T133000"},
    {.name = "weekStartMonday",
     .start = "19970805T090000",
     .rule = "FREQ=WEEKLY;INTERVAL=2;COUNT=4;BYDAY=TU,SU;WKST=MO",
     .days = "19970805 19970810 19970819 19970824"},
    {.name = "weekStartSunday",
     .start = "19970805T090000",
     .rule = "FREQ=WEEKLY;INTERVAL=2;COUNT=4;BYDAY=TU,SU;WKST=SU",
     .days = "19970805 19970817 19970819 19970831"},
    {.name = "datesThatDoNotExistAreLeftOut",
     .start = "20070115T090000",
     .rule = "FREQ=MONTHLY;BYMONTHDAY=15,30;COUNT=5",
     .days = "20070115 20070130 20070215 20070315 20070330"},
};

INSTANTIATE_TEST_SUITE_P(RFC5545, RecurrenceExampleTests, testing::ValuesIn(examples),
                         [](auto const& sample) { return sample.param.name; });

std::vector<std::string> newYorkKeys(std::string const& start, std::string const& rule, std::string_view from,
                                     std::string_view to) {
    return keys(seriesOf(eventWith("DTSTART;TZID=America/New_York:" + start + "\nRRULE:" + rule + "\n")),
                from, to);
}

TEST(RecurrenceExampleTests, dailyUntilTheDayBeforeChristmas) {
    auto const found = newYorkKeys("19970902T090000", "FREQ=DAILY;UNTIL=19971224T000000Z",
                                   "1990-01-01T00:00:00Z", "2010-01-01T00:00:00Z");
    ASSERT_EQ(found.size(), 113);
    EXPECT_EQ(found.front(), "19970902T090000");
    EXPECT_EQ(found.back(), "19971223T090000");
}

TEST(RecurrenceExampleTests, everyDayInJanuaryIsTheSameByYearsAndByDays) {
    auto const byYears = newYorkKeys(
        "19980101T090000", "FREQ=YEARLY;UNTIL=20000131T140000Z;BYMONTH=1;BYDAY=SU,MO,TU,WE,TH,FR,SA",
        "1990-01-01T00:00:00Z", "2010-01-01T00:00:00Z");
    auto const byDays = newYorkKeys("19980101T090000", "FREQ=DAILY;UNTIL=20000131T140000Z;BYMONTH=1",
                                    "1990-01-01T00:00:00Z", "2010-01-01T00:00:00Z");
    ASSERT_EQ(byYears.size(), 93);
    EXPECT_EQ(byYears[30], "19980131T090000");
    EXPECT_EQ(byYears[31], "19990101T090000");
    EXPECT_EQ(byYears.back(), "20000131T090000");
    EXPECT_EQ(byYears, byDays);
}

TEST(RecurrenceExampleTests, everyTwentyMinutesOfTheOfficeDayIsTheSameByDaysAndByMinutes) {
    auto const byDays =
        newYorkKeys("19970902T090000", "FREQ=DAILY;BYHOUR=9,10,11,12,13,14,15,16;BYMINUTE=0,20,40",
                    "1997-09-02T00:00:00Z", "1997-09-04T00:00:00Z");
    auto const byMinutes =
        newYorkKeys("19970902T090000", "FREQ=MINUTELY;INTERVAL=20;BYHOUR=9,10,11,12,13,14,15,16",
                    "1997-09-02T00:00:00Z", "1997-09-04T00:00:00Z");
    ASSERT_EQ(byDays.size(), 48);
    EXPECT_EQ(byDays[1], "19970902T092000");
    EXPECT_EQ(byDays[23], "19970902T164000");
    EXPECT_EQ(byDays[24], "19970903T090000");
    EXPECT_EQ(byDays, byMinutes);
}

} // namespace
} // namespace Platform::ICalendar
