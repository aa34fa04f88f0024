#include "Foundation/JSON.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

namespace {

using namespace Foundation;

// What the whole document reads as; absent when the reading fails at any step.
std::optional<std::int64_t> integerOf(std::string_view document) {
    auto const value = JSON::parse(document);
    if (!value) return std::nullopt;
    auto const integer = JSON::integer(*value);
    if (!integer) return std::nullopt;
    return *integer;
}

struct Row {
    std::string_view document;
    std::int64_t expected;
};

void expectIntegers(std::initializer_list<Row> rows) {
    for (auto const& row : rows) {
        SCOPED_TRACE(row.document);
        EXPECT_EQ(integerOf(row.document), row.expected);
    }
}

void expectFailures(std::initializer_list<std::string_view> documents) {
    for (auto const document : documents) {
        SCOPED_TRACE(document);
        EXPECT_EQ(integerOf(document), std::nullopt);
    }
}

TEST(JSONIntegerTests, aBareNumberIsADocument) {
    expectIntegers({{"-3", -3}, {"0", 0}, {"10", 10}});
}

TEST(JSONIntegerTests, jsonBlanksAreSkippedAtBothEndsAndNoOthers) {
    expectIntegers({{" \t\r\n7 \n", 7}});
    expectFailures({"\v7", "7\f", "\u00A07", "7\u00A0"});
}

TEST(JSONIntegerTests, fractionsAndExponentsThatComeOutWholeAreIntegers) {
    expectIntegers(
        {{"3.0", 3}, {"-3.00", -3}, {"1e1", 10}, {"1E1", 10}, {"1e+1", 10}, {"100e-1", 10}, {"1.5e1", 15}});
    expectFailures({"3.5", "-0.1", "15e-1"});
}

TEST(JSONIntegerTests, everySpellingOfZeroIsZero) {
    expectIntegers({{"-0", 0}, {"-0.0", 0}, {"0e5", 0}});
}

TEST(JSONIntegerTests, theBoundsOfTheTypeAreExactAndNothingIsClamped) {
    expectIntegers({{"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
                    {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()}});
    expectFailures({"9223372036854775808", "-9223372036854775809", "1e19", "1e400", "1147e02864",
                    "1e99999999999999999999999"});
}

TEST(JSONIntegerTests, digitsBeyondAFloatsPrecisionAreKept) {
    expectIntegers({{"9007199254740993.0", 9007199254740993}, {"900719925474099300e-2", 9007199254740993}});
}

TEST(JSONIntegerTests, aFractionThatVanishesInAFloatIsDropped) {
    expectIntegers({{"1.0000000000000001", 1}, {"-7.00000000000000000001", -7}});
}

TEST(JSONIntegerTests, aByteOrderMarkOfUTF8IsSkippedAndOtherEncodingsFail) {
    expectIntegers({{"\xEF\xBB\xBF"
                     "3",
                     3}});
    expectFailures({std::string_view("\xFF\xFE"
                                     "3\0",
                                     4),
                    std::string_view("\xFE\xFF\0"
                                     "3",
                                     4),
                    std::string_view("\xFF\xFE\0\0"
                                     "3\0\0\0",
                                     8),
                    std::string_view("3\0", 2)});
}

TEST(JSONIntegerTests, malformedNumbersFail) {
    expectFailures({"03", "-03", "+3", ".5", "3.", "1e", "1e+", "-", "0x10", "NaN", "Infinity", "1_000"});
}

TEST(JSONIntegerTests, otherTypesAndBrokenDocumentsFail) {
    expectFailures(
        {"\"3\"", "true", "null", "[3]", "{}", "{\"a\":3}", "", " \n ", "3 4", "3,", "3x", "3\n4"});
}

} // namespace
