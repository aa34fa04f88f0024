#include "Applications/Companion/FaceText.h"

#include <gtest/gtest.h>

namespace Companion {
namespace {

using namespace Platform;

constexpr SRGBColor red{.red = 1, .green = 0.5, .blue = 0};

CardRow card(std::string name, std::string time, std::optional<std::string> duration) {
    return {.identifier = "id",
            .name = std::move(name),
            .time = std::move(time),
            .duration = std::move(duration),
            .color = red,
            .timeColor = {.red = 0, .green = 0, .blue = 0},
            .height = 24,
            .spacing = 6,
            .barWidth = 2,
            .timeFontSize = 10,
            .durationFontSize = 8};
}

FaceLayout face(std::vector<FaceRow> rows) {
    HeaderRow header{
        .previous = {.action = FaceButton::Action::previousDay,
                     .systemImage = "chevron.left",
                     .title = "Previous day"},
        .weekday = "Wednesday",
        .day = 11,
        .next = {.action = FaceButton::Action::nextDay, .systemImage = "chevron.right", .title = "Next day"}};
    rows.insert(rows.begin(), header);
    return {.family = WidgetFamily::systemLarge,
            .colorScheme = ColorScheme::light,
            .background = {.red = 1, .green = 1, .blue = 1},
            .brand = {.red = 0, .green = 0, .blue = 1},
            .accent = {.red = 1, .green = 0, .blue = 1},
            .isRightToLeft = false,
            .rows = std::move(rows)};
}

constexpr FaceTextStyle plain{.showsColors = false, .columns = std::nullopt};

TEST(FaceTextTests, rowsStandInColumns) {
    auto const layout =
        face({LabelRow{.text = "All-day"}, BarRow{.identifier = "a", .name = "Fair", .color = red},
              SpaceRow{.height = 15}, card("Stand-up", "09:00 a.m.", "15m"),
              card("Planning the year", "10:30 a.m.", "1h 30m"),
              MoreRow{.text = "+3 more", .count = 3, .padding = 5}});
    EXPECT_EQ(faceText(layout, plain), "Wednesday 11\n"
                                       "\n"
                                       "All-day\n"
                                       "▌ Fair\n"
                                       "\n"
                                       "▌ 09:00 a.m.  Stand-up              15m\n"
                                       "▌ 10:30 a.m.  Planning the year  1h 30m\n"
                                       "  +3 more\n");
}

TEST(FaceTextTests, wideCharactersTakeTwoColumns) {
    auto const layout = face({card("会議", "09:00 a.m.", "15m"), card("Tea", "10:00 a.m.", "15m")});
    EXPECT_EQ(faceText(layout, plain), "Wednesday 11\n\n"
                                       "▌ 09:00 a.m.  会議  15m\n"
                                       "▌ 10:00 a.m.  Tea   15m\n");
}

TEST(FaceTextTests, withoutDurationsNoLineEndsInBlanks) {
    auto const layout = face({card("Tea", "09:00", std::nullopt), card("Planning", "10:00", std::nullopt)});
    EXPECT_EQ(faceText(layout, plain), "Wednesday 11\n\n▌ 09:00  Tea\n▌ 10:00  Planning\n");
}

TEST(FaceTextTests, aLongNameIsCutToTheTerminal) {
    auto const layout = face({card("A very long name that no terminal shows", "09:00 a.m.", "15m")});
    EXPECT_EQ(faceText(layout, {.showsColors = false, .columns = 40}),
              "Wednesday 11\n\n▌ 09:00 a.m.  A very long name tha…  15m\n");
}

TEST(FaceTextTests, inAPipeALongNameIsCutToAHundredColumns) {
    auto const layout =
        face({BarRow{.identifier = "a", .name = std::string(400, 'f'), .color = red},
              card(std::string(400, 'x'), "09:00 a.m.", "15m"), card("Tea", "10:00 a.m.", "1h 30m")});
    EXPECT_EQ(faceText(layout, plain), "Wednesday 11\n\n"
                                       "▌ " +
                                           std::string(97, 'f') + "…\n▌ 09:00 a.m.  " + std::string(77, 'x') +
                                           "…     15m\n▌ 10:00 a.m.  Tea" + std::string(75, ' ') +
                                           "  1h 30m\n");
}

TEST(FaceTextTests, inAPipeANameThatFitsIsWhole) {
    std::string const name(86, 'x');
    EXPECT_EQ(faceText(face({card(name, "09:00 a.m.", std::nullopt)}), plain),
              "Wednesday 11\n\n▌ 09:00 a.m.  " + name + "\n");
}

TEST(FaceTextTests, aNameWithoutWidthIsCutAllTheSame) {
    std::string name = "x";
    while (name.size() < 1024UL * 1024)
        name += "\u200B";
    EXPECT_LT(faceText(face({card(name, "09:00", std::nullopt)}), plain).size(), 1024U);
    std::string pile = "x";
    while (pile.size() < 1024UL * 1024)
        pile += "\u0301";
    EXPECT_LT(faceText(face({BarRow{.identifier = "a", .name = pile, .color = red}}), plain).size(), 7000U);
}

TEST(FaceTextTests, aNameIsCutBetweenClusters) {
    auto const layout = face({card(
        "👩‍👩‍👧👩‍👩‍👧👩‍👩‍👧👩‍👩‍👧👩‍👩‍👧👩‍"
        "👩"
        "‍"
        "👧",
        "09:00", std::nullopt)});
    EXPECT_EQ(faceText(layout, {.showsColors = false, .columns = 17}),
              "Wednesday 11\n\n▌ 09:00  👩‍👩‍👧👩‍👩‍👧👩‍👩‍👧…\n");
}

TEST(FaceTextTests, foreignTextsCannotReachTheTerminal) {
    auto const layout = face({card("\x1b[31mred\r\nline\u202Etext", "09:00", std::nullopt)});
    EXPECT_EQ(faceText(layout, plain), "Wednesday 11\n\n▌ 09:00  \uFFFD[31mred  line\uFFFDtext\n");
}

TEST(FaceTextTests, directionMarksTakeNoColumnsAndSoftHyphensAreGone) {
    auto const layout = face({card("\u200Fפגישה: C++\u200E", "09:00", "1h"),
                              card("Be\u00ADspre\u00ADchung\u200F", "10:00", "15m")});
    EXPECT_EQ(faceText(layout, plain), "Wednesday 11\n\n"
                                       "▌ 09:00  \u200Fפגישה: C++\u200E    1h\n"
                                       "▌ 10:00  Besprechung  15m\n");
}

TEST(FaceTextTests, barsBearTheCalendarsColour) {
    auto const layout = face({BarRow{.identifier = "a", .name = "Fair", .color = red}});
    EXPECT_EQ(faceText(layout, {.showsColors = true, .columns = std::nullopt}),
              "\x1b[1mWednesday 11\x1b[0m\n\n\x1b[38;2;255;128;0m▌\x1b[0m Fair\n");
}

TEST(FaceTextTests, theAccentIsTheFacesOwnColour) {
    auto const layout = face({BarRow{.identifier = "a", .name = "Fair", .color = AccentColor{}}});
    EXPECT_NE(faceText(layout, {.showsColors = true, .columns = std::nullopt}).find("\x1b[38;2;255;0;255m▌"),
              std::string::npos);
}

TEST(FaceTextTests, theOneLineStandsAlone) {
    auto const layout = face({LineRow{.kind = LineRow::Kind::emptyState, .text = "No events"}});
    EXPECT_EQ(faceText(layout, plain), "Wednesday 11\n\nNo events\n");
}

} // namespace
} // namespace Companion
