#include "Foundation/JSON.h"

#include "Tests/Foundation/HostileLocale.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace Foundation;

std::string written(JSON::Value const& value) {
    return JSON::serialize(value).value_or("(encoding error)");
}

TEST(JSONTextTests, textsAreWrittenWithTheShortEscapes) {
    struct Row {
        std::string_view name;
        std::string_view text;
        std::string_view expected;
    };
    for (auto const& row : {Row{"slash", "a/b", R"("a\/b")"},
                            {"quote", "\"", R"("\"")"},
                            {"backslash", "\\", R"("\\")"},
                            {"named controls", "\b\f\n\r\t", R"("\b\f\n\r\t")"},
                            {"NUL", std::string_view("\0", 1), R"("\u0000")"},
                            {"vertical tab", "\v", R"("\u000b")"},
                            {"unit separator", "\x1F", R"("\u001f")"},
                            {"delete", "\x7F", "\"\x7F\""},
                            {"line separators", "\u2028\u2029", "\"\u2028\u2029\""},
                            {"non-ASCII", "Reunión 😀", "\"Reunión 😀\""}}) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(written(row.text), row.expected);
    }
}

TEST(JSONTextTests, listsAndRecordsAreWrittenCompactAndInOrder) {
    EXPECT_EQ(written(JSON::Array{"a", "b"}), R"(["a","b"])");
    EXPECT_EQ(written(JSON::Array{}), "[]");
    EXPECT_EQ(written(JSON::Object{}), "{}");
    EXPECT_EQ(written(JSON::Object{{"amtText", ""}}), R"({"amtText":""})");
    EXPECT_EQ(written(JSON::Object{{"z", 1}, {"a", JSON::Array{true, nullptr}}}),
              R"({"z":1,"a":[true,null]})");
}

TEST(JSONTextTests, numbersAreWrittenAloneAndWithAPointInEveryLocale) {
    useHostileLocale();
    EXPECT_EQ(written(-10), "-10");
    EXPECT_EQ(written(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(written(1234567.5), "1234567.5");
    EXPECT_EQ(written(900.0), "900");
    EXPECT_EQ(written(1e300), "1e+300");
}

TEST(JSONTextTests, whatHasNoJSONFormIsAnEncodingError) {
    auto const invalid = JSON::serialize(JSON::Array{"good", "bad \xC3"});
    ASSERT_FALSE(invalid.has_value());
    EXPECT_EQ(invalid.error(), JSON::EncodeFailure::invalidText);
    EXPECT_FALSE(JSON::serialize(JSON::Object{{"key \xFF", 1}}).has_value());

    for (double const value :
         {std::nan(""), std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()}) {
        auto const number = JSON::serialize(JSON::Object{{"n", value}});
        ASSERT_FALSE(number.has_value()) << value;
        EXPECT_EQ(number.error(), JSON::EncodeFailure::nonFiniteNumber);
    }
}

TEST(JSONTextTests, escapesAreReadBack) {
    struct Row {
        std::string_view document;
        std::string expected;
    };
    for (auto const& row : {Row{R"("a\/b")", "a/b"},
                            {R"("a/b")", "a/b"},
                            {R"("\ud83d\ude00")", "😀"},
                            {R"("\u0000")", std::string(1, '\0')},
                            {R"("é\u00e9")", "éé"}}) {
        SCOPED_TRACE(row.document);
        auto const value = JSON::parse(row.document);
        ASSERT_TRUE(value.has_value());
        EXPECT_EQ(JSON::text(*value), row.expected);
    }
}

TEST(JSONTextTests, aListOfTextsFailsAsAWhole) {
    EXPECT_EQ(JSON::textList(JSON::parse(R"(["a","b"])").value()), (std::vector<std::string>{"a", "b"}));
    for (std::string_view const document : {R"(["a",3])", R"(["a",null])", R"({"a":1})", R"("a")"}) {
        SCOPED_TRACE(document);
        auto const value = JSON::parse(document);
        ASSERT_TRUE(value.has_value());
        auto const texts = JSON::textList(*value);
        ASSERT_FALSE(texts.has_value());
        EXPECT_EQ(texts.error(), JSON::DecodeFailure::dataCorrupted);
    }
}

TEST(JSONTextTests, brokenDocumentsFail) {
    for (std::string_view const document :
         {R"("\ud800")",    R"("\ude00")", "\"\n\"",    "\"\x01\"",    "\"\xC3\"", "\"\xED\xA0\x80\"",
          "\"\xC0\xAF\"",   R"("\u12")",   R"("\x41")", R"("open)",    "[1,]",     R"({"a":1,})",
          "[1] // comment", "/* */ [1]",   "'a'",       "{a:1}",       "[1] 2",    "[1}",
          "{\"a\" 1}",      "[1 2]",       "nul",       "\xEF\xBB\xBF"}) {
        SCOPED_TRACE(document);
        auto const value = JSON::parse(document);
        ASSERT_FALSE(value.has_value());
        EXPECT_EQ(value.error(), JSON::DecodeFailure::dataCorrupted);
    }
}

TEST(JSONTextTests, nestingIsBoundedAt512) {
    auto const nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
    EXPECT_TRUE(JSON::parse(nested(512)).has_value());
    EXPECT_FALSE(JSON::parse(nested(513)).has_value());
    EXPECT_FALSE(JSON::parse(std::string(100'000, '[')).has_value());
}

TEST(JSONTextTests, requiredKeysMustBeThereAndNotNull) {
    auto const record = JSON::parse(R"({"evtId":"7","EVTNAME":"x","evtNote":null,"other":1})").value();
    EXPECT_EQ(JSON::text(*JSON::required(record, "evtId").value()), "7");
    EXPECT_EQ(JSON::required(record, "evtName").error(), JSON::DecodeFailure::keyMissing);
    EXPECT_EQ(JSON::required(record, "evtNote").error(), JSON::DecodeFailure::keyMissing);
    EXPECT_EQ(JSON::required(JSON::Value(JSON::Array{}), "evtId").error(),
              JSON::DecodeFailure::dataCorrupted);
}

TEST(JSONTextTests, keysAreUnescapedComparedByBytesAndTheFirstOneWins) {
    auto const record = JSON::parse(R"({"\u0065vtId":"first","evtId":"second","é":"composed"})").value();
    EXPECT_EQ(JSON::text(*JSON::required(record, "evtId").value()), "first");
    EXPECT_EQ(std::get<JSON::Object>(record.storage).size(), 2U);
    EXPECT_EQ(record.member("e\u0301"), nullptr);

    auto const kelvin = JSON::parse("{\"\u212A\":1}").value();
    EXPECT_EQ(kelvin.member("K"), nullptr);
    EXPECT_NE(kelvin.member("\u212A"), nullptr);
}

TEST(JSONTextTests, equalKeysOfDifferentObjectsDoNotMeet) {
    auto const value = JSON::parse(R"([{"a":1},{"a":2,"b":{"a":3}}])").value();
    EXPECT_EQ(written(value), R"([{"a":1},{"a":2,"b":{"a":3}}])");
}

TEST(JSONTextTests, floatsAreReadToTheNearestAndOtherTypesRefused) {
    auto const number = [](std::string_view document) { return JSON::number(JSON::parse(document).value()); };
    useHostileLocale();
    EXPECT_EQ(number("1700000000.1"), 1700000000.1);
    EXPECT_EQ(number("-2"), -2.0);
    EXPECT_EQ(number("\"2\"").error(), JSON::DecodeFailure::dataCorrupted);
    EXPECT_EQ(JSON::boolean(JSON::parse("true").value()), true);
    EXPECT_FALSE(JSON::boolean(JSON::parse("1").value()).has_value());
}

TEST(JSONTextTests, failuresDescribeThemselvesWithTypographicApostrophes) {
    EXPECT_EQ(JSON::description(JSON::DecodeFailure::dataCorrupted),
              "The data couldn\u2019t be read because it isn\u2019t in the correct format.");
    EXPECT_EQ(JSON::description(JSON::DecodeFailure::keyMissing),
              "The data couldn\u2019t be read because it is missing.");
}

} // namespace
