#include "Platform/Face/ColorMath.h"
#include "Platform/Face/FacePalette.h"
#include "Tests/Face/SampleFaces.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using namespace Platform;
using ColorMath::contrastRatio;
using ColorMath::hexText;
using SampleFaces::rgb;

FacePalette palette(ColorScheme scheme, std::optional<SRGBColor> accent = std::nullopt) {
    return FacePalette(SampleFaces::blank(WidgetFamily::systemLarge, scheme), accent);
}

constexpr std::array schemes{ColorScheme::light, ColorScheme::dark};

/// Calls `check` with 1,331 colours spread over the whole cube.
template <typename Check>
void forEachColor(Check check) {
    for (int red = 0; red <= 10; ++red) {
        for (int green = 0; green <= 10; ++green) {
            for (int blue = 0; blue <= 10; ++blue) {
                check(SRGBColor{.red = red / 10.0, .green = green / 10.0, .blue = blue / 10.0});
            }
        }
    }
}

TEST(FacePaletteTests, surfacesOfUsualColors) {
    struct Row {
        char const* name;
        unsigned color;
        char const* lightCard;
        char const* darkCard;
        char const* lightRow;
        char const* darkRow;
    };
    for (auto const& row : {
             Row{"red", 0xD1495B, "#F9E6E8", "#321216", "#F6DBDE", "#3F161B"},
             Row{"blue", 0x2E86AB, "#E2EEF3", "#0B2029", "#D5E7EE", "#0E2833"},
             Row{"violet", 0x8E6CB8, "#EFEAF5", "#221A2C", "#E8E2F1", "#2B2037"},
             Row{"orange", 0xE4572E, "#FBE7E2", "#37150B", "#FADDD5", "#441A0E"},
         }) {
        auto const light = palette(ColorScheme::light);
        auto const dark = palette(ColorScheme::dark);
        EXPECT_EQ(hexText(light.card(rgb(row.color)).fill), row.lightCard) << row.name;
        EXPECT_EQ(hexText(dark.card(rgb(row.color)).fill), row.darkCard) << row.name;
        EXPECT_EQ(hexText(light.allDayRow(rgb(row.color)).fill), row.lightRow) << row.name;
        EXPECT_EQ(hexText(dark.allDayRow(rgb(row.color)).fill), row.darkRow) << row.name;
    }
}

TEST(FacePaletteTests, cardIsReadableInAnyColor) {
    for (auto const scheme : schemes) {
        auto const colors = palette(scheme);
        forEachColor([&](SRGBColor const& color) {
            auto const card = colors.card(color);
            EXPECT_GE(contrastRatio(card.text, card.fill), 14.0) << hexText(color);
            EXPECT_GE(contrastRatio(card.duration, card.fill), 5.8) << hexText(color);
        });
    }
}

TEST(FacePaletteTests, allDayRowIsReadableInAnyColor) {
    for (auto const scheme : schemes) {
        auto const colors = palette(scheme);
        forEachColor([&](SRGBColor const& color) {
            auto const row = colors.allDayRow(color);
            EXPECT_GE(contrastRatio(row.text, row.fill), 7.0) << hexText(color);
        });
    }
}

TEST(FacePaletteTests, barIsSeenInAnyColor) {
    for (auto const scheme : schemes) {
        auto const colors = palette(scheme);
        forEachColor([&](SRGBColor const& color) {
            for (auto const& row : {colors.card(color), colors.allDayRow(color)}) {
                bool const isSeen = contrastRatio(row.bar, row.fill) >= 1.5;
                EXPECT_EQ(row.barEdge.has_value(), !isSeen) << hexText(color);
                if (row.barEdge) {
                    EXPECT_GE(contrastRatio(*row.barEdge, row.fill), 3.0) << hexText(color);
                }
            }
        });
    }
    EXPECT_TRUE(palette(ColorScheme::light).card(rgb(0xFFFFFF)).barEdge);
    EXPECT_TRUE(palette(ColorScheme::dark).card(rgb(0x000000)).barEdge);
    for (auto const scheme : schemes) {
        for (auto const color : {0xD1495BU, 0x2E86ABU, 0x8E6CB8U, 0xE4572EU}) {
            EXPECT_FALSE(palette(scheme).card(rgb(color)).barEdge) << hexText(rgb(color));
        }
    }
}

TEST(FacePaletteTests, textStaysBlackOrWhiteAndTheBarTheCalendarsColor) {
    for (auto const scheme : schemes) {
        auto const colors = palette(scheme);
        auto const text = rgb(scheme == ColorScheme::dark ? 0xFFFFFF : 0x000000);
        forEachColor([&](SRGBColor const& color) {
            EXPECT_EQ(colors.card(color).text, text);
            EXPECT_EQ(colors.card(color).bar, color);
            EXPECT_EQ(colors.allDayRow(color).text, text);
            EXPECT_EQ(colors.allDayRow(color).bar, color);
        });
    }
}

TEST(FacePaletteTests, surfaceGivesWayOnlyWhereItMust) {
    // Bright yellow at 24 % over black would leave white text at 12.6:1.
    auto const dark = palette(ColorScheme::dark);
    EXPECT_NE(dark.card(rgb(0xFFD60A)).fill, ColorMath::mix(rgb(0x000000), rgb(0xFFD60A), 0.24));
    EXPECT_EQ(dark.card(rgb(0xD1495B)).fill, ColorMath::mix(rgb(0x000000), rgb(0xD1495B), 0.24));
}

TEST(FacePaletteTests, secondaryTextIsTheTextTowardsTheBackground) {
    EXPECT_EQ(hexText(palette(ColorScheme::light).secondary), "#6B6B6B");
    EXPECT_EQ(hexText(palette(ColorScheme::dark).secondary), "#949494");
}

TEST(FacePaletteTests, chevronIsTheBrandAQuarterTowardsTheText) {
    EXPECT_EQ(hexText(palette(ColorScheme::light).chevron), "#459295");
    EXPECT_EQ(hexText(palette(ColorScheme::dark).chevron), "#8F93B4");
}

TEST(FacePaletteTests, chevronAndBadgeAreSeenInAnyBrand) {
    for (auto const scheme : schemes) {
        auto layout = SampleFaces::blank(WidgetFamily::systemLarge, scheme);
        forEachColor([&](SRGBColor const& brand) {
            layout.brand = brand;
            FacePalette const colors(layout, std::nullopt);
            EXPECT_GE(contrastRatio(colors.chevron, colors.background), 3.0) << hexText(brand);
            EXPECT_GE(contrastRatio(colors.badgeText, colors.badge), 4.5) << hexText(brand);
        });
    }
}

TEST(FacePaletteTests, buttonAnswersVisibly) {
    for (auto const scheme : schemes) {
        auto const colors = palette(scheme);
        EXPECT_NE(colors.buttonHover, colors.background);
        EXPECT_NE(colors.buttonPress, colors.buttonHover);
        EXPECT_GE(contrastRatio(colors.activeChevron, colors.buttonHover), 3.0);
        EXPECT_GE(contrastRatio(colors.activeChevron, colors.buttonPress), 3.0);
    }
}

TEST(FacePaletteTests, accentIsTheDesktopsElseTheLayouts) {
    EXPECT_EQ(palette(ColorScheme::light, rgb(0xE66100)).card(AccentColor{}).bar, rgb(0xE66100));
    EXPECT_EQ(palette(ColorScheme::light).card(AccentColor{}).bar, rgb(0x5CC2C6));
    EXPECT_EQ(palette(ColorScheme::dark).allDayRow(AccentColor{}).bar, rgb(0x696F9B));
    auto layout = SampleFaces::blank(WidgetFamily::systemLarge, ColorScheme::light);
    layout.accent = rgb(0xD1495B);
    EXPECT_EQ(FacePalette(layout, std::nullopt).card(AccentColor{}).bar, rgb(0xD1495B));
    EXPECT_EQ(FacePalette(layout, std::nullopt).badge, layout.brand);
    EXPECT_EQ(FacePalette(layout, rgb(0xE66100)).card(AccentColor{}).bar, rgb(0xE66100));
}

} // namespace
