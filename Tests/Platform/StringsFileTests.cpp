#include "Platform/Resources/StringsFile.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace Platform;
using Texts = std::map<std::string, std::string, std::less<>>;

TEST(StringsFileTests, entriesCommentsAndBlanksAreRead) {
    auto const file = StringsFile::parse("\xEF\xBB\xBF/* A heading\n over two lines */\n"
                                         "\"first\" = \"one\";\n"
                                         "// \"hidden\" = \"x\";\n"
                                         "\"second\"=\"two\"; \"third\"\n\t=\r\n \"three\" /* late */ ;");
    EXPECT_EQ(file.texts, (Texts{{"first", "one"}, {"second", "two"}, {"third", "three"}}));
    EXPECT_TRUE(file.problems.empty());
}

TEST(StringsFileTests, escapesAreResolvedInKeysAndTexts) {
    auto const file =
        StringsFile::parse(R"("k\"ey" = "a\n\t\r\"\'\\\u00e9\U00E9\ud83d\ude00 %d // no comment";)");
    EXPECT_EQ(file.texts, (Texts{{"k\"ey", "a\n\t\r\"'\\éé😀 %d // no comment"}}));
    EXPECT_TRUE(file.problems.empty());
}

TEST(StringsFileTests, aBrokenEntryIsReportedWithItsLineAndSkipped) {
    struct Row {
        std::string_view broken;
        std::string_view reason;
    };
    for (auto const& row :
         {Row{"bare = \"x\";", "a key in quotes is missing; entry skipped"},
          {"\"k\" \"x\";", "no \"=\" after the key \"k\"; entry skipped"},
          {"\"k\" = x;", "the text of \"k\" in quotes is missing; entry skipped"},
          {"\"k\" = \"\\q\";", "the text of \"k\" has an unknown escape; entry skipped"},
          {"\"k\" = \"\\u12\";", "the text of \"k\" has an unknown escape; entry skipped"},
          {"\"k\" = \"\\ud800x\";", "the text of \"k\" has an unknown escape; entry skipped"},
          {"\"k\" = \"\\ude00\";", "the text of \"k\" has an unknown escape; entry skipped"}}) {
        SCOPED_TRACE(row.broken);
        auto const file =
            StringsFile::parse("\"a\" = \"1\";\n" + std::string(row.broken) + "\n\"b\" = \"2\";\n");
        EXPECT_EQ(file.texts, (Texts{{"a", "1"}, {"b", "2"}}));
        ASSERT_EQ(file.problems.size(), 1U);
        EXPECT_EQ(file.problems[0], (StringsFile::Problem{.line = 2, .reason = std::string(row.reason)}));
    }
}

TEST(StringsFileTests, aForgottenSemicolonCostsOneEntry) {
    auto const file = StringsFile::parse("\"a\" = \"1\"\n\"b\" = \"2\";\n\"c\" = \"3\";\n");
    EXPECT_EQ(file.texts, (Texts{{"c", "3"}}));
    EXPECT_EQ(file.problems, (std::vector<StringsFile::Problem>{
                                 {.line = 1, .reason = "no \";\" after the text of \"a\"; entry skipped"}}));
}

TEST(StringsFileTests, whatHasNoEndIsReported) {
    auto const comment = StringsFile::parse("\"a\" = \"1\";\n/* open");
    EXPECT_EQ(comment.texts, (Texts{{"a", "1"}}));
    ASSERT_EQ(comment.problems.size(), 1U);
    EXPECT_EQ(comment.problems[0].line, 2U);

    auto const text = StringsFile::parse("\"a\" = \"1\";\n\"b\" = \"open");
    EXPECT_EQ(text.texts, (Texts{{"a", "1"}}));
    ASSERT_EQ(text.problems.size(), 1U);
    EXPECT_EQ(text.problems[0].reason, "the text of \"b\" has no closing quote; entry skipped");
}

TEST(StringsFileTests, theFirstOfEqualKeysStays) {
    auto const file = StringsFile::parse("\"a\" = \"1\";\n\"a\" = \"2\";");
    EXPECT_EQ(file.texts, (Texts{{"a", "1"}}));
    ASSERT_EQ(file.problems.size(), 1U);
    EXPECT_EQ(file.problems[0].line, 2U);
}

TEST(StringsFileTests, otherEncodingsAreMendedAndReported) {
    auto const file = StringsFile::parse("\"a\" = \"caf\xE9\";");
    EXPECT_EQ(file.texts, (Texts{{"a", "caf\uFFFD"}}));
    ASSERT_EQ(file.problems.size(), 1U);
}

TEST(StringsFileTests, anEmptyFileIsAnEmptyTable) {
    EXPECT_TRUE(StringsFile::parse("").texts.empty());
    EXPECT_TRUE(StringsFile::parse(" \n// nothing").problems.empty());
}

} // namespace
