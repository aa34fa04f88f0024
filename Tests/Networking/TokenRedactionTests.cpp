#include "Networking/TokenRedaction.h"

#include <gtest/gtest.h>

namespace {

using Networking::withoutToken;

TEST(TokenRedactionTests, everyOccurrenceIsTakenOut) {
    EXPECT_EQ(withoutToken("a s3cr3t-t0ken, s3cr3t-t0ken.", "s3cr3t-t0ken"), "a [token], [token].");
    EXPECT_EQ(withoutToken("nothing of it", "s3cr3t-t0ken"), "nothing of it");
    EXPECT_EQ(withoutToken("", "s3cr3t-t0ken"), "");
    EXPECT_EQ(withoutToken("text", ""), "text");
}

TEST(TokenRedactionTests, theSpellingsOfJSONAndOfURLsAreTakenOutToo) {
    constexpr auto token = "ab/cd\"ef==";
    for (auto const* text : {"<ab/cd\"ef==>", "<ab/cd\\\"ef==>", "<ab\\/cd\\\"ef==>", "<ab%2Fcd%22ef%3D%3D>"})
        EXPECT_EQ(withoutToken(text, token), "<[token]>") << text;
}

TEST(TokenRedactionTests, aShortTokenIsTakenOutOnlyWhereItIsSurelyOne) {
    EXPECT_EQ(withoutToken("Authorization: Bearer t\r\ntitle", "t"),
              "Authorization: Bearer [token]\r\ntitle");
    EXPECT_EQ(withoutToken("1234567 12345678", "1234567"), "1234567 12345678");
    EXPECT_EQ(withoutToken("1234567 12345678", "12345678"), "1234567 [token]");
}

} // namespace
