#include "Foundation/WebLinks.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Foundation {
namespace {

TEST(WebLinksTests, onlyPagesOfAHostAreWebLinks) {
    for (char const* const link :
         {"https://example.com", "HTTP://example.com/a?b#c", "https://a@example.com"})
        EXPECT_TRUE(isWebLink({.absoluteString = link})) << link;
    for (char const* const link :
         {"", "https://", "https:example.com", "//example.com", "file:///etc/passwd", "javascript:alert(1)",
          "ssh://example.com", "httpsx://example.com", "https://exa mple.com"})
        EXPECT_FALSE(isWebLink({.absoluteString = link})) << link;
}

std::vector<std::string> found(std::string_view text) {
    std::vector<std::string> links;
    for (auto const& link : webLinksIn(text))
        links.push_back(link.absoluteString);
    return links;
}

TEST(WebLinksTests, linksAreFoundWhereTheyStandInASentence) {
    using Links = std::vector<std::string>;
    struct Row {
        char const* text;
        Links links;
    };
    for (auto const& row : std::vector<Row>{
             {"", {}},
             {"Room 4, second floor", {}},
             {"https://example.com/j/123?pwd=a", {"https://example.com/j/123?pwd=a"}},
             {"Join: HTTPS://example.com/a, or call.", {"HTTPS://example.com/a"}},
             {"(see https://example.com/a).", {"https://example.com/a"}},
             {"https://example.com/a_(b) https://example.com/c)",
              {"https://example.com/a_(b)", "https://example.com/c"}},
             {"<https://example.com/a>\nhttp://example.com/b;",
              {"https://example.com/a", "http://example.com/b"}},
             {"\"https://example.com/ä\"", {"https://example.com/%C3%A4"}},
             {"https://, https://... http://[", {}},
             {"ftp://example.com javascript:https:", {}},
         })
        EXPECT_EQ(found(row.text), row.links) << row.text;
}

TEST(WebLinksTests, longTextsAreWalkedThroughOnce) {
    EXPECT_EQ(found("https://example.com" + std::string(1'000'000, ')')),
              std::vector<std::string>{"https://example.com"});
    std::string repeated;
    for (int count = 0; count < 100'000; ++count)
        repeated += "https://";
    EXPECT_LE(found(repeated).size(), 1U);
}

} // namespace
} // namespace Foundation
