#include "Samples/ICalendarText.h"

#include <gtest/gtest.h>

using namespace Samples;
using namespace std::chrono_literals;

TEST(ICalendarTextTests, aLineOfSeventyFiveBytesStaysWhole) {
    ICalendarText text;
    text.line(std::string(75, 'a'));
    EXPECT_EQ(text.text(), std::string(75, 'a') + "\r\n");
}

TEST(ICalendarTextTests, aLongerLineIsFoldedAndEveryPartFits) {
    ICalendarText text;
    text.line(std::string(75 + 74 + 1, 'a'));
    EXPECT_EQ(text.text(), std::string(75, 'a') + "\r\n " + std::string(74, 'a') + "\r\n a\r\n");
}

TEST(ICalendarTextTests, aCharacterIsNeverFoldedApart) {
    ICalendarText text;
    text.line(std::string(73, 'a') + "会" + "b");
    EXPECT_EQ(text.text(), std::string(73, 'a') + "\r\n 会b\r\n");
}

TEST(ICalendarTextTests, textsAreEscaped) {
    EXPECT_EQ(escapedText("a,b;c\\d\ne:f\"g"), "a\\,b\\;c\\\\d\\ne:f\"g");
}

TEST(ICalendarTextTests, anEmptyPropertyIsLeftOut) {
    ICalendarText text;
    text.property("LOCATION", "");
    text.property("SUMMARY", "A, B");
    EXPECT_EQ(text.text(), "SUMMARY:A\\, B\r\n");
}

TEST(ICalendarTextTests, daysAndTimesAreWrittenAsDigits) {
    std::chrono::local_days const day(2026y / 3 / 1);
    EXPECT_EQ(dateText(day), "20260301");
    EXPECT_EQ(timeText(day + 9h + 5min), "20260301T090500");
    EXPECT_EQ(timeText(day - 1min), "20260228T235900");
}

TEST(ICalendarTextTests, aTimeZoneNamesEachChangeOfTheClock) {
    ICalendarText text;
    text.timeZone(Foundation::TimeZone::named("Europe/Madrid").value(),
                  std::chrono::local_days(2024y / 7 / 1));
    EXPECT_EQ(text.text(), "BEGIN:VTIMEZONE\r\nTZID:Europe/Madrid\r\n"
                           "BEGIN:DAYLIGHT\r\nDTSTART:19700101T000000\r\nTZOFFSETFROM:+0200\r\nTZOFFSETTO:+"
                           "0200\r\nEND:DAYLIGHT\r\n"
                           "BEGIN:STANDARD\r\nDTSTART:20231029T030000\r\nTZOFFSETFROM:+0200\r\nTZOFFSETTO:+"
                           "0100\r\nEND:STANDARD\r\n"
                           "BEGIN:DAYLIGHT\r\nDTSTART:20240331T020000\r\nTZOFFSETFROM:+0100\r\nTZOFFSETTO:+"
                           "0200\r\nEND:DAYLIGHT\r\n"
                           "BEGIN:STANDARD\r\nDTSTART:20241027T030000\r\nTZOFFSETFROM:+0200\r\nTZOFFSETTO:+"
                           "0100\r\nEND:STANDARD\r\n"
                           "BEGIN:DAYLIGHT\r\nDTSTART:20250330T020000\r\nTZOFFSETFROM:+0100\r\nTZOFFSETTO:+"
                           "0200\r\nEND:DAYLIGHT\r\n"
                           "END:VTIMEZONE\r\n");
}
