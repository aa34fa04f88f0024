#include "WidgetExtension/HexColor.h"

#include <gtest/gtest.h>

namespace WidgetExtension {
namespace {

using Platform::AccentColor;
using Platform::FaceColor;
using Platform::SRGBColor;

FaceColor const turquoise = SRGBColor{.red = 92 / 255.0, .green = 194 / 255.0, .blue = 198 / 255.0};
FaceColor const accent = AccentColor{};

TEST(HexColorTests, sixDigitsAreAColourHoweverTheyAreDressed) {
    EXPECT_EQ(colorFromHex("5CC2C6"), turquoise);
    EXPECT_EQ(colorFromHex("#5CC2C6"), turquoise);
    EXPECT_EQ(colorFromHex("  5cc2c6\n"), turquoise);
    EXPECT_EQ(colorFromHex("\u00A05cC2c6\u2003"), turquoise);
    EXPECT_EQ(colorFromHex("##5C#C2C6#"), turquoise);
}

TEST(HexColorTests, theEndsOfTheScaleAreExact) {
    EXPECT_EQ(colorFromHex("#000000"), (FaceColor{SRGBColor{.red = 0, .green = 0, .blue = 0}}));
    EXPECT_EQ(colorFromHex("#FFFFFF"), (FaceColor{SRGBColor{.red = 1, .green = 1, .blue = 1}}));
    EXPECT_EQ(colorFromHex("#0000FF"), (FaceColor{SRGBColor{.red = 0, .green = 0, .blue = 1}}));
}

TEST(HexColorTests, anotherNumberOfDigitsIsTheAccentColour) {
    EXPECT_EQ(colorFromHex(""), accent);
    EXPECT_EQ(colorFromHex("#5CC"), accent);
    EXPECT_EQ(colorFromHex("#5CC2C6FF"), accent);
    EXPECT_EQ(colorFromHex("#17E0000"), accent);
}

TEST(HexColorTests, whatIsNoNumberIsTheAccentColour) {
    EXPECT_EQ(colorFromHex("5CC2CG"), accent);
    EXPECT_EQ(colorFromHex("G5CC2C"), accent);
    EXPECT_EQ(colorFromHex("0x5CC2"), accent);
    EXPECT_EQ(colorFromHex("5C C2C"), accent);
    EXPECT_EQ(colorFromHex("ñññ"), accent);
}

TEST(HexColorTests, aSignIsNoDigit) {
    EXPECT_EQ(colorFromHex("+5CC2C"), accent);
    EXPECT_EQ(colorFromHex("-00000"), accent);
}

} // namespace
} // namespace WidgetExtension
