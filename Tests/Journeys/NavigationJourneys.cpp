#include "PrivateHome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

namespace JSON = Foundation::JSON;
using testing::EndsWith;
using testing::HasSubstr;

class NavigationJourneys : public testing::Test {
protected:
    void SetUp() override { home.setUp(); }

    [[nodiscard]] std::string storedDay() const { return home.contentOf(offsetFile); }

    PrivateHome home;
    std::filesystem::path const offsetFile = home.container() / "scheduleWidgetDayOffset.json";
};

TEST_F(NavigationJourneys, everyStepIsStoredAndPrinted) {
    EXPECT_THAT(home.outputOf({"next"}), EndsWith(" (1 day ahead)\n"));
    EXPECT_EQ(storedDay(), "1");
    EXPECT_THAT(home.outputOf({"next"}), EndsWith(" (2 days ahead)\n"));
    EXPECT_THAT(home.outputOf({"today"}), EndsWith(" (today)\n"));
    EXPECT_EQ(storedDay(), "0");
    EXPECT_THAT(home.outputOf({"previous"}), EndsWith(" (1 day back)\n"));
    EXPECT_EQ(storedDay(), "-1");
}

TEST_F(NavigationJourneys, tenDaysAheadItStays) {
    std::string last;
    for (int press = 0; press < 12; ++press)
        last = home.outputOf({"next"});
    EXPECT_THAT(last, EndsWith(" (10 days ahead, as far as it goes)\n"));
    EXPECT_EQ(storedDay(), "10");
}

TEST_F(NavigationJourneys, tenDaysBackItStays) {
    std::string last;
    for (int press = 0; press < 12; ++press)
        last = home.outputOf({"previous"});
    EXPECT_THAT(last, EndsWith(" (10 days back, as far as it goes)\n"));
    EXPECT_EQ(storedDay(), "-10");
}

struct StoredDay {
    char const* name;
    char const* content;
    std::int64_t offset; // As the day's JSON tells it.
};

class StoredDayTests : public NavigationJourneys, public testing::WithParamInterface<StoredDay> {};

TEST_P(StoredDayTests, isReadAsItStands) {
    home.write(offsetFile, GetParam().content);
    auto const day = home.dayJSON({"--at", "2026-03-11T08:00"});
    EXPECT_EQ(*day.member("dayOffset"), JSON::Value(GetParam().offset));
    EXPECT_EQ(storedDay(), GetParam().content);
}

INSTANTIATE_TEST_SUITE_P(
    Files, StoredDayTests,
    testing::Values(StoredDay{"number", "3", 3}, StoredDay{"fractionOfZero", "3.0", 3},
                    StoredDay{"beyondTheButtons", "25", 25}, StoredDay{"text", "\"3\"", 0},
                    StoredDay{"fraction", "3.5", 0}, StoredDay{"object", "{}", 0}, StoredDay{"empty", "", 0},
                    StoredDay{"notText", "\xff\xfe", 0}, StoredDay{"tooLarge", "9223372036854775808", 0},
                    StoredDay{"endOfTheType", "9223372036854775807", 9223372036854775807}),
    [](auto const& instance) { return instance.param.name; });

TEST_F(NavigationJourneys, aDayBeyondTheButtonsComesBackWithinTheirReach) {
    home.write(offsetFile, "25");
    EXPECT_EQ(home.quillora({"previous"}).exitCode, 0);
    EXPECT_EQ(storedDay(), "10");
    home.write(offsetFile, "-25");
    EXPECT_EQ(home.quillora({"next"}).exitCode, 0);
    EXPECT_EQ(storedDay(), "-10");
}

TEST_F(NavigationJourneys, atTheEndOfTheTypeThereIsNoStepButAWayBack) {
    home.write(offsetFile, "9223372036854775807");
    auto const result = home.quillora({"next"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.errors,
              "quillora: the stored day is 9223372036854775807 days from today, from where there is no "
              "further step; go back with \"quillora today\"\n");
    EXPECT_EQ(storedDay(), "9223372036854775807");
    EXPECT_THAT(home.outputOf({"today"}), EndsWith(" (today)\n"));
}

TEST_F(NavigationJourneys, aDayThatCannotBeKeptIsAFailure) {
    home.environment["QUILLORA_GROUP_CONTAINER"] = (home.folder() / "gone").string();
    auto const result = home.quillora({"next"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "quillora: the day could not be saved and stays as it was: " +
                                 (home.folder() / "gone/scheduleWidgetDayOffset.json").string() +
                                 " cannot be written (No such file or directory)\n");
}

TEST_F(NavigationJourneys, theDayIsKeptInTheContainerThatIsNamed) {
    std::filesystem::create_directory(home.folder() / "shared");
    home.environment["QUILLORA_GROUP_CONTAINER"] = (home.folder() / "shared").string();
    EXPECT_THAT(home.outputOf({"next"}), HasSubstr("1 day ahead"));
    EXPECT_EQ(home.contentOf(home.folder() / "shared" / "scheduleWidgetDayOffset.json"), "1");
}

} // namespace
