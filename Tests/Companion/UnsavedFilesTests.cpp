#include "Applications/Companion/UnsavedFiles.h"
#include "Platform/Files/InMemoryFileManager.h"
#include "WidgetExtension/ScheduleWidgetDayOffsetStore.h"

#include <gtest/gtest.h>

namespace Companion {
namespace {

namespace DayOffsetStore = WidgetExtension::ScheduleWidgetDayOffsetStore;

TEST(UnsavedFilesTests, aStoreReadsBackWhatItWroteAndNothingIsSaved) {
    auto const saved = std::make_shared<Platform::InMemoryFileManager>();
    DayOffsetStore::save(*saved, 2);
    UnsavedFiles const unsaved(saved);
    EXPECT_EQ(DayOffsetStore::load(unsaved), 2);
    DayOffsetStore::save(unsaved, -5);
    EXPECT_EQ(DayOffsetStore::load(unsaved), -5);
    EXPECT_EQ(DayOffsetStore::load(*saved), 2);
}

TEST(UnsavedFilesTests, aRemovedFileIsGoneHereAlone) {
    auto const saved = std::make_shared<Platform::InMemoryFileManager>();
    saved->place("/data/a", "1");
    UnsavedFiles const unsaved(saved);
    EXPECT_FALSE(unsaved.removeItem("/data/a"));
    EXPECT_EQ(unsaved.contents("/data/a", Platform::largestPreferenceFile).error(),
              std::errc::no_such_file_or_directory);
    EXPECT_EQ(saved->content("/data/a"), "1");
}

TEST(UnsavedFilesTests, theBoundOfAReadHoldsForWhatIsUnsavedToo) {
    auto const saved = std::make_shared<Platform::InMemoryFileManager>();
    saved->place("/data/a", "12345");
    UnsavedFiles const unsaved(saved);
    EXPECT_EQ(unsaved.contents("/data/a", 4).error(), std::errc::file_too_large);
    EXPECT_FALSE(unsaved.appendToItem("/data/a", "67"));
    EXPECT_EQ(unsaved.contents("/data/a", 7), "1234567");
    EXPECT_EQ(unsaved.contents("/data/a", 6).error(), std::errc::file_too_large);
}

TEST(UnsavedFilesTests, nothingIsAddedToAFileThatCannotBeRead) {
    auto const saved = std::make_shared<Platform::InMemoryFileManager>();
    saved->place("/data/a", std::string(Platform::largestPreferenceFile + 1, 'x'));
    UnsavedFiles const unsaved(saved);
    EXPECT_EQ(unsaved.appendToItem("/data/a", "y"), std::errc::file_too_large);
    EXPECT_FALSE(unsaved.appendToItem("/data/new", "y"));
    EXPECT_EQ(unsaved.contents("/data/new", 1), "y");
}

} // namespace
} // namespace Companion
