#include "Platform/EventStore/Folder/FolderListing.h"

#include "Tests/EventStore/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Platform;

namespace {

using Names = std::vector<std::string>;

Names ignoredOrSkipped(FolderListing const& listing, StoreProblem::Effect effect,
                       std::filesystem::path const& root) {
    Names texts;
    for (auto const& problem : listing.problems) {
        if (problem.effect != effect) continue;
        texts.push_back(problem.path.lexically_relative(root).string() + ": " + problem.reason);
    }
    return texts;
}

} // namespace

TEST(FolderListingTests, calendarFilesAndFoldersStandByName) {
    TemporaryFolder const root;
    for (auto const* const name : {"b.ics", "a.ICS", "c.Ics", "notes.txt", "ics", ".ics", "z.ics.tmp"}) {
        root.write(name, "");
    }
    for (auto const* const name : {"work", "home", "x.ics"})
        std::filesystem::create_directory(root / name);
    auto const listing = listFolder(root.path(), root.path());
    EXPECT_EQ(listing.calendarFiles, (Names{"a.ICS", "b.ics", "c.Ics"}));
    EXPECT_EQ(listing.folders, (Names{"home", "work", "x.ics"}));
    EXPECT_FALSE(listing.hasDisplayName);
    EXPECT_FALSE(listing.hasColor);
    EXPECT_FALSE(listing.failure.has_value());
}

TEST(FolderListingTests, theFilesThatDescribeACalendarAreSeen) {
    TemporaryFolder const root;
    root.write("displayname", "Work");
    root.write("color", "red");
    auto const listing = listFolder(root.path(), root.path());
    EXPECT_TRUE(listing.hasDisplayName);
    EXPECT_TRUE(listing.hasColor);
}

TEST(FolderListingTests, hiddenEntriesAreLeftOutWithAReason) {
    TemporaryFolder const root;
    root.write(".hidden.ics", "");
    std::filesystem::create_directory(root / ".git");
    auto const listing = listFolder(root.path(), root.path());
    EXPECT_TRUE(listing.calendarFiles.empty());
    EXPECT_TRUE(listing.folders.empty());
    EXPECT_EQ(ignoredOrSkipped(listing, StoreProblem::Effect::ignored, root.path()),
              (Names{".git: hidden files and folders are not read",
                     ".hidden.ics: hidden files and folders are not read"}));
}

TEST(FolderListingTests, aLinkCountsAsWhatItNamesInsideTheRootOnly) {
    TemporaryFolder const outside;
    outside.write("secret.ics", "");
    std::filesystem::create_directory(outside / "folder");
    TemporaryFolder const root;
    root.write("real/a.ics", "");
    std::filesystem::create_symlink("real/a.ics", root / "inside.ics");
    std::filesystem::create_directory_symlink("real", root / "again");
    std::filesystem::create_symlink(outside / "secret.ics", root / "out.ics");
    std::filesystem::create_directory_symlink(outside / "folder", root / "outfolder");
    std::filesystem::create_directory_symlink(".", root / "self");
    std::filesystem::create_directory_symlink(root.path().string() + "/..", root / "up");
    auto const listing = listFolder(root.path(), root.path());
    EXPECT_EQ(listing.calendarFiles, (Names{"inside.ics"}));
    EXPECT_EQ(listing.folders, (Names{"again", "real"}));
    EXPECT_EQ(ignoredOrSkipped(listing, StoreProblem::Effect::ignored, root.path()),
              (Names{"out.ics: it is a link that leads out of the calendar folder",
                     "outfolder: it is a link that leads out of the calendar folder",
                     "self: it is a link that leads out of the calendar folder",
                     "up: it is a link that leads out of the calendar folder"}));
}

TEST(FolderListingTests, aNeighbourWhoseNameBeginsAsTheRootsIsOutside) {
    TemporaryFolder const folder;
    folder.write("root/a.ics", "");
    folder.write("root-other/b.ics", "");
    std::filesystem::create_symlink("../root-other/b.ics", folder / "root/b.ics");
    EXPECT_EQ(listFolder(folder / "root", folder / "root").calendarFiles, (Names{"a.ics"}));
}

TEST(FolderListingTests, aDanglingCalendarFileIsSkipped) {
    TemporaryFolder const root;
    std::filesystem::create_symlink("none.ics", root / "a.ics");
    std::filesystem::create_symlink("loop", root / "loop");
    auto const listing = listFolder(root.path(), root.path());
    EXPECT_TRUE(listing.calendarFiles.empty());
    EXPECT_EQ(ignoredOrSkipped(listing, StoreProblem::Effect::skipped, root.path()),
              (Names{"a.ics: it is a link that leads nowhere (No such file or directory)"}));
    EXPECT_EQ(ignoredOrSkipped(listing, StoreProblem::Effect::ignored, root.path()),
              (Names{"loop: it is a link that leads nowhere"}));
}

TEST(FolderListingTests, aFolderThatCannotBeListedSaysWhy) {
    TemporaryFolder const root;
    root.write("file", "");
    EXPECT_EQ(listFolder(root / "none", root.path()).failure, std::errc::no_such_file_or_directory);
    EXPECT_EQ(listFolder(root / "file", root.path()).failure, std::errc::not_a_directory);
}
