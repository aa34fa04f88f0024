#include "Platform/Face/EvenTextMeasurer.h"
#include "Platform/Face/FaceGeometry.h"
#include "Tests/Face/SampleFaces.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

namespace {

using namespace Platform;
using SampleFaces::rgb;

FaceGeometry place(FaceLayout const& layout) {
    return placeFace(layout, EvenTextMeasurer());
}

FaceLayout busyLarge() {
    return SampleFaces::busy(WidgetFamily::systemLarge, ColorScheme::light);
}

PlacedText const& text(PlacedRow const& row, PlacedText::Role role) {
    auto const found = std::ranges::find(row.texts, role, &PlacedText::role);
    if (found == row.texts.end()) throw std::logic_error("the row has no such text");
    return *found;
}

template <typename Row>
std::vector<PlacedRow> rowsOf(FaceLayout const& layout, FaceGeometry const& geometry) {
    std::vector<PlacedRow> found;
    for (auto const& row : geometry.rows) {
        if (std::holds_alternative<Row>(layout.rows.at(row.index))) found.push_back(row);
    }
    return found;
}

TEST(FaceGeometryTests, sizeOfEachFamily) {
    struct Row {
        WidgetFamily family;
        double width;
        double height;
    };
    for (auto const& [family, width, height] : {
             Row{WidgetFamily::systemSmall, 170, 170},
             Row{WidgetFamily::systemMedium, 364, 170},
             Row{WidgetFamily::systemLarge, 364, 382},
             Row{WidgetFamily::systemExtraLarge, 764, 382},
         }) {
        auto const geometry = place(SampleFaces::busy(family, ColorScheme::light));
        EXPECT_EQ(geometry.width, width) << Foundation::rawValue(family);
        EXPECT_EQ(geometry.height, height) << Foundation::rawValue(family);
        EXPECT_EQ(geometry.cornerRadius, 18) << Foundation::rawValue(family);
    }
}

TEST(FaceGeometryTests, faceGrowsDownwardByWhatItsRowsNeed) {
    auto layout = busyLarge();
    auto const before = place(layout);
    auto const& lastRow = before.rows.back().frame;
    for (int count = 0; count < 3; ++count) {
        layout.rows.insert(layout.rows.begin() + 2,
                           BarRow{.identifier = "x", .name = "More", .color = AccentColor{}});
    }
    auto const after = place(layout);
    EXPECT_EQ(after.rows.back().frame.y, lastRow.y + 3 * (18 + 3));
    EXPECT_EQ(after.height, after.rows.back().frame.bottom() + 14);
    EXPECT_EQ(after.width, 364);
}

TEST(FaceGeometryTests, rowsOfTheLargeFaceStandAtTheirMeasures) {
    auto const layout = busyLarge();
    auto const geometry = place(layout);
    auto frames = [&](std::size_t index) { return geometry.rows.at(index).frame; };
    EXPECT_EQ(frames(0), (FaceRect{.x = 14, .y = 14, .width = 336, .height = 26}));
    EXPECT_EQ(frames(1), (FaceRect{.x = 14, .y = 48, .width = 336, .height = 12}));
    EXPECT_EQ(frames(2), (FaceRect{.x = 14, .y = 63, .width = 336, .height = 18}));
    EXPECT_EQ(frames(3), (FaceRect{.x = 14, .y = 84, .width = 336, .height = 18}));
    EXPECT_EQ(frames(4), (FaceRect{.x = 14, .y = 102, .width = 336, .height = 15}));
    EXPECT_EQ(frames(5), (FaceRect{.x = 14, .y = 117, .width = 336, .height = 24}));
    EXPECT_EQ(frames(6), (FaceRect{.x = 14, .y = 146, .width = 336, .height = 24}));
    EXPECT_EQ(frames(12).bottom(), 344);
    EXPECT_EQ(frames(13).y, 344);
}

TEST(FaceGeometryTests, endlessNamesAreCutBeforeTheyAreMeasured) {
    std::string marks = "e";
    for (int count = 0; count < 200'000; ++count)
        marks += "\u0301";
    struct Row {
        char const* name;
        std::string text;
        std::string shown; ///< Empty where only its length is bounded.
    };
    for (auto const& row : {
             Row{.name = "letters", .text = std::string(400'000, 'x'), .shown = std::string(500, 'x') + "…"},
             Row{.name = "as many as are shown",
                 .text = std::string(500, 'x'),
                 .shown = std::string(500, 'x')},
             Row{.name = "one letter with marks", .text = marks, .shown = {}},
         }) {
        SCOPED_TRACE(row.name);
        auto layout = busyLarge();
        for (auto& each : layout.rows) {
            if (auto* const bar = std::get_if<BarRow>(&each)) bar->name = row.text;
            if (auto* const card = std::get_if<CardRow>(&each)) card->name = row.text;
        }
        auto const geometry = place(layout);
        for (auto const& placed : geometry.rows) {
            for (auto const& each : placed.texts)
                EXPECT_LE(each.text.size(), 40'000);
            EXPECT_LE(placed.accessibleName.size(), 40'100);
        }
        if (row.shown.empty()) continue;
        for (auto const& placed : rowsOf<BarRow>(layout, geometry))
            EXPECT_EQ(text(placed, PlacedText::Role::name).text, row.shown);
        for (auto const& placed : rowsOf<CardRow>(layout, geometry)) {
            EXPECT_EQ(text(placed, PlacedText::Role::name).text, row.shown);
            EXPECT_TRUE(placed.accessibleName.starts_with(row.shown + ", "));
        }
    }
}

TEST(FaceGeometryTests, rowsOfTheSmallFaceStandAtTheirMeasures) {
    auto const geometry = place(SampleFaces::busy(WidgetFamily::systemSmall, ColorScheme::light));
    EXPECT_EQ(geometry.rows.at(0).frame, (FaceRect{.x = 10, .y = 10, .width = 150, .height = 22}));
    EXPECT_EQ(geometry.rows.at(1).frame, (FaceRect{.x = 10, .y = 38, .width = 150, .height = 18}));
    EXPECT_EQ(geometry.rows.at(2).frame, (FaceRect{.x = 10, .y = 60, .width = 150, .height = 18}));
}

TEST(FaceGeometryTests, barOfACardIsTheRowsWidthAndHalfWayIn) {
    auto const layout = busyLarge();
    auto const card = rowsOf<CardRow>(layout, place(layout)).front();
    ASSERT_TRUE(card.surface);
    EXPECT_EQ(card.surface->bar, (FaceRect{.x = 17.5, .y = 120.5, .width = 2, .height = 17}));
    EXPECT_EQ(card.surface->radius, 6);
    EXPECT_EQ(text(card, PlacedText::Role::name).column.x, 25.5);
}

TEST(FaceGeometryTests, timesStandUnderEachOther) {
    auto const layout = busyLarge();
    auto const cards = rowsOf<CardRow>(layout, place(layout));
    ASSERT_EQ(cards.size(), 8U);
    for (auto const& card : cards) {
        auto const& time = text(card, PlacedText::Role::time);
        auto const& duration = text(card, PlacedText::Role::duration);
        EXPECT_EQ(time.column.right(), 303) << card.accessibleName;
        EXPECT_EQ(time.alignment, PlacedText::Alignment::right);
        EXPECT_EQ(time.font.figures, FaceFont::Figures::tabular);
        EXPECT_EQ(duration.column.right(), 343) << card.accessibleName;
        EXPECT_EQ(duration.alignment, PlacedText::Alignment::right);
    }
}

TEST(FaceGeometryTests, cardWithoutDurationKeepsTheColumnOfItsNeighbours) {
    auto layout = busyLarge();
    std::get<CardRow>(layout.rows.at(5)).duration.reset();
    auto const cards = rowsOf<CardRow>(layout, place(layout));
    EXPECT_EQ(cards.at(0).texts.size(), 2U);
    EXPECT_EQ(text(cards.at(0), PlacedText::Role::time).column.right(), 303);
}

TEST(FaceGeometryTests, smallFaceHasNoDurationColumn) {
    auto const layout = SampleFaces::busy(WidgetFamily::systemSmall, ColorScheme::light);
    auto const card = rowsOf<CardRow>(layout, place(layout)).front();
    EXPECT_EQ(card.texts.size(), 2U);
    EXPECT_EQ(text(card, PlacedText::Role::time).column.right(), 153);
    EXPECT_EQ(text(card, PlacedText::Role::time).font.size, 8);
    EXPECT_EQ(text(card, PlacedText::Role::name).font.size, 10);
}

TEST(FaceGeometryTests, longNameEndsBeforeTheTime) {
    for (auto const& [family, name] : Foundation::rawValues<WidgetFamily>) {
        auto const layout = SampleFaces::busy(family, ColorScheme::light);
        for (auto const& card : rowsOf<CardRow>(layout, place(layout))) {
            auto const& cardName = text(card, PlacedText::Role::name);
            auto const& time = text(card, PlacedText::Role::time);
            EXPECT_LT(cardName.column.right(), time.column.x) << name << ": " << card.accessibleName;
            EXPECT_FALSE(cardName.wraps);
        }
    }
}

TEST(FaceGeometryTests, widerDurationsPushTheTimesTogether) {
    auto layout = busyLarge();
    std::get<CardRow>(layout.rows.at(7)).duration = "1234h 30m";
    for (auto const& card : rowsOf<CardRow>(layout, place(layout))) {
        EXPECT_EQ(text(card, PlacedText::Role::duration).column.width, 36);
        EXPECT_EQ(text(card, PlacedText::Role::time).column.right(), 301);
    }
}

TEST(FaceGeometryTests, cutNameIsMarkedSoThatATooltipCanTellIt) {
    auto const layout = busyLarge();
    auto const cards = rowsOf<CardRow>(layout, place(layout));
    EXPECT_FALSE(text(cards.at(0), PlacedText::Role::name).isCut);
    EXPECT_TRUE(text(cards.at(1), PlacedText::Role::name).isCut);
}

TEST(FaceGeometryTests, buttonsAreLargeEnoughAndInsideTheFace) {
    for (auto const& [family, name] : Foundation::rawValues<WidgetFamily>) {
        auto const geometry = place(SampleFaces::busy(family, ColorScheme::light));
        ASSERT_EQ(geometry.buttons.size(), 2U) << name;
        for (auto const& button : geometry.buttons) {
            EXPECT_GE(button.frame.width, 30) << name;
            EXPECT_GE(button.frame.height, 30) << name;
            EXPECT_GE(button.frame.x, 0) << name;
            EXPECT_LE(button.frame.right(), geometry.width) << name;
        }
        EXPECT_EQ(geometry.buttons[0].action, FaceButton::Action::previousDay);
        EXPECT_EQ(geometry.buttons[0].pointing, PlacedButton::Pointing::left);
        EXPECT_EQ(geometry.buttons[0].accessibleName, "Previous day");
        EXPECT_EQ(geometry.buttons[1].action, FaceButton::Action::nextDay);
        EXPECT_EQ(geometry.buttons[1].pointing, PlacedButton::Pointing::right);
        EXPECT_EQ(geometry.buttons[1].accessibleName, "Next day");
    }
}

TEST(FaceGeometryTests, pointIsTheButtonsBeforeItIsTheRows) {
    auto const geometry = place(busyLarge());
    EXPECT_EQ(hitTest(geometry, 8, 12), FaceHit(FaceButton::Action::previousDay));
    EXPECT_EQ(hitTest(geometry, 37.9, 41.9), FaceHit(FaceButton::Action::previousDay));
    EXPECT_EQ(hitTest(geometry, 340, 27), FaceHit(FaceButton::Action::nextDay));
    EXPECT_EQ(hitTest(geometry, 182, 27), FaceHit(std::size_t{0}));
    EXPECT_EQ(hitTest(geometry, 100, 130), FaceHit(std::size_t{5}));
    EXPECT_EQ(hitTest(geometry, 100, 143), FaceHit(std::monostate{})) << "between two cards";
    EXPECT_EQ(hitTest(geometry, 2, 130), FaceHit(std::monostate{})) << "in the margin";
    EXPECT_EQ(hitTest(geometry, -5, -5), FaceHit(std::monostate{})) << "outside";
}

TEST(FaceGeometryTests, weekdayAndBadgeStandTogetherInTheMiddle) {
    auto const header = place(busyLarge()).rows.front();
    ASSERT_TRUE(header.badge);
    auto const& weekday = text(header, PlacedText::Role::weekday);
    EXPECT_EQ(weekday.column.width, 9 * 14 / 2.0);
    EXPECT_EQ(weekday.column.x + header.badge->right(), 364);
    EXPECT_EQ(header.badge->width, 20);
    EXPECT_EQ(header.badge->middleY(), 27);
}

TEST(FaceGeometryTests, weekdayTooLongForTheButtonsIsSetSmaller) {
    auto layout = SampleFaces::busy(WidgetFamily::systemSmall, ColorScheme::light);
    std::get<HeaderRow>(layout.rows[0]).weekday = "Donnerstag-Nachmittag";
    auto const geometry = place(layout);
    auto const& weekday = text(geometry.rows.front(), PlacedText::Role::weekday);
    EXPECT_LT(weekday.font.size, 12);
    EXPECT_FALSE(weekday.isCut);
    EXPECT_GE(weekday.column.x, geometry.buttons[0].frame.right());
    EXPECT_LE(geometry.rows.front().badge->right(), geometry.buttons[1].frame.x);
}

TEST(FaceGeometryTests, longMessageIsBrokenIntoLinesAndNotCut) {
    auto layout = SampleFaces::empty(WidgetFamily::systemSmall, ColorScheme::light);
    std::get<LineRow>(layout.rows[1]).text = "Quillora may not read your calendars on this computer";
    auto const line = place(layout).rows.at(1);
    EXPECT_TRUE(line.texts.front().wraps);
    EXPECT_EQ(line.frame.height, 28 + 2 * 10) << "two lines of 13.75, in whole points";
}

TEST(FaceGeometryTests, rightToLeftFaceIsTheMirrorImage) {
    auto layout = busyLarge();
    auto const plain = place(layout);
    layout.isRightToLeft = true;
    auto const mirrored = place(layout);

    auto image = [](FaceRect rect) {
        rect.x = 364 - rect.right();
        return rect;
    };
    ASSERT_EQ(mirrored.rows.size(), plain.rows.size());
    for (std::size_t index = 0; index < plain.rows.size(); ++index) {
        auto const& before = plain.rows[index];
        auto const& after = mirrored.rows[index];
        EXPECT_EQ(after.frame, image(before.frame));
        for (std::size_t each = 0; each < before.texts.size(); ++each) {
            EXPECT_EQ(after.texts[each].column, image(before.texts[each].column));
            EXPECT_EQ(after.texts[each].baseline, before.texts[each].baseline);
        }
        if (before.surface) {
            EXPECT_EQ(after.surface->bar, image(before.surface->bar));
        }
    }
    auto const card = rowsOf<CardRow>(layout, mirrored).front();
    EXPECT_EQ(text(card, PlacedText::Role::name).alignment, PlacedText::Alignment::right);
    EXPECT_EQ(text(card, PlacedText::Role::time).alignment, PlacedText::Alignment::left);
    EXPECT_EQ(mirrored.buttons[0].action, FaceButton::Action::previousDay);
    EXPECT_EQ(mirrored.buttons[0].frame.middleX(), 364 - 23);
    EXPECT_EQ(mirrored.buttons[0].pointing, PlacedButton::Pointing::right);
}

TEST(FaceGeometryTests, everyRowSaysWhatItShows) {
    auto const geometry = place(busyLarge());
    std::vector<std::string> names;
    for (auto const& row : geometry.rows)
        names.push_back(row.accessibleName);
    EXPECT_EQ(names.at(0), "Wednesday 18");
    EXPECT_EQ(names.at(1), "All day");
    EXPECT_EQ(names.at(2), "Release week, All day");
    EXPECT_EQ(names.at(4), "");
    EXPECT_EQ(names.at(5), "Stand-up, 09:00 a.m., 15m");
    EXPECT_EQ(names.at(6), "Design review of the quarterly roadmap and its milestones, 09:30 a.m., 1h");
    EXPECT_EQ(names.at(13), "+3 more");
}

TEST(FaceGeometryTests, controlCharactersAreNotDrawn) {
    auto layout = SampleFaces::blank(WidgetFamily::systemLarge, ColorScheme::light);
    layout.rows.emplace_back(SampleFaces::card(layout,
                                               "a\x01"
                                               "b\u202E"
                                               "c\nd",
                                               "09:00 a.m.", "1h", AccentColor{}));
    auto const card = place(layout).rows.at(1);
    EXPECT_EQ(text(card, PlacedText::Role::name).text, "a\uFFFDb\uFFFDc d");
    EXPECT_EQ(card.accessibleName, "a\uFFFDb\uFFFDc d, 09:00 a.m., 1h");
}

TEST(FaceGeometryTests, directionMarksStayInNamesFromRightToLeft) {
    auto layout = SampleFaces::blank(WidgetFamily::systemLarge, ColorScheme::light);
    for (auto const* name : {"\u200Fפגישה: C++\u200E", "Be\u00ADspre\u00ADchung\u200F 4"})
        layout.rows.emplace_back(SampleFaces::card(layout, name, "09:00 a.m.", "1h", AccentColor{}));
    auto const placed = place(layout);
    EXPECT_EQ(text(placed.rows.at(1), PlacedText::Role::name).text, "\u200Fפגישה: C++\u200E");
    EXPECT_EQ(placed.rows.at(1).accessibleName, "\u200Fפגישה: C++\u200E, 09:00 a.m., 1h");
    EXPECT_EQ(text(placed.rows.at(2), PlacedText::Role::name).text, "Besprechung 4");
}

TEST(FaceGeometryTests, layoutWithoutRowsIsAnEmptyFace) {
    auto layout = busyLarge();
    layout.rows.clear();
    auto const geometry = place(layout);
    EXPECT_EQ(geometry.height, 382);
    EXPECT_TRUE(geometry.rows.empty());
    EXPECT_TRUE(geometry.buttons.empty());
}

} // namespace
