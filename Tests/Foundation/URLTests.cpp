#include "Foundation/URL.h"

#include <gtest/gtest.h>

namespace {

using namespace Foundation;

TEST(URLTests, linksKeepTheirText) {
    for (auto const* text : {"https://example.com/a%20b?q=1#f", "mailto:ana@example.com", "tel:+34600",
                             "HTTPS://Example.COM/../x", "zoommtg://zoom.us/join?confno=1", "relative/path",
                             "http://[::1]:80/"}) {
        SCOPED_TRACE(text);
        auto const link = URL::fromText(text);
        ASSERT_TRUE(link.has_value());
        EXPECT_EQ(link->absoluteString, text);
    }
}

TEST(URLTests, whatPeopleLeaveUnescapedIsEscaped) {
    EXPECT_EQ(URL::fromText("https://h/añ b").value().absoluteString, "https://h/a%C3%B1%20b");
    EXPECT_EQ(URL::fromText("https://h/{a|b}").value().absoluteString, "https://h/%7Ba%7Cb%7D");
}

TEST(URLTests, theirPlaceIsTold) {
    EXPECT_EQ(
        URLPlace::of({.absoluteString = "HTTPS://Example.com:8443/x"}),
        (URLPlace{
            .scheme = "https", .host = "Example.com", .hasUserInfo = false, .hasQueryOrFragment = false}));
    EXPECT_EQ(URLPlace::of({.absoluteString = "http://ann:pw@[::1]/?q"}),
              (URLPlace{.scheme = "http", .host = "[::1]", .hasUserInfo = true, .hasQueryOrFragment = true}));
    EXPECT_EQ(URLPlace::of({.absoluteString = "mailto:ana@example.com"})->host, "");
    for (auto const* text : {"", "example.com", "//example.com/x", "not a link"})
        EXPECT_EQ(URLPlace::of({.absoluteString = text}), std::nullopt) << text;
}

TEST(URLTests, whatIsNoLinkIsAbsent) {
    for (auto const* text : {"", "http://[::1", "https://h/%zz", "://x", "a\nb"})
        EXPECT_EQ(URL::fromText(text), std::nullopt) << text;
}

} // namespace
