#include "Platform/Files/InMemoryFileManager.h"
#include "Platform/Files/PosixFileManager.h"

#include "Tests/Platform/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <functional>
#include <memory>
#include <ostream>
#include <string>

#include <sys/resource.h>
#include <sys/stat.h>

namespace {

using namespace Platform;
using std::filesystem::path;

// What the suite needs to know of an implementation beside the interface.
class World {
public:
    virtual ~World() = default;
    virtual FileManager& files() = 0;
    virtual path root() = 0;
    virtual void place(path const& file, std::string const& content, std::uint32_t mode) = 0;
    virtual std::uint32_t mode(path const& file) = 0;
    virtual std::size_t fileCount() = 0;
    virtual void onFullDisk(std::function<void()> const& action) = 0;
};

class PosixWorld final : public World {
public:
    FileManager& files() override { return manager; }
    path root() override { return folder.path(); }

    void place(path const& file, std::string const& content, std::uint32_t mode) override {
        folder.place(file.lexically_relative(folder.path()), content);
        std::filesystem::permissions(file, static_cast<std::filesystem::perms>(mode));
    }

    std::uint32_t mode(path const& file) override {
        return static_cast<std::uint32_t>(std::filesystem::status(file).permissions());
    }

    std::size_t fileCount() override {
        auto const entries = std::filesystem::recursive_directory_iterator(folder.path());
        return static_cast<std::size_t>(std::count_if(
            begin(entries), end(entries), [](auto const& entry) { return !entry.is_directory(); }));
    }

    // The limit on the size of a file fails in the middle of a write, as a full disk does.
    void onFullDisk(std::function<void()> const& action) override {
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit usual{};
        ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &usual), 0);
        rlimit const small{.rlim_cur = 8, .rlim_max = usual.rlim_max};
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
        action();
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &usual), 0);
    }

private:
    TemporaryFolder folder;
    PosixFileManager manager{Foundation::Environment()};
};

class InMemoryWorld final : public World {
public:
    FileManager& files() override { return manager; }
    path root() override { return "/data"; }
    void place(path const& file, std::string const& content, std::uint32_t mode) override {
        manager.place(file, content, mode);
    }
    std::uint32_t mode(path const& file) override { return manager.mode(file).value(); }
    std::size_t fileCount() override { return manager.files().size(); }
    void onFullDisk(std::function<void()> const& action) override {
        manager.failsAfter(0);
        action();
    }

private:
    InMemoryFileManager manager;
};

struct Implementation {
    std::string name;
    std::unique_ptr<World> (*make)();

    friend void PrintTo(Implementation const& implementation, std::ostream* stream) {
        *stream << implementation.name;
    }
};

class FileManagerContractTests : public testing::TestWithParam<Implementation> {
protected:
    std::unique_ptr<World> world = GetParam().make();
    FileManager& files = world->files();
    path root = world->root();
};

INSTANTIATE_TEST_SUITE_P(, FileManagerContractTests,
                         testing::Values(Implementation{"Posix",
                                                        []() -> std::unique_ptr<World> {
                                                            return std::make_unique<PosixWorld>();
                                                        }},
                                         Implementation{"InMemory",
                                                        []() -> std::unique_ptr<World> {
                                                            return std::make_unique<InMemoryWorld>();
                                                        }}),
                         [](auto const& tested) { return tested.param.name; });

TEST_P(FileManagerContractTests, whatWasWrittenIsReadBackByteForByte) {
    std::string const content("a\0\xFF\r\n", 5);
    EXPECT_EQ(files.writeAtomically(root / "f", content), std::error_code());
    EXPECT_EQ(files.contents(root / "f", largestPreferenceFile), content);
    EXPECT_EQ(files.writeAtomically(root / "f", ""), std::error_code());
    EXPECT_EQ(files.contents(root / "f", largestPreferenceFile), "");
    EXPECT_EQ(world->fileCount(), 1U);
}

TEST_P(FileManagerContractTests, aLargeFileIsReadWhole) {
    std::string const content(1'000'003, 'x');
    EXPECT_EQ(files.writeAtomically(root / "f", content), std::error_code());
    EXPECT_EQ(files.contents(root / "f", largestPreferenceFile), content);
}

TEST_P(FileManagerContractTests, aFileOfMoreThanTheBytesAskedForIsNotRead) {
    world->place(root / "f", "12345", 0600);
    EXPECT_EQ(files.contents(root / "f", 5), "12345");
    EXPECT_EQ(files.contents(root / "f", 4).error(), std::errc::file_too_large);
    EXPECT_EQ(files.contents(root / "f", 4).error().message(), "File too large");
    EXPECT_EQ(files.contents(root / "f", 0).error(), std::errc::file_too_large);
    world->place(root / "empty", "", 0600);
    EXPECT_EQ(files.contents(root / "empty", 0), "");
    EXPECT_EQ(files.contents(root / "missing", 0).error(), std::errc::no_such_file_or_directory);
}

TEST_P(FileManagerContractTests, aMissingFileIsReportedAsSuch) {
    EXPECT_EQ(files.contents(root / "missing", largestPreferenceFile).error(),
              std::errc::no_such_file_or_directory);
    EXPECT_EQ(files.removeItem(root / "missing"), std::errc::no_such_file_or_directory);
}

TEST_P(FileManagerContractTests, aFolderIsNoFile) {
    ASSERT_EQ(files.createDirectory(root / "folder"), std::error_code());
    EXPECT_EQ(files.contents(root / "folder", largestPreferenceFile).error(), std::errc::is_a_directory);
    EXPECT_EQ(files.removeItem(root / "folder"), std::errc::is_a_directory);
    EXPECT_EQ(files.writeAtomically(root / "folder", "x"), std::errc::is_a_directory);
    EXPECT_EQ(files.writeAtomically(root / "folder" / "f", "x"), std::error_code());
}

TEST_P(FileManagerContractTests, aNewFileIsPrivateAndAnExistingOneKeepsItsMode) {
    EXPECT_EQ(files.writeAtomically(root / "new", "x"), std::error_code());
    EXPECT_EQ(world->mode(root / "new"), 0600U);
    world->place(root / "shared", "old", 0644);
    EXPECT_EQ(files.writeAtomically(root / "shared", "x"), std::error_code());
    EXPECT_EQ(world->mode(root / "shared"), 0644U);
}

TEST_P(FileManagerContractTests, aWriteMakesNoFolder) {
    EXPECT_EQ(files.writeAtomically(root / "missing" / "f", "x"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(world->fileCount(), 0U);
}

TEST_P(FileManagerContractTests, foldersAreMadeWithThoseAboveThem) {
    EXPECT_EQ(files.createDirectory(root / "a" / "b" / "c"), std::error_code());
    EXPECT_EQ(files.createDirectory(root / "a" / "b" / "c"), std::error_code());
    EXPECT_EQ(files.writeAtomically(root / "a" / "b" / "f", "x"), std::error_code());
}

TEST_P(FileManagerContractTests, aFileInTheWayOfAFolderStays) {
    world->place(root / "f", "content", 0600);
    EXPECT_NE(files.createDirectory(root / "f"), std::error_code());
    EXPECT_NE(files.createDirectory(root / "f" / "below"), std::error_code());
    EXPECT_EQ(files.contents(root / "f", largestPreferenceFile), "content");
}

TEST_P(FileManagerContractTests, aRemovedFileIsGone) {
    world->place(root / "f", "x", 0600);
    EXPECT_EQ(files.removeItem(root / "f"), std::error_code());
    EXPECT_FALSE(files.contents(root / "f", largestPreferenceFile).has_value());
}

TEST_P(FileManagerContractTests, aFailedWriteLeavesTheOldFileAndNothingElse) {
    world->place(root / "f", "old", 0600);
    std::error_code failure;
    world->onFullDisk([&] { failure = files.writeAtomically(root / "f", "a text longer than the limit"); });
    EXPECT_NE(failure, std::error_code());
    EXPECT_EQ(files.contents(root / "f", largestPreferenceFile), "old");
    EXPECT_EQ(world->fileCount(), 1U);
}

TEST_P(FileManagerContractTests, thereIsNoQuarantineToClear) {
    EXPECT_EQ(files.clearQuarantineProperties(root / "anything"), std::error_code());
}

} // namespace
