#include "Platform/EventStore/ICalendar/ColorText.h"
#include "Platform/EventStore/ICalendar/ContentLine.h"
#include "Platform/EventStore/ICalendar/ValueParser.h"

#include <gtest/gtest.h>

namespace Platform::ICalendar {
namespace {

TEST(ValueTests, timesAreReadInTheirForm) {
    EXPECT_EQ(parseTime("20260311T080000Z", {}),
              (CalendarTime{.form = TimeForm::utc, .zone = 0, .localSeconds = 1773216000}));
    EXPECT_EQ(parseTime("20260311T080000", {}),
              (CalendarTime{.form = TimeForm::floating, .zone = 0, .localSeconds = 1773216000}));
    EXPECT_EQ(parseTime("20260311T080000", {.zone = 2}),
              (CalendarTime{.form = TimeForm::zoned, .zone = 2, .localSeconds = 1773216000}));
    EXPECT_EQ(parseTime(" 20260311 ", {}),
              (CalendarTime{.form = TimeForm::date, .zone = 0, .localSeconds = 1773187200}));
    EXPECT_EQ(parseTime("00010101", {})->text(), "00010101");
    EXPECT_EQ(parseTime("99991231T235959", {})->text(), "99991231T235959");
}

TEST(ValueTests, aLeapSecondIsTheSecondBeforeIt) {
    EXPECT_EQ(parseTime("20161231T235960Z", {})->text(), "20161231T235959Z");
}

TEST(ValueTests, durationsKeepDaysAndSecondsApart) {
    EXPECT_EQ(parseDuration("P15DT5H0M20S"), (CalendarDuration{.days = 15, .seconds = 18020}));
    EXPECT_EQ(parseDuration("P7W"), (CalendarDuration{.days = 49, .seconds = 0}));
    EXPECT_EQ(parseDuration("-PT15M"), (CalendarDuration{.days = 0, .seconds = -900}));
    EXPECT_EQ(parseDuration("+P1D"), (CalendarDuration{.days = 1, .seconds = 0}));
    EXPECT_EQ(parseDuration("pt0s"), (CalendarDuration{.days = 0, .seconds = 0}));
    EXPECT_EQ(parseDuration("PT"), (CalendarDuration{.days = 0, .seconds = 0}));
    EXPECT_EQ(parseDuration("P1"), std::nullopt);
    EXPECT_EQ(parseDuration("1D"), std::nullopt);
}

TEST(ValueTests, offsetsAreLessThanADay) {
    EXPECT_EQ(parseOffset("+0530"), 19800);
    EXPECT_EQ(parseOffset("-0400"), -14400);
    EXPECT_EQ(parseOffset("+001730"), 1050);
    EXPECT_EQ(parseOffset("0100"), std::nullopt);
    EXPECT_EQ(parseOffset("+2400"), std::nullopt);
    EXPECT_EQ(parseOffset("+1:00"), std::nullopt);
}

TEST(ValueTests, aRuleIsReadWhole) {
    auto const rule = parseRule(
        "FREQ=MONTHLY;INTERVAL=2;COUNT=10;WKST=SU;BYDAY=-1SU,+1SU,MO;BYMONTHDAY=15,-1,15;BYMONTH=3,1;"
        "BYHOUR=9;BYMINUTE=30;BYSECOND=0,60;BYYEARDAY=-366;BYWEEKNO=-53,20;BYSETPOS=-1,1;");
    ASSERT_TRUE(rule) << rule.error();
    EXPECT_EQ(*rule, (RecurrenceRule{.frequency = Frequency::monthly,
                                     .interval = 2,
                                     .count = 10,
                                     .until = std::nullopt,
                                     .weekStart = 0,
                                     .bySecond = {0, 60},
                                     .byMinute = {30},
                                     .byHour = {9},
                                     .byDay = {{.weekday = 0, .ordinal = -1},
                                               {.weekday = 0, .ordinal = 1},
                                               {.weekday = 1, .ordinal = 0}},
                                     .byMonthDay = {-1, 15},
                                     .byYearDay = {-366},
                                     .byWeekNumber = {-53, 20},
                                     .byMonth = {1, 3},
                                     .bySetPosition = {-1, 1}}));
}

TEST(ValueTests, whatIsWrongWithARuleIsSaid) {
    EXPECT_EQ(parseRule("COUNT=3").error(), "it has no FREQ");
    EXPECT_EQ(parseRule("FREQ=DAILY;BYHOUR=24").error(), "its BYHOUR is not usable");
    EXPECT_EQ(parseRule("FREQ=DAILY;count=1;COUNT=2").error(), "it has two COUNT parts");
    EXPECT_EQ(parseRule("FREQ=DAILY;SKIP=FORWARD").error(), "its part SKIP is not understood");
}

TEST(ValueTests, aLongListOfTheSameCostsNothing) {
    std::string text = "FREQ=DAILY;BYHOUR=9";
    for (int element = 0; element < 100'000; ++element)
        text += ",9";
    EXPECT_EQ(parseRule(text)->byHour, (std::vector<std::int32_t>{9}));
}

TEST(ValueTests, theEscapesOfParametersAreDecoded) {
    EXPECT_EQ(decodedParameter("a^nb^'c^^d^e^"), "a\nb\"c^d^e^");
}

TEST(ValueTests, coloursAreReadFromDigitsAndNames) {
    EXPECT_EQ(colorFromText("#FF2968FF"), (ColorValue{.red = 255, .green = 41, .blue = 104}));
    EXPECT_EQ(colorFromText(" #d1495b\n"), (ColorValue{.red = 209, .green = 73, .blue = 91}));
    EXPECT_EQ(colorFromText("#1aF"), (ColorValue{.red = 17, .green = 170, .blue = 255}));
    EXPECT_EQ(colorFromText("Turquoise"), (ColorValue{.red = 64, .green = 224, .blue = 208}));
    for (auto const* text : {"", "#", "#12345", "#12345G", "#-12345", "#+1234567", "bluish", "FF0000"}) {
        EXPECT_EQ(colorFromText(text), std::nullopt) << text;
    }
}

} // namespace
} // namespace Platform::ICalendar
