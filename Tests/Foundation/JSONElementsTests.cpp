#include "Foundation/JSON.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace Foundation;
using JSON::DecodeFailure;

// The elements as they came, each written again, and how the reading ended.
struct Elements {
    std::vector<std::string> written;
    std::expected<void, DecodeFailure> end;
};

Elements elementsOf(std::string_view document, std::size_t mostValuesEach = 1000) {
    Elements elements;
    elements.end = JSON::parseElements(document, mostValuesEach, [&](JSON::Value const& value) {
        elements.written.push_back(JSON::serialize(value).value());
    });
    return elements;
}

TEST(JSONElementsTests, elementsComeOneByOneInTheirOrder) {
    auto const elements = elementsOf(R"( [1, {"a":[true,null]}, "x", [[2]], {}] )");
    EXPECT_TRUE(elements.end.has_value());
    EXPECT_EQ(elements.written,
              (std::vector<std::string>{"1", R"({"a":[true,null]})", R"("x")", "[[2]]", "{}"}));
    EXPECT_TRUE(elementsOf("[]").end.has_value());
    EXPECT_TRUE(elementsOf("\xEF\xBB\xBF[1]").end.has_value());
}

TEST(JSONElementsTests, whatIsNoListFails) {
    for (auto const* document : {"", "{}", "1", "null", "\"[1]\"", "[1", "[1]]", "[1,]", "[1] x"})
        EXPECT_EQ(elementsOf(document).end, std::unexpected(DecodeFailure::dataCorrupted)) << document;
}

TEST(JSONElementsTests, theBoundIsThatOfOneElementAndNotOfTheList) {
    EXPECT_TRUE(elementsOf("[[1,2],[1,2],[1,2],[1,2]]", 3).end.has_value());
    auto const elements = elementsOf("[[1,2],[1,2,3],[1]]", 3);
    EXPECT_EQ(elements.end, std::unexpected(DecodeFailure::dataCorrupted));
    EXPECT_EQ(elements.written, std::vector<std::string>{"[1,2]"});
}

TEST(JSONElementsTests, aWholeDocumentHasTheSameBound) {
    EXPECT_TRUE(JSON::parse("[1,2]", 3).has_value());
    EXPECT_EQ(JSON::parse("[1,2,3]", 3), std::unexpected(DecodeFailure::dataCorrupted));
    EXPECT_EQ(JSON::parse(R"({"a":1,"b":{"c":"x"}})", 3), std::unexpected(DecodeFailure::dataCorrupted));
    EXPECT_TRUE(JSON::parse(R"({"a":1,"b":{"c":"x"}})", 4).has_value());
}

} // namespace
