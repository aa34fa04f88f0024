#include "Platform/HTMLReader/CharacterReferences.h"

#include <gtest/gtest.h>

#include <string>

using Platform::characterReferenceAt;

namespace {

struct ReferenceCase {
    std::string name;
    std::string text;
    char32_t first;
    char32_t second;
    std::size_t length;
};

class CharacterReferences : public testing::TestWithParam<ReferenceCase> {};

TEST_P(CharacterReferences, areReadAsTheStandardSays) {
    auto const reference = characterReferenceAt(GetParam().text);
    ASSERT_TRUE(reference.has_value());
    EXPECT_EQ(reference->scalars[0], GetParam().first);
    EXPECT_EQ(reference->scalars[1], GetParam().second);
    EXPECT_EQ(reference->length, GetParam().length);
}

INSTANTIATE_TEST_SUITE_P(
    Table, CharacterReferences,
    testing::Values(ReferenceCase{"ampersand", "&amp; x", '&', 0, 5},
                    ReferenceCase{"lessThan", "&lt;b>", '<', 0, 4},
                    ReferenceCase{"noBreakSpace", "&nbsp;", 0xA0, 0, 6},
                    ReferenceCase{"noSemicolon", "&nbsp x", 0xA0, 0, 5},
                    ReferenceCase{"longestBeginning", "&notit;", 0xAC, 0, 4},
                    ReferenceCase{"wholeNameBeforeBeginning", "&notin;", 0x2209, 0, 7},
                    ReferenceCase{"apostrophe", "&apos;", '\'', 0, 6},
                    ReferenceCase{"ellipsis", "&hellip;", 0x2026, 0, 8},
                    ReferenceCase{"firstOfAll", "&AElig;", 0xC6, 0, 7},
                    ReferenceCase{"lastOfAll", "&zwnj;", 0x200C, 0, 6},
                    ReferenceCase{"longestName", "&CounterClockwiseContourIntegral;", 0x2233, 0, 33},
                    ReferenceCase{"twoScalars", "&NotEqualTilde;", 0x2242, 0x338, 15},
                    ReferenceCase{"letterCaseMatters", "&Eacute;", 0xC9, 0, 8},
                    ReferenceCase{"decimal", "&#8217;", 0x2019, 0, 7},
                    ReferenceCase{"hexadecimal", "&#x1F600;", 0x1F600, 0, 9},
                    ReferenceCase{"upperCaseX", "&#X1f600;", 0x1F600, 0, 9},
                    ReferenceCase{"numberWithoutSemicolon", "&#65b", 'A', 0, 4},
                    ReferenceCase{"oldCodePage", "&#150;", 0x2013, 0, 6},
                    ReferenceCase{"zero", "&#0;", 0xFFFD, 0, 4},
                    ReferenceCase{"surrogate", "&#xD800;", 0xFFFD, 0, 8},
                    ReferenceCase{"lastCharacter", "&#x10FFFF;", 0x10FFFF, 0, 10},
                    ReferenceCase{"pastTheLast", "&#x110000;", 0xFFFD, 0, 10},
                    ReferenceCase{"overflowingNumber", "&#99999999999999999999;", 0xFFFD, 0, 23}),
    [](auto const& given) { return given.param.name; });

TEST(CharacterReferencesTests, anAmpersandThatNamesNothingIsOrdinary) {
    for (auto const* text :
         {"", "&", "& b", "&;", "&#", "&#;", "&#x;", "&#xg", "&unknown;", "&hellip", "&AMp;"})
        EXPECT_FALSE(characterReferenceAt(text).has_value()) << text;
}

} // namespace
