#include "Platform/Face/ColorMath.h"
#include "Platform/Face/FacePainter.h"
#include "Tests/Face/Canvas.h"
#include "Tests/Face/SampleFaces.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>

namespace {

using namespace Platform;
using SampleFaces::rgb;

constexpr auto large = WidgetFamily::systemLarge;

FacePainter painter() {
    return FacePainter(FaceStyle{.fontFamily = "Inter", .language = "en", .accent = std::nullopt});
}

Canvas painted(FaceLayout const& layout, FaceInteraction const& interaction = {}, double scale = 1) {
    auto const brush = painter();
    auto const geometry = brush.place(layout);
    Canvas canvas(geometry.width, geometry.height, scale);
    brush.paint(canvas.context(), layout, geometry, interaction);
    return canvas;
}

TEST(FacePainterTests, surfacesBarsAndBadgeHaveTheirColors) {
    struct Row {
        char const* name;
        double x;
        double y;
        char const* light;
        char const* dark;
    };
    auto const light = painted(SampleFaces::busy(large, ColorScheme::light));
    auto const dark = painted(SampleFaces::busy(large, ColorScheme::dark));
    for (auto const& [name, x, y, inLight, inDark] : {
             Row{"background", 182, 110, "#FFFFFF", "#000000"},
             Row{"all-day fill", 300, 72, "#E9E2F1", "#2A2037"},
             Row{"all-day bar", 18.5, 72, "#8E6CB8", "#8E6CB8"},
             Row{"card fill", 240, 119, "#F9E6E8", "#321115"},
             Row{"card bar", 18.2, 129, "#D1495B", "#D1495B"},
             Row{"second card's fill", 20, 148, "#E2EEF4", "#0B2029"},
             Row{"second card's bar", 18.2, 158, "#2E86AB", "#2E86AB"},
             Row{"between two cards", 182, 143, "#FFFFFF", "#000000"},
             Row{"below the last row", 182, 378, "#FFFFFF", "#000000"},
         }) {
        EXPECT_EQ(light.colorAt(x, y), inLight) << name;
        EXPECT_EQ(dark.colorAt(x, y), inDark) << name;
    }
}

TEST(FacePainterTests, badgeIsFilledWithTheBrand) {
    for (auto const scheme : {ColorScheme::light, ColorScheme::dark}) {
        auto const layout = SampleFaces::busy(large, scheme);
        auto const badge = painter().place(layout).rows.front().badge.value();
        auto const canvas = painted(layout);
        auto const brand = ColorMath::hexText(layout.brand);
        EXPECT_EQ(canvas.colorAt(badge.middleX(), badge.y + 2), brand);
        EXPECT_EQ(canvas.colorAt(badge.middleX(), badge.bottom() - 3), brand);
        EXPECT_NE(canvas.colorAt(badge.x + 1, badge.y + 1), brand) << "it is round";
    }
}

TEST(FacePainterTests, cornersAreRoundAndClear) {
    auto const canvas = painted(SampleFaces::busy(large, ColorScheme::light));
    EXPECT_EQ(canvas.opacityAt(0, 0), 0.0);
    EXPECT_EQ(canvas.opacityAt(363, 0), 0.0);
    EXPECT_EQ(canvas.opacityAt(0, 381), 0.0);
    EXPECT_EQ(canvas.opacityAt(4, 4), 0.0);
    EXPECT_EQ(canvas.opacityAt(7, 7), 1.0);
    EXPECT_EQ(canvas.opacityAt(0, 100), 1.0);
}

TEST(FacePainterTests, everyFamilyAndSchemeShowsItsTexts) {
    for (auto const scheme : {ColorScheme::light, ColorScheme::dark}) {
        for (auto const& [family, name] : Foundation::rawValues<WidgetFamily>) {
            auto const layout = SampleFaces::busy(family, scheme);
            auto const geometry = painter().place(layout);
            auto const canvas = painted(layout, {}, 2);
            for (auto const& row : geometry.rows) {
                for (auto const& text : row.texts) {
                    EXPECT_GT(canvas.colorsIn(text.column), 2U) << name << ": " << text.text;
                }
            }
        }
    }
}

TEST(FacePainterTests, emojiKeepsItsColors) {
    auto layout = SampleFaces::blank(large, ColorScheme::light);
    layout.rows.emplace_back(SampleFaces::card(layout, "🎂", "09:00 a.m.", "1h", rgb(0x808080)));
    auto const canvas = painted(layout, {}, 2);
    auto const name = painter().place(layout).rows.at(1).texts.front().column;
    EXPECT_TRUE(
        canvas.hasColorfulPixelIn(FaceRect{.x = name.x, .y = name.y, .width = 16, .height = name.height}));
}

TEST(FacePainterTests, accentIsResolvedWhenTheFaceIsDrawn) {
    auto layout = SampleFaces::blank(large, ColorScheme::light);
    layout.rows.emplace_back(SampleFaces::card(layout, "Stand-up", "09:00 a.m.", "1h", AccentColor{}));
    auto brush = painter();
    auto const geometry = brush.place(layout);
    auto const bar = geometry.rows.at(1).surface.value().bar;
    auto barColor = [&] {
        Canvas canvas(geometry.width, geometry.height, 2);
        brush.paint(canvas.context(), layout, geometry);
        return canvas.colorAt(bar.middleX(), bar.middleY());
    };
    EXPECT_EQ(barColor(), "#5CC2C6") << "the brand's";
    brush.setAccent(rgb(0xE66100));
    EXPECT_EQ(barColor(), "#E66100");
}

TEST(FacePainterTests, buttonAnswersHoverPressAndFocus) {
    auto const layout = SampleFaces::busy(large, ColorScheme::light);
    auto const frame = painter().place(layout).buttons.front().frame;
    auto inside = [&](FaceInteraction const& interaction) {
        return painted(layout, interaction).colorAt(frame.x + 4, frame.middleY());
    };
    auto edge = [&](FaceInteraction const& interaction) {
        return painted(layout, interaction, 4).colorAt(frame.x + 0.75, frame.middleY());
    };
    auto const plain = inside({});
    auto const hovered = inside({.previous = {.isHovered = true}, .next = {}});
    auto const pressed = inside({.previous = {.isHovered = true, .isPressed = true}, .next = {}});
    EXPECT_EQ(plain, "#FFFFFF");
    EXPECT_NE(hovered, plain);
    EXPECT_NE(pressed, hovered);
    EXPECT_EQ(edge({}), "#FFFFFF");
    EXPECT_EQ(edge({.previous = {.isFocused = true}, .next = {}}), "#459295");
    EXPECT_EQ(edge({.previous = {}, .next = {.isFocused = true}}), "#FFFFFF");
}

TEST(FacePainterTests, rowOfAMeetAnswersHoverPressAndFocusAroundItself) {
    auto const layout = SampleFaces::busy(large, ColorScheme::light);
    auto const geometry = painter().place(layout);
    auto const card = std::ranges::find_if(geometry.rows, [](auto const& row) {
        return row.surface && row.surface->kind == PlacedSurface::Kind::card;
    });
    auto colors = [&](std::size_t row, FaceButtonState const& state) {
        FaceInteraction interaction;
        interaction.rows.resize(row + 1);
        interaction.rows[row] = state;
        auto const canvas = painted(layout, interaction, 4);
        return std::pair(canvas.colorAt(card->frame.middleX(), card->frame.y - 0.5),
                         canvas.colorAt(card->frame.right() - 3, card->frame.y + 3));
    };
    auto const [background, fill] = colors(card->index, {});
    EXPECT_EQ(background, "#FFFFFF");
    EXPECT_EQ(colors(card->index, {.isFocused = true}), std::pair(std::string("#459295"), fill));
    EXPECT_EQ(colors(card->index, {.isHovered = true, .isPressed = true}),
              std::pair(std::string("#459295"), fill));
    auto const [hovered, hoveredFill] = colors(card->index, {.isHovered = true});
    EXPECT_NE(hovered, background);
    EXPECT_NE(hovered, "#459295");
    EXPECT_EQ(hoveredFill, fill);
    EXPECT_EQ(colors(card->index + 1, {.isFocused = true}).first, background);
    EXPECT_EQ(colors(0, {.isFocused = true}).first, background);
}

TEST(FacePainterTests, noticeIsMarkedInTheLowerMarginAlone) {
    for (auto const family : {WidgetFamily::systemSmall, large}) {
        for (auto const isRightToLeft : {false, true}) {
            auto layout = SampleFaces::busy(family, ColorScheme::light);
            layout.isRightToLeft = isRightToLeft;
            auto const geometry = painter().place(layout);
            auto const rest = painted(layout);
            auto const marked = painted(layout, {.previous = {}, .next = {}, .hasNotice = true});
            double const margin = family == large ? 14 : 10;
            bool isThere = false;
            for (double y = 0.5; y < geometry.height; ++y) {
                for (double x = 0.5; x < geometry.width; ++x) {
                    if (rest.colorAt(x, y) == marked.colorAt(x, y)) continue;
                    isThere = true;
                    ASSERT_GT(y, geometry.height - margin);
                    ASSERT_EQ(x < geometry.width / 2, isRightToLeft);
                }
            }
            EXPECT_TRUE(isThere);
        }
    }
}

TEST(FacePainterTests, titlesOfEveryScriptKeepToTheirColumn) {
    struct Row {
        char const* name;
        char const* title;
    };
    for (auto const& [name, title] : {
             Row{"Latin",
                 "Design review of the quarterly roadmap, its milestones and whatever follows from it"},
             Row{"no blanks",
                 "Donaudampfschifffahrtselektrizitaetenhauptbetriebswerkbauunterbeamtengesellschaft"},
             Row{"Arabic",
                 "اجتماع مع فريق التطوير لمناقشة خطة الربع القادم ومراجعة الأهداف وتحديد الأولويات"},
             Row{"Hebrew",
                 "פגישה עם צוות הפיתוח לדיון בתוכנית הרבעון הבא ובסקירת היעדים ובקביעת סדרי עדיפויות"},
             Row{"Japanese",
                 "昼食会議 新しい企画について話し合いましょう皆さんのご参加をお待ちしておりますよろしく"},
             Row{"emoji", "🎂🎉🎂🎉🎂🎉🎂🎉🎂🎉🎂🎉🎂🎉🎂🎉🎂🎉🎂🎉🎂🎉🎂🎉🎂🎉🎂🎉🎂🎉🎂🎉🎂🎉"},
             Row{"both directions",
                 "Call אבגדה about the العربية contract and everything else that is still open there"},
         }) {
        for (bool const isRightToLeft : {false, true}) {
            auto layout = SampleFaces::blank(large, ColorScheme::light);
            layout.isRightToLeft = isRightToLeft;
            layout.rows.emplace_back(SampleFaces::card(layout, title, "09:00 a.m.", "1h", rgb(0xFFFFFF)));
            auto const geometry = painter().place(layout);
            auto const& texts = geometry.rows.at(1).texts;
            ASSERT_TRUE(texts.at(0).isCut) << name;

            // The card is white, its columns part the texts: between name and time nothing is drawn.
            auto const& column = texts.at(0).column;
            auto const& time = texts.at(1).column;
            double const left = isRightToLeft ? time.right() : column.right();
            FaceRect const gap{.x = left + 1, .y = column.y + 4, .width = 4, .height = column.height - 8};
            auto const canvas = painted(layout, {}, 2);
            EXPECT_EQ(canvas.colorsIn(gap), 1U) << name;
            EXPECT_GT(canvas.colorsIn(column), 2U) << name;
        }
    }
}

TEST(FacePainterTests, barInTheColorOfItsFillHasAnEdge) {
    for (auto const scheme : {ColorScheme::light, ColorScheme::dark}) {
        auto layout = SampleFaces::blank(large, scheme);
        auto const same = layout.background;
        layout.rows.emplace_back(BarRow{.identifier = "a", .name = "Fair", .color = same});
        layout.rows.emplace_back(SampleFaces::card(layout, "Tea", "09:00 a.m.", "1h", same));
        auto const canvas = painted(layout);
        for (auto const index : {1U, 2U}) {
            auto const bar = painter().place(layout).rows.at(index).surface.value().bar;
            FaceRect const around{.x = bar.x - 1, .y = bar.middleY(), .width = bar.width + 2, .height = 1};
            EXPECT_GT(canvas.colorsIn(around), 1U) << index;
        }
    }
}

TEST(FacePainterTests, pilesOfMarksStayInTheirRow) {
    // Thai tone marks are stacked by every font that has them; of the Latin ones it takes many.
    std::string pile = "\u0E01";
    for (int count = 0; count < 40; ++count)
        pile += "\u0E48";
    pile += "Z";
    for (int count = 0; count < 40; ++count)
        pile += "\u0300\u0316\u033F\u0332\u0352";
    for (auto const scheme : {ColorScheme::light, ColorScheme::dark}) {
        auto layout = SampleFaces::blank(large, scheme);
        layout.rows.emplace_back(BarRow{.identifier = "a", .name = "Fair", .color = rgb(0x2E86AB)});
        layout.rows.emplace_back(SampleFaces::card(layout, "Before", "09:00 a.m.", "1h", rgb(0xD1495B)));
        layout.rows.emplace_back(SampleFaces::card(layout, "Z", "09:00 a.m.", "1h", rgb(0xD1495B)));
        layout.rows.emplace_back(SampleFaces::card(layout, "After", "09:00 a.m.", "1h", rgb(0xD1495B)));
        auto piled = layout;
        std::get<CardRow>(piled.rows.at(3)).name = pile;
        auto const usual = painted(layout, {}, 2);
        auto const geometry = painter().place(piled);
        auto const canvas = painted(piled, {}, 2);
        EXPECT_GT(canvas.colorsIn(geometry.rows.at(3).texts.front().column), 2U);
        for (auto const index : {1U, 2U, 4U}) {
            auto const& row = geometry.rows.at(index).frame;
            for (double y = row.y + 0.25; y < row.bottom(); y += 0.5)
                for (double x = row.x + 0.25; x < row.right(); x += 0.5)
                    ASSERT_EQ(canvas.colorAt(x, y), usual.colorAt(x, y)) << index << ": " << x << ", " << y;
        }
    }
}

TEST(FacePainterTests, rightToLeftTitleStaysAtItsPlace) {
    auto layout = SampleFaces::blank(large, ColorScheme::light);
    layout.rows.emplace_back(SampleFaces::card(layout, "פגישה", "09:00 a.m.", "1h", rgb(0xFFFFFF)));
    auto const canvas = painted(layout, {}, 2);
    auto const column = painter().place(layout).rows.at(1).texts.front().column;
    FaceRect const start{.x = column.x, .y = column.y, .width = 12, .height = column.height};
    FaceRect const end{.x = column.right() - 60, .y = column.y + 4, .width = 60, .height = column.height - 8};
    EXPECT_GT(canvas.colorsIn(start), 2U);
    EXPECT_EQ(canvas.colorsIn(end), 1U);
}

TEST(FacePainterTests, missingFontStillShowsTexts) {
    FacePainter const brush(
        FaceStyle{.fontFamily = "No Such Font 4711", .language = "", .accent = std::nullopt});
    auto const layout = SampleFaces::busy(large, ColorScheme::light);
    auto const geometry = brush.place(layout);
    Canvas canvas(geometry.width, geometry.height, 1);
    brush.paint(canvas.context(), layout, geometry);
    EXPECT_GT(canvas.colorsIn(geometry.rows.at(5).texts.front().column), 2U);
}

TEST(FacePainterTests, paintingTwiceGivesTheSamePicture) {
    auto const brush = painter();
    auto const layout = SampleFaces::busy(large, ColorScheme::dark);
    auto const geometry = brush.place(layout);
    EXPECT_EQ(geometry, brush.place(layout));
    Canvas first(geometry.width, geometry.height, 1);
    Canvas second(geometry.width, geometry.height, 1);
    brush.paint(first.context(), layout, geometry);
    brush.paint(second.context(), layout, geometry);
    EXPECT_EQ(first.pixels(), second.pixels());
}

} // namespace
