#include "Platform/HTMLReader/HTMLLimits.h"
#include "Platform/HTMLReader/LibXMLHTMLReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

using Platform::LibXMLHTMLReader;

namespace {

constexpr std::size_t mebibyte = 1024 * 1024;

std::string repeated(std::string const& piece, std::size_t size, std::string text = "") {
    while (text.size() + piece.size() <= size)
        text += piece;
    return text;
}

std::string manyAttributes() {
    std::string tag = "<p";
    for (int number = 0; tag.size() < mebibyte - 20; ++number)
        tag += " a" + std::to_string(number) + "=1";
    return tag + ">x";
}

struct BombCase {
    std::string name;
    std::string html;
};

class HostileHTML : public testing::TestWithParam<BombCase> {};

// Bars for an optimised build are the benchmark's; here it is that nothing takes the square of its size,
// which would be longer than CTest gives a test.
TEST_P(HostileHTML, isReadInTimeThatGrowsWithItsSizeOnly) {
    auto const text = LibXMLHTMLReader().plainText(GetParam().html);
    ASSERT_TRUE(text.has_value());
    EXPECT_LE(text->size(), 2 * mebibyte);
}

INSTANTIATE_TEST_SUITE_P(
    Bombs, HostileHTML,
    testing::Values(
        BombCase{"attributes", manyAttributes()}, BombCase{"openInline", repeated("<b>", mebibyte)},
        BombCase{"openHiddenInline", repeated("<b hidden>", mebibyte)},
        BombCase{"openBlocks", repeated("<div>", mebibyte)},
        BombCase{"openTables", repeated("<table><tr><td>", mebibyte)},
        BombCase{"openLists", repeated("<ol><li>", mebibyte)},
        BombCase{"paragraphs", repeated("<p>", mebibyte)},
        BombCase{"strayEndTags", repeated("</td>", mebibyte, repeated("<div>", 1000))},
        BombCase{"closedByOthers", repeated("<div><ul></div></ul>", mebibyte, repeated("<div>", 1000))},
        BombCase{"openComments", repeated("<!--", mebibyte)},
        BombCase{"openScripts", repeated("</script", mebibyte, "<script>")},
        BombCase{"openQuotes", repeated("<a b='", mebibyte)}, BombCase{"openTags", repeated("<a ", mebibyte)},
        BombCase{"longName", repeated("x", mebibyte, "<")},
        BombCase{"references", repeated("&notit;", mebibyte)},
        BombCase{"unknownReferences", repeated("&abcdefg", mebibyte)},
        BombCase{"numbers", repeated("&#9", mebibyte)}, BombCase{"longNumber", repeated("9", mebibyte, "&#")},
        BombCase{"ampersands", repeated("&", mebibyte)}, BombCase{"lessThan", repeated("<", mebibyte)},
        BombCase{"declarations", repeated("<!x>", mebibyte)},
        BombCase{"styles", repeated(":;", mebibyte, "<p style='")},
        BombCase{"controls", std::string(mebibyte, '\0')}),
    [](auto const& given) { return given.param.name; });

TEST(HTMLBoundsTests, aTextIsReadUpToItsFirstMebibyte) {
    auto const text = LibXMLHTMLReader().plainText(repeated("漢", 2 * mebibyte));
    ASSERT_TRUE(text.has_value());
    // Cut before the character that crosses the bound.
    EXPECT_EQ(text->size(), mebibyte - mebibyte % 3);
}

TEST(HTMLBoundsTests, whatStandsBeforeTooManyTagsIsRead) {
    auto const text =
        LibXMLHTMLReader().plainText("first" + repeated("<hr>", Platform::HTMLLimits::tags * 4) + "last");
    EXPECT_EQ(text, "first");
    EXPECT_EQ(LibXMLHTMLReader().plainText("first" + repeated("<hr>", Platform::HTMLLimits::tags) + "last"),
              "first\nlast");
}

TEST(HTMLBoundsTests, whatStandsBeforeTooDeepANestIsRead) {
    auto const nested = [](std::size_t depth) { return "first" + repeated("<div>", depth * 5) + "last"; };
    // The document itself is two deep.
    EXPECT_EQ(LibXMLHTMLReader().plainText(nested(Platform::HTMLLimits::depth - 2)), "first\nlast");
    EXPECT_EQ(LibXMLHTMLReader().plainText(nested(Platform::HTMLLimits::depth - 1)), "first");
}

} // namespace
