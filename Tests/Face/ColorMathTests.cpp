#include "Platform/Face/ColorMath.h"
#include "Tests/Face/SampleFaces.h"

#include <gtest/gtest.h>

namespace {

using namespace Platform;
using SampleFaces::rgb;

TEST(ColorMathTests, relativeLuminanceOfKnownColors) {
    struct Row {
        char const* name;
        unsigned color;
        double luminance;
    };
    for (auto const& [name, color, luminance] : {
             Row{"black", 0x000000, 0.0},
             Row{"white", 0xFFFFFF, 1.0},
             Row{"red", 0xFF0000, 0.2126},
             Row{"green", 0x00FF00, 0.7152},
             Row{"blue", 0x0000FF, 0.0722},
             Row{"middle grey", 0x808080, 0.21586},
             Row{"nearly black, where the curve is straight", 0x0A0A0A, 0.003035},
         }) {
        EXPECT_NEAR(ColorMath::relativeLuminance(rgb(color)), luminance, 0.00001) << name;
    }
}

TEST(ColorMathTests, contrastOfKnownPairs) {
    EXPECT_NEAR(ColorMath::contrastRatio(rgb(0x000000), rgb(0xFFFFFF)), 21.0, 0.001);
    EXPECT_NEAR(ColorMath::contrastRatio(rgb(0xFFFFFF), rgb(0x000000)), 21.0, 0.001);
    EXPECT_NEAR(ColorMath::contrastRatio(rgb(0x767676), rgb(0xFFFFFF)), 4.54, 0.005);
    EXPECT_NEAR(ColorMath::contrastRatio(rgb(0x336699), rgb(0x336699)), 1.0, 0.001);
}

TEST(ColorMathTests, mixTakesItsShareOfEachChannel) {
    EXPECT_EQ(ColorMath::mix(rgb(0xFFFFFF), rgb(0xD1495B), 0.0), rgb(0xFFFFFF));
    EXPECT_EQ(ColorMath::mix(rgb(0xFFFFFF), rgb(0xD1495B), 1.0), rgb(0xD1495B));
    EXPECT_EQ(ColorMath::hexText(ColorMath::mix(rgb(0xFFFFFF), rgb(0xD1495B), 0.14)), "#F9E6E8");
}

TEST(ColorMathTests, theClearerOfBlackAndWhite) {
    EXPECT_EQ(ColorMath::blackOrWhite(rgb(0x5CC2C6)), rgb(0x000000));
    EXPECT_EQ(ColorMath::blackOrWhite(rgb(0x696F9B)), rgb(0xFFFFFF));
    EXPECT_EQ(ColorMath::blackOrWhite(rgb(0xFFFFFF)), rgb(0x000000));
    EXPECT_EQ(ColorMath::blackOrWhite(rgb(0x000000)), rgb(0xFFFFFF));
}

TEST(ColorMathTests, hexTextRoundsAndClamps) {
    EXPECT_EQ(ColorMath::hexText(rgb(0x5CC2C6)), "#5CC2C6");
    EXPECT_EQ(ColorMath::hexText({.red = -0.5, .green = 0.5, .blue = 1.5}), "#0080FF");
}

} // namespace
