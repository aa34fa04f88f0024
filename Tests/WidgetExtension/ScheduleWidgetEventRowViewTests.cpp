#include "WidgetExtension/ScheduleWidgetEventRowView.h"

#include "Tests/WidgetExtension/WidgetFixtures.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <string>

namespace WidgetExtension {
namespace {

using Platform::ColorScheme;
using Platform::SRGBColor;
using Platform::WidgetFamily;

ScheduleWidgetEventRowView rowOf(Meetings::MeetEntity meeting,
                                 WidgetFamily family = WidgetFamily::systemLarge,
                                 ColorScheme scheme = ColorScheme::light) {
    return {
        .meeting = std::move(meeting),
        .showsDuration = family != WidgetFamily::systemSmall,
        .cardHeight = 24,
        .colorScheme = scheme,
        .family = family,
        .calendar = Meetings::utcCalendar(),
    };
}

std::string durationOf(double seconds) {
    auto meeting = Meetings::someMeet();
    meeting.metDuration = seconds;
    return rowOf(meeting).durationText();
}

TEST(ScheduleWidgetEventRowViewTests, timesHaveTwelveHoursAndAFixedMarker) {
    auto const timesAt = [](double seconds) {
        auto const row = rowOf(Meetings::meetAt(wednesday + seconds));
        return row.timeText() + " / " + row.timeOnlyText();
    };
    EXPECT_EQ(timesAt(0), "12:00 a.m. / 12:00");
    EXPECT_EQ(timesAt(15 * minute), "12:15 a.m. / 12:15");
    EXPECT_EQ(timesAt(9 * hour + 5 * minute), "09:05 a.m. / 09:05");
    EXPECT_EQ(timesAt(12 * hour), "12:00 p.m. / 12:00");
    EXPECT_EQ(timesAt(13 * hour + 5 * minute), "01:05 p.m. / 01:05");
    EXPECT_EQ(timesAt(23 * hour + 59 * minute), "11:59 p.m. / 11:59");
}

TEST(ScheduleWidgetEventRowViewTests, secondsAreCutNotRounded) {
    auto const meeting = Meetings::meetAt(wednesday + 9 * hour + 5 * minute + 59.999);
    EXPECT_EQ(rowOf(meeting).timeText(), "09:05 a.m.");
}

TEST(ScheduleWidgetEventRowViewTests, timesAreThoseOfTheCalendarsZone) {
    auto row = rowOf(Meetings::meetAt(wednesday + 20 * hour));
    row.calendar = Meetings::calendarIn("Asia/Kathmandu");
    EXPECT_EQ(row.timeText(), "01:45 a.m.");
}

TEST(ScheduleWidgetEventRowViewTests, durationsAreWholeHoursAndMinutes) {
    EXPECT_EQ(durationOf(90 * minute), "1h 30m");
    EXPECT_EQ(durationOf(120 * minute), "2h");
    EXPECT_EQ(durationOf(45 * minute), "45m");
    EXPECT_EQ(durationOf(25 * hour + minute), "25h 1m");
}

TEST(ScheduleWidgetEventRowViewTests, durationsAreCutAndNeverNegative) {
    EXPECT_EQ(durationOf(0), "0m");
    EXPECT_EQ(durationOf(59.9), "0m");
    EXPECT_EQ(durationOf(119.9), "1m");
    EXPECT_EQ(durationOf(-90), "0m");
}

TEST(ScheduleWidgetEventRowViewDeathTest, aDurationThatIsNoNumberOfMinutesEndsTheProcess) {
    EXPECT_DEATH(durationOf(std::numeric_limits<double>::quiet_NaN()), "cannot be converted");
    EXPECT_DEATH(durationOf(std::numeric_limits<double>::infinity()), "cannot be converted");
    EXPECT_DEATH(durationOf(1e300), "cannot be converted");
}

TEST(ScheduleWidgetEventRowViewTests, aCardOfASmallWidgetIsTight) {
    auto view = rowOf(Meetings::meetAt(wednesday + 13 * hour + 5 * minute), WidgetFamily::systemSmall);
    view.cardHeight = 18;
    auto const row = view.row();
    EXPECT_EQ(row.time, "01:05");
    EXPECT_EQ(row.duration, std::nullopt);
    EXPECT_EQ(row.spacing, 3);
    EXPECT_EQ(row.timeFontSize, 8);
    EXPECT_EQ(row.height, 18);
    EXPECT_EQ(row.barWidth, 2);
}

TEST(ScheduleWidgetEventRowViewTests, aCardOfAnyOtherWidgetHasMarkerAndDuration) {
    for (auto const family :
         {WidgetFamily::systemMedium, WidgetFamily::systemLarge, WidgetFamily::systemExtraLarge}) {
        auto const row = rowOf(Meetings::meetAt(wednesday + 13 * hour + 5 * minute), family).row();
        EXPECT_EQ(row.time, "01:05 p.m.");
        EXPECT_EQ(row.duration, "30m");
        EXPECT_EQ(row.spacing, 6);
        EXPECT_EQ(row.timeFontSize, 10);
        EXPECT_EQ(row.durationFontSize, 8);
        EXPECT_EQ(row.height, 24);
        EXPECT_EQ(row.barWidth, 2);
    }
}

TEST(ScheduleWidgetEventRowViewTests, theTimeStandsOutFromTheScheme) {
    auto const meeting = Meetings::someMeet();
    EXPECT_EQ(rowOf(meeting, WidgetFamily::systemLarge, ColorScheme::light).row().timeColor,
              (SRGBColor{.red = 0, .green = 0, .blue = 0}));
    EXPECT_EQ(rowOf(meeting, WidgetFamily::systemLarge, ColorScheme::dark).row().timeColor,
              (SRGBColor{.red = 1, .green = 1, .blue = 1}));
}

TEST(ScheduleWidgetEventRowViewTests, theCardBearsTheMeetsNameColourAndIdentity) {
    auto const meeting = Meetings::someMeet("Design review");
    auto const row = rowOf(meeting).row();
    EXPECT_EQ(row.name, "Design review");
    EXPECT_EQ(row.identifier, meeting.metId.uuidString());
    EXPECT_EQ(row.color,
              (Platform::FaceColor{SRGBColor{.red = 209 / 255.0, .green = 73 / 255.0, .blue = 91 / 255.0}}));
}

TEST(ScheduleWidgetEventRowViewTests, aColourThatIsNoneIsTheAccentColour) {
    auto meeting = Meetings::someMeet();
    meeting.metColor.hexValue = "#17E0000";
    EXPECT_EQ(rowOf(meeting).color(), Platform::FaceColor{Platform::AccentColor{}});
}

} // namespace
} // namespace WidgetExtension
