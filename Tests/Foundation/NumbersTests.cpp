#include "Foundation/Numbers.h"

#include "Foundation/FatalError.h"
#include "Foundation/MD5.h"
#include "Foundation/UUID.h"

#include "Tests/Foundation/HostileLocale.h"

#include <gtest/gtest.h>

#include <cmath>
#include <csignal>
#include <limits>

namespace {

using namespace Foundation;

TEST(ShortestDecimalTests, fixedNotationWithAFractionInEveryLocale) {
    useHostileLocale();
    EXPECT_EQ(shortestDecimal(1700000000.0), "1700000000.0");
    EXPECT_EQ(shortestDecimal(1700000000.5), "1700000000.5");
    EXPECT_EQ(shortestDecimal(1700000000.1), "1700000000.1");
    EXPECT_EQ(shortestDecimal(0.0), "0.0");
    EXPECT_EQ(shortestDecimal(-86400), "-86400.0");
    EXPECT_EQ(shortestDecimal(-0.0), "-0.0");
    EXPECT_EQ(shortestDecimal(978307200), "978307200.0");
    EXPECT_EQ(shortestDecimal(1e22), "10000000000000000000000.0");
    EXPECT_EQ(shortestDecimal(0.000001), "0.000001");
}

TEST(ShortestDecimalTests, theDigestOfAnInstantsTextIsAnIdentifier) {
    auto const identifier = [](std::string const& text) { return UUID{.bytes = md5(text)}.uuidString(); };
    EXPECT_EQ(identifier("ABC123:XYZ|" + shortestDecimal(1700000000.0)),
              "85583367-F295-B450-C81A-265B6269B44F");
    EXPECT_EQ(identifier("ABC123:XYZ|1700000000"), "5DF3A2EA-9B41-FFB5-0F96-26BF409B1B37");
}

TEST(MD5Tests, theDigestsOfTheStandard) {
    auto const digest = [](std::string_view text) { return UUID{.bytes = md5(text)}.uuidString(); };
    EXPECT_EQ(digest(""), "D41D8CD9-8F00-B204-E980-0998ECF8427E");
    EXPECT_EQ(digest("abc"), "90015098-3CD2-4FB0-D696-3F7D28E17F72");
    EXPECT_EQ(digest(std::string_view("a\0b", 3)), "70350F60-27BC-E371-3F6B-76473084309B");
}

TEST(NumericConversionTests, fractionsAreCutTowardsZero) {
    EXPECT_EQ(truncatedInteger(59.9), 59);
    EXPECT_EQ(truncatedInteger(-1.5), -1);
    EXPECT_EQ(truncatedInteger(-0x1p63), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(truncatedInteger(0x1.fffffffffffffp62), 9223372036854774784);
}

TEST(NumericConversionTests, sumsAndProductsThatFit) {
    EXPECT_EQ(checkedAdd(std::numeric_limits<std::int64_t>::max(), -1), 9223372036854775806);
    EXPECT_EQ(checkedMultiply(-15, 60), -900);
}

constexpr auto largest = std::numeric_limits<std::int64_t>::max();

TEST(NumericConversionDeathTests, whatDoesNotFitEndsTheProcess) {
    auto const aborted = testing::KilledBySignal(SIGABRT);
    for (double const value : {std::nan(""), std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity(), 0x1p63, -0x1.0000000000001p63}) {
        SCOPED_TRACE(value);
        EXPECT_EXIT(truncatedInteger(value), aborted, "cannot be converted to a 64-bit integer");
    }
    EXPECT_EXIT(checkedAdd(largest, 1), aborted, "integer overflow in an addition");
    EXPECT_EXIT(checkedAdd(-largest - 1, -1), aborted, "integer overflow in an addition");
    EXPECT_EXIT(checkedMultiply(largest / 60 + 1, 60), aborted, "integer overflow in a multiplication");
    EXPECT_EXIT(shortestDecimal(std::nan("")), aborted, "not finite");
}

TEST(FatalErrorDeathTests, theMessageReachesStandardErrorBeforeTheAbort) {
    EXPECT_EXIT(fatalError("unable to find bundle named Meetings_Meetings"), testing::KilledBySignal(SIGABRT),
                "^unable to find bundle named Meetings_Meetings\n$");
}

TEST(UUIDTests, theTextFormIsReadInEitherCaseAndWrittenInUpperCase) {
    auto const uuid = UUID::fromText("85583367-f295-b450-C81A-265B6269B44F");
    ASSERT_TRUE(uuid.has_value());
    EXPECT_EQ(uuid->uuidString(), "85583367-F295-B450-C81A-265B6269B44F");
}

TEST(UUIDTests, otherTextsAreRefused) {
    for (auto const* text : {"", "85583367F295B450C81A265B6269B44F", "85583367-F295-B450-C81A-265B6269B44",
                             "85583367-F295-B450-C81A-265B6269B44F0", "{85583367-F295-B450-C81A-265B6269B44}",
                             "85583367-F295-B450-C81A-265B6269B44G", "85583367+F295-B450-C81A-265B6269B44F",
                             "8558336-7F295-B450-C81A-265B6269B44F"})
        EXPECT_EQ(UUID::fromText(text), std::nullopt) << text;
}

TEST(UUIDTests, randomOnesAreOfVersionFourAndDiffer) {
    auto const first = UUID::random();
    auto const second = UUID::random();
    EXPECT_NE(first, second);
    EXPECT_EQ(first.uuidString()[14], '4');
    EXPECT_EQ(first.bytes[8] & 0xC0, 0x80);
}

} // namespace
