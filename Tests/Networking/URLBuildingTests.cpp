#include "Foundation/URLBuilding.h"

#include <gtest/gtest.h>

namespace {

using Foundation::URLQueryItem;

std::optional<Foundation::URL> built(Foundation::URL const& base, std::string_view path,
                                     std::vector<URLQueryItem> const& query) {
    auto const read = Foundation::BaseURL::of(base);
    if (!read) return std::nullopt;
    return read->appending(path, query);
}

struct PathRow {
    std::string name;
    std::string base;
    std::string path;
    std::string result;
};
class URLPathTests : public testing::TestWithParam<PathRow> {};

TEST_P(URLPathTests, appendsThePath) {
    auto const url = built({.absoluteString = GetParam().base}, GetParam().path, {});
    ASSERT_TRUE(url.has_value());
    EXPECT_EQ(url->absoluteString, GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(
    Table, URLPathTests,
    testing::Values(
        PathRow{"bare", "https://api.example.com", "/v0/events", "https://api.example.com/v0/events"},
        PathRow{"folder", "https://api.example.com/api", "/v0/events",
                "https://api.example.com/api/v0/events"},
        PathRow{"noHost", "file:///", "/v0/events", "file:///v0/events"},
        PathRow{"folderSlash", "https://api.example.com/api/", "/v0/events",
                "https://api.example.com/api/v0/events"},
        PathRow{"rootSlash", "https://h/", "/v0/events", "https://h/v0/events"},
        PathRow{"escapedBase", "https://h/a%20b", "/x", "https://h/a%20b/x"},
        PathRow{"baseQueryStays", "https://h/a?k=1", "/x", "https://h/a/x?k=1"},
        PathRow{"port", "http://127.0.0.1:8080", "/x", "http://127.0.0.1:8080/x"},
        PathRow{"slashInId", "https://h", "/v0/events/a/b", "https://h/v0/events/a/b"},
        PathRow{"percent", "https://h", "/v0/events/50%", "https://h/v0/events/50%25"},
        PathRow{"escapedSlash", "https://h", "/v0/events/a%2Fb", "https://h/v0/events/a%252Fb"},
        PathRow{"question", "https://h", "/v0/events/a?b", "https://h/v0/events/a%3Fb"},
        PathRow{"hash", "https://h", "/v0/events/a#b", "https://h/v0/events/a%23b"},
        PathRow{"blank", "https://h", "/v0/events/a b", "https://h/v0/events/a%20b"},
        PathRow{"composed", "https://h", "/v0/events/\u00F1", "https://h/v0/events/%C3%B1"},
        PathRow{"decomposed", "https://h", "/v0/events/e\u0301", "https://h/v0/events/e%CC%81"},
        PathRow{"semicolon", "https://h", "/v0/events/a;b", "https://h/v0/events/a%3Bb"},
        PathRow{"dots", "https://h", "/v0/events/..", "https://h/v0/events/.."},
        PathRow{"emptyId", "https://h", "/v0/events/", "https://h/v0/events/"},
        PathRow{"slashAtEnd", "https://h", "/v0/events/a/", "https://h/v0/events/a/"},
        PathRow{"leftAlone", "https://h", "/AZaz09-._~!$&'()*+,:@=/", "https://h/AZaz09-._~!$&'()*+,:@=/"},
        PathRow{"escapedOthers", "https://h", "/\"<>\\^`{|}[]",
                "https://h/%22%3C%3E%5C%5E%60%7B%7C%7D%5B%5D"}),
    [](auto const& row) { return row.param.name; });

TEST(URLQueryTests, anEmptyListGivesNoQuestionMark) {
    EXPECT_EQ(built({.absoluteString = "https://h"}, "/x", {})->absoluteString, "https://h/x");
}

TEST(URLQueryTests, aListReplacesTheBasesQuery) {
    EXPECT_EQ(built({.absoluteString = "https://h/a?k=1"}, "/x", {{"q", "1"}})->absoluteString,
              "https://h/a/x?q=1");
}

TEST(URLQueryTests, valuesAreEscaped) {
    EXPECT_EQ(built({.absoluteString = "https://h"}, "/x", {{"q", "a b&c=d+e/\u00E9"}})->absoluteString,
              "https://h/x?q=a%20b%26c%3Dd+e/%C3%A9");
}

TEST(URLQueryTests, namesOrderAndDuplicatesStay) {
    std::vector<URLQueryItem> const query = {
        {"name", std::nullopt}, {"name", ""}, {"#", ";"}, {"name", "?:@"}};
    EXPECT_EQ(built({.absoluteString = "https://h"}, "/x", query)->absoluteString,
              "https://h/x?name&name=&%23=%3B&name=?:@");
}

TEST(URLBuildingTests, whatIsNoAbsoluteLinkCannotBeBuiltUpon) {
    for (auto const* const base : {"", "no link", "/only/a/path", "https://h/a b", "://h"}) {
        EXPECT_EQ(built({.absoluteString = base}, "/x", {}), std::nullopt) << base;
    }
}

} // namespace
