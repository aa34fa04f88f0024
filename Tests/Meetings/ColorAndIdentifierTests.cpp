#include "Meetings/CGColorHexUtil.h"
#include "Meetings/StableIdentifier.h"
#include "Platform/Appearance/FixedAppearance.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace Meetings {
namespace {

using Platform::ColorScheme;
using Platform::FixedAppearance;

std::string hexOf(std::vector<double> components, FixedAppearance const& desktop = FixedAppearance()) {
    return CGColorHexUtil::hexString({.components = std::move(components)}, desktop);
}

TEST(CGColorHexUtilTests, eachChannelIsTwoUpperCaseDigits) {
    EXPECT_EQ(hexOf({0.2, 0.4, 0.6, 1.0}), "#336699");
    EXPECT_EQ(hexOf({0, 0, 0}), "#000000");
    EXPECT_EQ(hexOf({1, 1, 1, 0}), "#FFFFFF");
    EXPECT_EQ(hexOf({10.0 / 255, 11.0 / 255, 171.0 / 255}), "#0A0BAB");
}

TEST(CGColorHexUtilTests, channelsAreCutNotRounded) {
    EXPECT_EQ(hexOf({1.0, 0.0, 0.5}), "#FF007F");
    EXPECT_EQ(hexOf({0.999, 0.999, 0.999}), "#FEFEFE");
}

TEST(CGColorHexUtilTests, channelsAreNotClamped) {
    EXPECT_EQ(hexOf({1.5, 0, 0}), "#17E0000");
    EXPECT_EQ(hexOf({0, 2.0, 0}), "#001FE00");
    EXPECT_EQ(hexOf({0, 0, -0.5}), "#0000FFFFFF81");
}

TEST(CGColorHexUtilTests, aColourWithoutThreeComponentsIsTheDesktopsDefault) {
    FixedAppearance const dark(ColorScheme::dark);
    EXPECT_EQ(hexOf({0.5, 1.0}), "#5CC2C6");
    EXPECT_EQ(hexOf({0.5, 1.0}, dark), "#4FA8AC");
    EXPECT_EQ(hexOf({}, dark), "#4FA8AC");
    EXPECT_EQ(CGColorHexUtil::hexString({.components = std::nullopt}, dark), "#4FA8AC");
}

TEST(CGColorHexUtilDeathTest, aComponentThatIsNotFiniteEndsTheProcess) {
    EXPECT_DEATH(hexOf({std::numeric_limits<double>::quiet_NaN(), 0, 0}),
                 "a floating-point value cannot be converted to a 64-bit integer");
    EXPECT_DEATH(hexOf({0, std::numeric_limits<double>::infinity(), 0}),
                 "a floating-point value cannot be converted to a 64-bit integer");
}

TEST(StableIdentifierTests, theDigestIsTakenUnchanged) {
    EXPECT_EQ(StableIdentifier::uuid("").uuidString(), "D41D8CD9-8F00-B204-E980-0998ECF8427E");
    EXPECT_EQ(StableIdentifier::uuid("ABC123:XYZ|1700000000.0").uuidString(),
              "85583367-F295-B450-C81A-265B6269B44F");
}

TEST(StableIdentifierTests, theFractionOfAnInstantMatters) {
    EXPECT_EQ(StableIdentifier::uuid("ABC123:XYZ|1700000000").uuidString(),
              "5DF3A2EA-9B41-FFB5-0F96-26BF409B1B37");
}

TEST(StableIdentifierTests, theTextIsNotNormalised) {
    EXPECT_NE(StableIdentifier::uuid("\u00F1"), StableIdentifier::uuid("n\u0303"));
}

TEST(StableIdentifierTests, theSameTextGivesTheSameIdentifier) {
    EXPECT_EQ(StableIdentifier::uuid("a"), StableIdentifier::uuid("a"));
    EXPECT_NE(StableIdentifier::uuid("a"), StableIdentifier::uuid("b"));
}

} // namespace
} // namespace Meetings
