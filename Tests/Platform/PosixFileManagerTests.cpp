#include "Platform/Files/PosixFileManager.h"

#include "Tests/Platform/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <fstream>
#include <map>
#include <string>

#include <sys/stat.h>

namespace {

using namespace Platform;
using Foundation::Environment;
using std::filesystem::path;
using std::filesystem::perms;

constexpr std::string_view group = "group.quillora";

perms mode(path const& file) {
    return std::filesystem::symlink_status(file).permissions();
}

std::optional<path> container(Environment const& environment) {
    return PosixFileManager(environment).containerURLForSecurityApplicationGroupIdentifier(group);
}

TEST(PosixFileManagerPlacesTests, theDataHomeComesFromTheEnvironment) {
    auto const dataHome = [](std::map<std::string, std::string, std::less<>> variables) {
        return PosixFileManager(Environment(std::move(variables))).applicationSupportDirectory();
    };
    EXPECT_EQ(dataHome({{"XDG_DATA_HOME", "/d"}, {"HOME", "/h"}}), path("/d"));
    EXPECT_EQ(dataHome({{"HOME", "/h"}}), path("/h/.local/share"));
    EXPECT_EQ(dataHome({{"XDG_DATA_HOME", "relative"}, {"HOME", "/h"}}), path("/h/.local/share"));
    EXPECT_EQ(dataHome({{"XDG_DATA_HOME", ""}, {"HOME", "relative"}}), std::nullopt);
    EXPECT_EQ(dataHome({}), std::nullopt);
}

TEST(PosixFileManagerPlacesTests, theTemporaryFolderComesFromTheEnvironment) {
    EXPECT_EQ(PosixFileManager(Environment({{"TMPDIR", "/t"}})).temporaryDirectory(), path("/t"));
    EXPECT_EQ(PosixFileManager(Environment({{"TMPDIR", "t"}})).temporaryDirectory(), path("/tmp"));
    EXPECT_EQ(PosixFileManager(Environment()).temporaryDirectory(), path("/tmp"));
}

TEST(PosixFileManagerPlacesTests, aChosenContainerIsTakenAsItIsAndNotMade) {
    TemporaryFolder const folder;
    auto const chosen = folder.path() / "chosen";
    EXPECT_EQ(container(Environment({{"QUILLORA_GROUP_CONTAINER", chosen}, {"HOME", "/h"}})), chosen);
    EXPECT_FALSE(std::filesystem::exists(chosen));
}

TEST(PosixFileManagerPlacesTests, aContainerThatIsToBeLeftMissingIsToldAndNotMade) {
    TemporaryFolder const folder;
    auto const told = [](path const& dataHome) {
        return PosixFileManager(Environment({{"XDG_DATA_HOME", dataHome}}),
                                PosixFileManager::Durability::file,
                                PosixFileManager::MissingContainer::isLeft)
            .containerURLForSecurityApplicationGroupIdentifier(group);
    };
    auto const dataHome = folder.path() / "a" / "data";
    EXPECT_EQ(told(dataHome), dataHome / group);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));

    // What is there already, or can never be made, is told as ever.
    std::filesystem::create_directories(dataHome / group);
    EXPECT_EQ(told(dataHome), dataHome / group);
    std::ofstream(folder.path() / "file") << "no folder";
    EXPECT_EQ(told(folder.path() / "file"), std::nullopt);
    std::filesystem::create_symlink("nowhere", folder.path() / "link");
    EXPECT_EQ(told(folder.path() / "link"), std::nullopt);
}

TEST(PosixFileManagerPlacesTests, anEmptyOrRelativeChoiceMeansNoContainer) {
    TemporaryFolder const folder;
    for (auto const* choice : {"", "relative/folder"}) {
        SCOPED_TRACE(choice);
        Environment const environment(
            {{"QUILLORA_GROUP_CONTAINER", choice}, {"XDG_DATA_HOME", folder.path()}});
        EXPECT_EQ(container(environment), std::nullopt);
    }
    EXPECT_TRUE(folder.names().empty());
}

TEST(PosixFileManagerPlacesTests, otherwiseTheContainerIsMadeInTheDataHome) {
    TemporaryFolder const folder;
    auto const dataHome = folder.path() / "data" / "home";
    auto const found = container(Environment({{"XDG_DATA_HOME", dataHome}}));
    EXPECT_EQ(found, dataHome / "group.quillora");
    EXPECT_TRUE(std::filesystem::is_directory(dataHome / "group.quillora"));
    EXPECT_EQ(mode(dataHome / "group.quillora"), perms::owner_all);
    EXPECT_EQ(mode(dataHome), perms::owner_all);
}

TEST(PosixFileManagerPlacesTests, aContainerThatCannotBeMadeIsAbsent) {
    TemporaryFolder const folder;
    auto const file = folder.place("file", "in the way");
    EXPECT_EQ(container(Environment({{"XDG_DATA_HOME", file}})), std::nullopt);
    EXPECT_EQ(container(Environment()), std::nullopt);
}

TEST(PosixFileManagerTests, theProcessesMaskDoesNotChangeTheModeOfANewFile) {
    TemporaryFolder const folder;
    PosixFileManager const files{Environment()};
    for (mode_t const mask : {0U, 0777U}) {
        SCOPED_TRACE(mask);
        auto const file = folder.path() / std::to_string(mask);
        auto const usual = ::umask(mask);
        auto const failure = files.writeAtomically(file, "x");
        ::umask(usual);
        EXPECT_EQ(failure, std::error_code());
        EXPECT_EQ(mode(file), perms::owner_read | perms::owner_write);
    }
}

TEST(PosixFileManagerTests, aLinkIsReplacedAndItsTargetStays) {
    TemporaryFolder const folder;
    auto const target = folder.place("target", "precious");
    auto const link = folder.path() / "link";
    std::filesystem::create_symlink(target, link);

    EXPECT_EQ(PosixFileManager(Environment()).writeAtomically(link, "x"), std::error_code());
    EXPECT_EQ(PosixFileManager(Environment()).contents(target, largestPreferenceFile), "precious");
    EXPECT_FALSE(std::filesystem::is_symlink(link));
    EXPECT_EQ(mode(link), perms::owner_read | perms::owner_write);
}

TEST(PosixFileManagerTests, aRewrittenFileIsAnotherFileUnderTheSameName) {
    TemporaryFolder const folder;
    auto const file = folder.place("f", "old");
    std::filesystem::create_hard_link(file, folder.path() / "reader");

    EXPECT_EQ(PosixFileManager(Environment()).writeAtomically(file, "new"), std::error_code());
    EXPECT_EQ(PosixFileManager(Environment()).contents(folder.path() / "reader", largestPreferenceFile),
              "old");
    EXPECT_EQ(folder.names(), (std::set<std::string>{"f", "reader"}));
}

TEST(PosixFileManagerTests, aPipeIsRefusedWithoutWaitingForItsWriter) {
    TemporaryFolder const folder;
    auto const pipe = folder.path() / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(PosixFileManager(Environment()).contents(pipe, largestPreferenceFile).error(),
              std::errc::invalid_argument);
    EXPECT_EQ(PosixFileManager(Environment()).contents("/dev/zero", largestPreferenceFile).error(),
              std::errc::invalid_argument);
    EXPECT_EQ(PosixFileManager(Environment()).contents(pipe, largestPreferenceFile).error().message(),
              "Not a regular file");
}

TEST(PosixFileManagerTests, aFileOfGigabytesIsRefusedUnread) {
    TemporaryFolder const folder;
    auto const file = folder.place("huge", "");
    constexpr std::uintmax_t sixtyFourGigabytes = std::uintmax_t{64} << 30; // A hole: it takes no room.
    std::filesystem::resize_file(file, sixtyFourGigabytes);
    EXPECT_EQ(PosixFileManager(Environment()).contents(file, largestPreferenceFile).error(),
              std::errc::file_too_large);
}

TEST(PosixFileManagerTests, aFileThatDoesNotTellItsSizeIsReadNoFurtherThanAllowed) {
    ASSERT_EQ(std::filesystem::file_size("/proc/self/status"), 0U);
    PosixFileManager const files{Environment()};
    EXPECT_EQ(files.contents("/proc/self/status", 10).error(), std::errc::file_too_large);
    EXPECT_TRUE(files.contents("/proc/self/status", largestPreferenceFile)->starts_with("Name:"));
}

TEST(PosixFileManagerTests, aNameOfTheGreatestLengthCanBeWritten) {
    TemporaryFolder const folder;
    auto const file = folder.path() / std::string(255, 'n');
    EXPECT_EQ(PosixFileManager(Environment()).writeAtomically(file, "x"), std::error_code());
    EXPECT_EQ(PosixFileManager(Environment()).writeAtomically(folder.path() / std::string(256, 'n'), "x"),
              std::errc::filename_too_long);
    EXPECT_EQ(folder.names().size(), 1U);
}

TEST(PosixFileManagerTests, whatAKilledWriteLeftIsTakenAwayOnceItIsOld) {
    TemporaryFolder const folder;
    auto const left = folder.path() / ".5D2B4A3C-0F1E-4D5C-8B7A-695847362514.tmp";
    auto const young = folder.path() / ".6D2B4A3C-0F1E-4D5C-8B7A-695847362514.tmp";
    auto const notOurs = folder.path() / ".notes.tmp";
    auto const aFolder = folder.path() / ".7D2B4A3C-0F1E-4D5C-8B7A-695847362514.tmp";
    for (auto const& file : {left, young, notOurs})
        std::ofstream(file) << "half";
    std::filesystem::create_directory(aFolder);
    auto const now = std::filesystem::file_time_type::clock::now();
    for (auto const& old : {left, notOurs, aFolder})
        std::filesystem::last_write_time(old, now - std::chrono::minutes(11));
    std::filesystem::last_write_time(young, now - std::chrono::minutes(9));
    ASSERT_FALSE(PosixFileManager(Environment()).writeAtomically(folder.path() / "file", "whole"));
    EXPECT_FALSE(std::filesystem::exists(left));
    for (auto const& kept : {young, notOurs, aFolder, folder.path() / "file"})
        EXPECT_TRUE(std::filesystem::exists(kept)) << kept;
}

TEST(PosixFileManagerTests, aDurableWriteSyncsTheFolderToo) {
    TemporaryFolder const folder;
    PosixFileManager const files(Environment(), PosixFileManager::Durability::fileAndFolder);
    EXPECT_EQ(files.writeAtomically(folder.path() / "key", "x"), std::error_code());
    EXPECT_EQ(files.contents(folder.path() / "key", largestPreferenceFile), "x");
    EXPECT_EQ(folder.names(), (std::set<std::string>{"key"}));
}

} // namespace
