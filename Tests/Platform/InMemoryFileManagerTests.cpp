#include "Platform/Files/InMemoryFileManager.h"

#include <gtest/gtest.h>

namespace {

using namespace Platform;
using Kind = InMemoryFileManager::Operation::Kind;

TEST(InMemoryFileManagerTests, writesFailAfterSoManyAndOldContentStays) {
    InMemoryFileManager files;
    files.failsAfter(2);
    EXPECT_EQ(files.writeAtomically("/data/f", "1"), std::error_code());
    EXPECT_EQ(files.writeAtomically("/data/f", "2"), std::error_code());
    EXPECT_EQ(files.writeAtomically("/data/f", "3"), std::errc::no_space_on_device);
    EXPECT_EQ(files.content("/data/f"), "2");
    EXPECT_EQ(files.writeCount("/data/f"), 2U);
}

TEST(InMemoryFileManagerTests, theHistoryTellsWhatWasAskedAndHowItEnded) {
    InMemoryFileManager files;
    files.place("/container/f", "x");
    EXPECT_TRUE(files.contents("/container/f", largestPreferenceFile).has_value());
    EXPECT_NE(files.removeItem("/container/g"), std::error_code());
    EXPECT_EQ(files.history(), (std::vector<InMemoryFileManager::Operation>{
                                   {.kind = Kind::read, .path = "/container/f", .succeeded = true},
                                   {.kind = Kind::remove, .path = "/container/g", .succeeded = false}}));
}

TEST(InMemoryFileManagerTests, placesMayBeMissing) {
    InMemoryFileManager files;
    EXPECT_EQ(files.containerURLForSecurityApplicationGroupIdentifier("group"), "/container");
    files.withVanishedContainer();
    auto const vanished = files.containerURLForSecurityApplicationGroupIdentifier("group").value();
    EXPECT_EQ(files.writeAtomically(vanished / "f", "x"), std::errc::no_such_file_or_directory);
    files.withoutContainer();
    EXPECT_EQ(files.containerURLForSecurityApplicationGroupIdentifier("group"), std::nullopt);
    files.withoutApplicationSupport();
    EXPECT_EQ(files.applicationSupportDirectory(), std::nullopt);
}

TEST(InMemoryFileManagerTests, readsMayBeRefused) {
    InMemoryFileManager files;
    files.place("/data/f", "x");
    files.refusesReads();
    EXPECT_EQ(files.contents("/data/f", largestPreferenceFile).error(), std::errc::permission_denied);
}

} // namespace
