#include "WidgetExtension/ShowNextScheduleDayIntent.h"
#include "WidgetExtension/ShowPreviousScheduleDayIntent.h"

#include "Foundation/Task.h"
#include "Platform/Files/InMemoryFileManager.h"
#include "Platform/WidgetHost/RecordingWidgetCenter.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

namespace WidgetExtension {
namespace {

constexpr char const* file = "/container/scheduleWidgetDayOffset.json";

class ScheduleDayIntentTests : public testing::Test {
protected:
    std::shared_ptr<Platform::InMemoryFileManager> files = std::make_shared<Platform::InMemoryFileManager>();
    std::shared_ptr<Platform::RecordingWidgetCenter> center =
        std::make_shared<Platform::RecordingWidgetCenter>();

    void pressNext() { Foundation::runTask(ShowNextScheduleDayIntent(files, center).perform()); }
    void pressPrevious() { Foundation::runTask(ShowPreviousScheduleDayIntent(files, center).perform()); }

    std::optional<std::string> afterNext(std::string content) {
        files->place(file, std::move(content));
        pressNext();
        return files->content(file);
    }
    std::optional<std::string> afterPrevious(std::string content) {
        files->place(file, std::move(content));
        pressPrevious();
        return files->content(file);
    }
};

TEST_F(ScheduleDayIntentTests, theTitlesAreKeysOfTheStringTable) {
    EXPECT_EQ(ShowPreviousScheduleDayIntent(files, center).title(), "schedule-widget-previous-day");
    EXPECT_EQ(ShowNextScheduleDayIntent(files, center).title(), "schedule-widget-next-day");
}

TEST_F(ScheduleDayIntentTests, theFirstPressStartsFromToday) {
    pressNext();
    EXPECT_EQ(files->content(file), "1");
    pressPrevious();
    pressPrevious();
    EXPECT_EQ(files->content(file), "-1");
    EXPECT_EQ(center->reloadCount, 3);
}

TEST_F(ScheduleDayIntentTests, aPressAtTheEndRewritesTheFileAndReloads) {
    EXPECT_EQ(afterNext("10"), "10");
    EXPECT_EQ(afterPrevious("-10"), "-10");
    EXPECT_EQ(files->writeCount(file), 2U);
    EXPECT_EQ(center->reloadCount, 2);
}

TEST_F(ScheduleDayIntentTests, aPressBringsAForeignOffsetBackIntoReach) {
    EXPECT_EQ(afterPrevious("25"), "10");
    EXPECT_EQ(afterNext("-25"), "-10");
}

TEST_F(ScheduleDayIntentTests, aCorruptFileCountsAsToday) {
    EXPECT_EQ(afterPrevious("\"3\""), "-1");
}

TEST_F(ScheduleDayIntentTests, theReloadIsAskedForEvenWhenTheSaveFailed) {
    files->place(file, "2");
    files->failsAfter(0);
    pressNext();
    EXPECT_EQ(files->content(file), "2");
    EXPECT_EQ(center->reloadCount, 1);
}

TEST_F(ScheduleDayIntentTests, theNewOffsetIsStoredBeforeTheReloadIsAskedFor) {
    class ReadingCenter final : public Platform::WidgetCenter {
    public:
        explicit ReadingCenter(std::shared_ptr<Platform::InMemoryFileManager> files)
            : files(std::move(files)) {}
        void reloadAllTimelines() override { seen = files->content(file); }
        std::optional<std::string> seen;

    private:
        std::shared_ptr<Platform::InMemoryFileManager> files;
    };
    auto const reading = std::make_shared<ReadingCenter>(files);
    Foundation::runTask(ShowNextScheduleDayIntent(files, reading).perform());
    EXPECT_EQ(reading->seen, "1");
}

TEST_F(ScheduleDayIntentTests, anIntentThatIsGoneStillPerforms) {
    auto intent = std::make_unique<ShowNextScheduleDayIntent>(files, center);
    auto task = intent->perform();
    intent.reset();
    Foundation::runTask(std::move(task));
    EXPECT_EQ(files->content(file), "1");
}

using ScheduleDayIntentDeathTest = ScheduleDayIntentTests;

TEST_F(ScheduleDayIntentDeathTest, anOffsetAtTheEndOfItsTypeEndsTheProcess) {
    EXPECT_DEATH(afterNext("9223372036854775807"), "integer overflow in an addition");
    EXPECT_DEATH(afterPrevious("-9223372036854775808"), "integer overflow in an addition");
}

} // namespace
} // namespace WidgetExtension
