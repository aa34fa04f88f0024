#include "Platform/Resources/ColorsFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

using namespace Platform;
using enum ColorScheme;
using testing::ElementsAre;
using testing::IsEmpty;
using Color = ColorsFile::Color;

ColorsFile file(std::string_view light) {
    return ColorsFile::parse(R"({"C": {"light": )" + std::string(light) + R"(, "dark": "#000000"}})");
}

TEST(ColorsFileTests, aColourIsFoundByItsNameAndScheme) {
    auto const colors = ColorsFile::parse(
        R"({"A": {"light": "#5CC2C6", "dark": "#696f9b"}, "B": {"light": "#000000", "dark": "#FFFFFF"}})");
    EXPECT_EQ(colors.find("A", light), (Color{92 / 255.0, 194 / 255.0, 198 / 255.0}));
    EXPECT_EQ(colors.find("A", dark), (Color{105 / 255.0, 111 / 255.0, 155 / 255.0}));
    EXPECT_EQ(colors.find("B", light), (Color{0, 0, 0}));
    EXPECT_EQ(colors.find("B", dark), (Color{1, 1, 1}));
    EXPECT_EQ(colors.find("a", light), std::nullopt);
    EXPECT_THAT(colors.problems, IsEmpty());
}

TEST(ColorsFileTests, aColourIsASignAndSixHexadecimalDigits) {
    for (std::string_view const text :
         {R"("5CC2C6")", R"("#5CC")", R"("#5CC2C6FF")", R"("#5CC2CG")", R"("#+5CC2C")", R"("#-00000")",
          R"("# 5CC2C")", R"(" #5CC2C6")", R"("##5CC2C")", R"("#0x5CC2")", R"("")", R"("#ññ12")", "6079174",
          "null", R"(["#5CC2C6"])"}) {
        auto const colors = file(text);
        EXPECT_EQ(colors.find("C", light), std::nullopt) << text;
        EXPECT_EQ(colors.find("C", dark), (Color{0, 0, 0})) << text;
        EXPECT_THAT(colors.problems,
                    ElementsAre("\"C\" in light is not \"#\" and six hexadecimal digits; colour skipped"))
            << text;
    }
}

TEST(ColorsFileTests, aMissingSchemeCostsThatSchemeAlone) {
    auto const colors = ColorsFile::parse(R"({"A": {"light": "#FFFFFF", "Dark": "#000000"}})");
    EXPECT_EQ(colors.find("A", light), (Color{1, 1, 1}));
    EXPECT_EQ(colors.find("A", dark), std::nullopt);
    EXPECT_THAT(colors.problems, ElementsAre("\"A\" in dark is missing"));
}

TEST(ColorsFileTests, whatIsNoObjectOfColoursCostsThatColourAlone) {
    auto const colors =
        ColorsFile::parse(R"({"A": "#FFFFFF", "B": {"light": "#FFFFFF", "dark": "#000000"}})");
    EXPECT_EQ(colors.find("A", light), std::nullopt);
    EXPECT_EQ(colors.find("B", light), (Color{1, 1, 1}));
    EXPECT_THAT(colors.problems, ElementsAre("\"A\" is not an object of colours; skipped"));
}

TEST(ColorsFileTests, ofEqualNamesTheFirstOneStays) {
    auto const colors = ColorsFile::parse(
        R"({"A": {"light": "#FFFFFF", "dark": "#FFFFFF"}, "A": {"light": "#000000", "dark": "#000000"}})");
    EXPECT_EQ(colors.find("A", dark), (Color{1, 1, 1}));
}

TEST(ColorsFileTests, aDocumentThatIsNoObjectHasNoColours) {
    for (std::string_view const document :
         {"", "{", "null", "[]", "\"#5CC2C6\"", "{\"A\": {}} more", "{'A': {}}", "{\"A\xFF\": {}}"}) {
        auto const colors = ColorsFile::parse(document);
        EXPECT_THAT(colors.colors, IsEmpty()) << document;
        EXPECT_THAT(colors.problems, ElementsAre("not a JSON object; no colour is read")) << document;
    }
    EXPECT_THAT(ColorsFile::parse("{}").problems, IsEmpty());
}

} // namespace
