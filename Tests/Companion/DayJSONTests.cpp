#include "Applications/Companion/CommandError.h"
#include "Applications/Companion/DayJSON.h"
#include "Applications/Companion/PlainJSON.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Companion {
namespace {

using namespace Platform;

constexpr double nine = 1773216000; // 2026-03-11T08:00:00Z

Meetings::MeetEntity standUp() {
    return {.metId = *Foundation::UUID::fromText("85583367-f295-b450-c81a-265b6269b44f"),
            .metName = "Stand-up",
            .metDate = {.secondsSince1970 = nine},
            .metDescription = "",
            .metDuration = 900,
            .metColor = {.hexValue = "#D1495B"},
            .metIsAllDay = false,
            .metLocation = std::nullopt,
            .metUrl = std::nullopt,
            .metCalendarName = "Work",
            .metCalendarIdentifier = "a1/work",
            .metRecurrenceFrequency = Meetings::MeetRecurrenceFrequency::weekly,
            .metRecurringWeekdays = {4, 2},
            .metOriginalIdentifier = "a1/work:u1",
            .metSource = Meetings::MeetSource::eventKit};
}

WidgetExtension::ScheduleWidgetEntry entryOf(std::vector<Meetings::MeetEntity> meetings) {
    return {.date = {.secondsSince1970 = nine},
            .meetings = std::move(meetings),
            .hasAccessError = false,
            .dayOffset = 0};
}

FaceLayout face(std::vector<FaceRow> rows) {
    return {.family = WidgetFamily::systemLarge,
            .colorScheme = ColorScheme::light,
            .background = {.red = 1, .green = 1, .blue = 1},
            .brand = {.red = 0, .green = 0, .blue = 1},
            .accent = {.red = 0, .green = 0, .blue = 1},
            .isRightToLeft = false,
            .rows = std::move(rows)};
}

std::string documentOf(std::vector<Meetings::MeetEntity> meetings, std::vector<FaceRow> rows = {}) {
    auto const policy = TimelineReloadPolicy::after({.secondsSince1970 = nine + 900});
    return plainJSON(dayJSON(entryOf(std::move(meetings)), policy, face(std::move(rows))));
}

TEST(DayJSONTests, absentValuesAreLeftOut) {
    EXPECT_EQ(
        documentOf({standUp()}),
        R"({"version":1,"date":"2026-03-11T08:00:00Z","dayOffset":0,"hasAccessError":false,)"
        R"("reloadAfter":"2026-03-11T08:15:00Z","meetings":[)"
        R"({"metId":"85583367-F295-B450-C81A-265B6269B44F","metName":"Stand-up","metDate":"2026-03-11T08:00:00Z",)"
        R"("metDescription":"","metDuration":900,"metColor":"#D1495B","metIsAllDay":false,"metCalendarName":"Work",)"
        R"("metCalendarIdentifier":"a1/work","metRecurrenceFrequency":"weekly","metRecurringWeekdays":[2,4],)"
        R"("metOriginalIdentifier":"a1/work:u1","metSource":"eventKit"}],)"
        R"("face":{"family":"large","rows":[]}})");
}

TEST(DayJSONTests, locationAndLinkStandBeforeTheCalendar) {
    auto meet = standUp();
    meet.metLocation = "Room 1";
    meet.metUrl = Foundation::URL{"https://example.org/a"};
    meet.metIsAllDay = true;
    EXPECT_NE(documentOf({meet}).find(
                  R"("metIsAllDay":true,"metLocation":"Room 1","metUrl":"https://example.org/a",)"
                  R"("metCalendarName":)"),
              std::string::npos);
}

TEST(DayJSONTests, aDurationWithAFractionKeepsIt) {
    auto meet = standUp();
    meet.metDuration = 90.5;
    EXPECT_NE(documentOf({meet}).find(R"("metDuration":90.5,)"), std::string::npos);
}

TEST(DayJSONTests, everyKindOfRowIsWritten) {
    FaceButton const button{.action = FaceButton::Action::nextDay, .systemImage = "x", .title = "y"};
    SRGBColor const color{
        .red = 0.8196078431372549, .green = 0.28627450980392155, .blue = 0.3568627450980392};
    CardRow card{.identifier = "id",
                 .name = "Stand-up",
                 .time = "09:00 a.m.",
                 .duration = "15m",
                 .color = color,
                 .timeColor = color,
                 .height = 24,
                 .spacing = 6,
                 .barWidth = 2,
                 .timeFontSize = 10,
                 .durationFontSize = 8};
    auto const withDuration = card;
    card.duration = std::nullopt;
    card.color = AccentColor{};
    auto const document = documentOf(
        {}, {HeaderRow{.previous = button, .weekday = "Wednesday", .day = 11, .next = button},
             LabelRow{.text = "All-day"}, BarRow{.identifier = "b", .name = "Fair", .color = color},
             SpaceRow{.height = 15}, withDuration, card, MoreRow{.text = "+3 more", .count = 3, .padding = 5},
             LineRow{.kind = LineRow::Kind::emptyState, .text = "No events"},
             LineRow{.kind = LineRow::Kind::noPermission, .text = "No access"}});
    auto const rows = document.substr(document.find(R"("rows":)"));
    EXPECT_EQ(rows,
              R"("rows":[{"kind":"header","weekday":"Wednesday","day":11},)"
              R"({"kind":"label","text":"All-day"},)"
              R"({"kind":"bar","name":"Fair","color":"#D1495B"},)"
              R"({"kind":"space","height":15},)"
              R"({"kind":"card","name":"Stand-up","time":"09:00 a.m.","duration":"15m","color":"#D1495B"},)"
              R"({"kind":"card","name":"Stand-up","time":"09:00 a.m.","color":"accent"},)"
              R"({"kind":"more","text":"+3 more","count":3},)"
              R"({"kind":"line","text":"No events","reason":"emptyState"},)"
              R"({"kind":"line","text":"No access","reason":"noPermission"}]}})");
}

TEST(PlainJSONTests, slashesStandAsTheyAre) {
    EXPECT_EQ(plainJSON("a/b"), R"("a/b")");
    EXPECT_EQ(plainJSON("a\\/b"), R"("a\\/b")");
    EXPECT_EQ(plainJSON("a\\\\/\"/\n"), R"("a\\\\/\"/\n")");
}

TEST(PlainJSONTests, whatIsNoTextIsAFailure) {
    EXPECT_THROW((void)plainJSON("\xff"), CommandError);
    EXPECT_THROW((void)plainJSON(std::nan("")), CommandError);
}

} // namespace
} // namespace Companion
