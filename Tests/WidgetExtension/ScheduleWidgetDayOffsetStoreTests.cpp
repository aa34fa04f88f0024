#include "WidgetExtension/ScheduleWidgetDayOffsetStore.h"

#include "Platform/Files/InMemoryFileManager.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <ostream>
#include <string>

namespace WidgetExtension {
namespace {

constexpr char const* file = "/container/scheduleWidgetDayOffset.json";

std::int64_t loadFrom(std::string content) {
    Platform::InMemoryFileManager files;
    files.place(file, std::move(content));
    return ScheduleWidgetDayOffsetStore::load(files);
}

std::string savedAs(std::int64_t offset) {
    Platform::InMemoryFileManager const files;
    ScheduleWidgetDayOffsetStore::save(files, offset);
    return files.content(file).value();
}

TEST(ScheduleWidgetDayOffsetStoreTests, theReachIsTenDays) {
    EXPECT_EQ(ScheduleWidgetDayOffsetStore::maxOffset, 10);
}

TEST(ScheduleWidgetDayOffsetStoreTests, withoutAFileTheDayIsToday) {
    Platform::InMemoryFileManager const files;
    EXPECT_EQ(ScheduleWidgetDayOffsetStore::load(files), 0);
}

TEST(ScheduleWidgetDayOffsetStoreTests, aFileThatMayNotBeReadMeansToday) {
    Platform::InMemoryFileManager files;
    files.place(file, "3");
    files.refusesReads();
    EXPECT_EQ(ScheduleWidgetDayOffsetStore::load(files), 0);
}

struct FileRow {
    char const* name;
    char const* content;
    std::int64_t offset;
    friend void PrintTo(FileRow const& row, std::ostream* out) { *out << row.content; }
};

class OffsetFileTests : public testing::TestWithParam<FileRow> {};

TEST_P(OffsetFileTests, isReadAs) {
    EXPECT_EQ(loadFrom(GetParam().content), GetParam().offset);
}

INSTANTIATE_TEST_SUITE_P(
    everyContent, OffsetFileTests,
    testing::Values(FileRow{"negative", "-3", -3}, FileRow{"blanksAround", " \t\r\n7 \n", 7},
                    FileRow{"wholeWithFraction", "3.0", 3}, FileRow{"exponent", "1e1", 10},
                    FileRow{"beyondTheButtons", "25", 25}, FileRow{"beyondTheButtonsBack", "-25", -25},
                    FileRow{"largest", "9223372036854775807", std::numeric_limits<std::int64_t>::max()},
                    FileRow{"smallest", "-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
                    FileRow{"tooLarge", "9223372036854775808", 0}, FileRow{"hugeExponent", "1147e02864", 0},
                    FileRow{"fraction", "3.5", 0}, FileRow{"text", "\"3\"", 0}, FileRow{"boolean", "true", 0},
                    FileRow{"null", "null", 0}, FileRow{"object", "{}", 0}, FileRow{"list", "[3]", 0},
                    FileRow{"nothing", "", 0}, FileRow{"onlyBlanks", "  \n", 0},
                    FileRow{"twoNumbers", "3 4", 0}, FileRow{"plusSign", "+3", 0},
                    FileRow{"words", "three", 0}),
    [](auto const& test) { return test.param.name; });

TEST(ScheduleWidgetDayOffsetStoreTests, theFileIsOneBareNumber) {
    EXPECT_EQ(savedAs(-3), "-3");
    EXPECT_EQ(savedAs(0), "0");
}

TEST(ScheduleWidgetDayOffsetStoreTests, onlySavingClamps) {
    EXPECT_EQ(savedAs(10), "10");
    EXPECT_EQ(savedAs(11), "10");
    EXPECT_EQ(savedAs(-10), "-10");
    EXPECT_EQ(savedAs(-11), "-10");
    EXPECT_EQ(savedAs(std::numeric_limits<std::int64_t>::max()), "10");
    EXPECT_EQ(savedAs(std::numeric_limits<std::int64_t>::min()), "-10");
}

TEST(ScheduleWidgetDayOffsetStoreTests, aFailedSaveLeavesTheOldFile) {
    Platform::InMemoryFileManager files;
    files.place(file, "2");
    files.failsAfter(0);
    ScheduleWidgetDayOffsetStore::save(files, 3);
    EXPECT_EQ(ScheduleWidgetDayOffsetStore::load(files), 2);
}

TEST(ScheduleWidgetDayOffsetStoreTests, withoutAContainerTheTemporaryFolderServes) {
    Platform::InMemoryFileManager files;
    files.withoutContainer();
    ScheduleWidgetDayOffsetStore::save(files, 4);
    EXPECT_EQ(files.content("/tmp/scheduleWidgetDayOffset.json"), "4");
    EXPECT_EQ(ScheduleWidgetDayOffsetStore::load(files), 4);
}

TEST(ScheduleWidgetDayOffsetStoreTests, nothingIsMadeButTheFile) {
    Platform::InMemoryFileManager const files;
    static_cast<void>(ScheduleWidgetDayOffsetStore::load(files));
    EXPECT_TRUE(files.files().empty());
    ScheduleWidgetDayOffsetStore::save(files, 4);
    EXPECT_EQ(files.files(), std::vector<std::filesystem::path>{file});
}

} // namespace
} // namespace WidgetExtension
