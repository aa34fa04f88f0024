#include "WidgetExtension/LocalizedFormat.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace WidgetExtension {
namespace {

TEST(LocalizedFormatTests, everySpellingOfAnIntegerPlaceholderIsReplaced) {
    EXPECT_EQ(localizedFormat("%d more", 2), "2 more");
    EXPECT_EQ(localizedFormat("%ld more", 2), "2 more");
    EXPECT_EQ(localizedFormat("+%lld más", 2), "+2 más");
    EXPECT_EQ(localizedFormat("%1$lld more", 2), "2 more");
    EXPECT_EQ(localizedFormat("%1$d more", 2), "2 more");
    EXPECT_EQ(localizedFormat("%1$ld", 2), "2");
}

TEST(LocalizedFormatTests, onlyTheFirstPlaceholderIsReplaced) {
    EXPECT_EQ(localizedFormat("%d of %d", 2), "2 of %d");
}

TEST(LocalizedFormatTests, aDoubledPercentSignIsOne) {
    EXPECT_EQ(localizedFormat("%% %d %%", 2), "% 2 %");
    EXPECT_EQ(localizedFormat("%%d", 2), "%d");
}

TEST(LocalizedFormatTests, everythingElseStaysAsItIs) {
    EXPECT_EQ(localizedFormat("more", 2), "more");
    EXPECT_EQ(localizedFormat("%s %@ %n %5d %2$d %", 2), "%s %@ %n %5d %2$d %");
    EXPECT_EQ(localizedFormat("", 2), "");
}

TEST(LocalizedFormatTests, digitsAreNotGrouped) {
    EXPECT_EQ(localizedFormat("%d", 1234), "1234");
    EXPECT_EQ(localizedFormat("%d", std::numeric_limits<std::int64_t>::max()), "9223372036854775807");
}

} // namespace
} // namespace WidgetExtension
