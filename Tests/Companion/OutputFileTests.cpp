#include "Applications/Companion/CommandError.h"
#include "Applications/Companion/OutputFile.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <sys/stat.h>

namespace Companion {
namespace {

namespace fs = std::filesystem;

class OutputFileTests : public testing::Test {
protected:
    OutputFileTests() {
        std::string name = (fs::temp_directory_path() / "quillora-output-XXXXXX").string();
        folder = ::mkdtemp(name.data());
    }
    ~OutputFileTests() override { fs::remove_all(folder); }

    static std::string contentOf(fs::path const& path) {
        std::ostringstream text;
        text << std::ifstream(path).rdbuf();
        return text.str();
    }

    static mode_t modeOf(fs::path const& path) {
        struct stat status{};
        EXPECT_EQ(::stat(path.c_str(), &status), 0);
        return status.st_mode & 07777U;
    }

    // Nothing but the named file may be left behind.
    [[nodiscard]] std::size_t fileCount() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    }

    fs::path folder;
};

TEST_F(OutputFileTests, aNewFileHasThePermissionsOfAnyOther) {
    auto const before = ::umask(027);
    writeOutputFile(folder / "day.png", "picture");
    ::umask(before);
    EXPECT_EQ(contentOf(folder / "day.png"), "picture");
    EXPECT_EQ(modeOf(folder / "day.png"), 0640U);
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(OutputFileTests, aFileThatExistsKeepsItsPermissions) {
    std::ofstream(folder / "day.png") << "a longer older picture";
    ::chmod((folder / "day.png").c_str(), 0604);
    writeOutputFile(folder / "day.png", "picture");
    EXPECT_EQ(contentOf(folder / "day.png"), "picture");
    EXPECT_EQ(modeOf(folder / "day.png"), 0604U);
}

TEST_F(OutputFileTests, aLinkStaysALink) {
    std::ofstream(folder / "real.png") << "old";
    fs::create_symlink("real.png", folder / "link.png");
    writeOutputFile(folder / "link.png", "new");
    EXPECT_TRUE(fs::is_symlink(folder / "link.png"));
    EXPECT_EQ(contentOf(folder / "real.png"), "new");
}

TEST_F(OutputFileTests, aDeviceIsWrittenTo) {
    writeOutputFile("/dev/null", "picture");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(OutputFileTests, aFullDeviceIsToldOf) {
    try {
        writeOutputFile("/dev/full", "picture");
        FAIL() << "the picture was taken";
    } catch (CommandError const& error) {
        EXPECT_EQ(error.code(), ExitCode::failed);
        EXPECT_STREQ(error.what(),
                     "/dev/full could not be written, and stays as it was: No space left on device");
    }
}

TEST_F(OutputFileTests, oneFileIsKnownByAllItsNames) {
    std::ofstream(folder / "day.png") << "picture";
    fs::create_directory(folder / "sub");
    fs::create_symlink("day.png", folder / "link");
    fs::create_symlink(".", folder / "here");
    fs::create_symlink("../new", folder / "sub" / "dangling");
    fs::create_symlink("sub/dangling", folder / "further");
    EXPECT_TRUE(isSameOutput(folder / "day.png", folder / "day.png"));
    EXPECT_TRUE(isSameOutput(folder / "day.png", folder / "link"));
    EXPECT_TRUE(isSameOutput(folder / "here" / "day.png", folder / "day.png"));
    // None of these is there yet.
    EXPECT_TRUE(isSameOutput(folder / "new", folder / "here" / "new"));
    EXPECT_TRUE(isSameOutput(folder / "new", folder / "sub" / "dangling"));
    EXPECT_TRUE(isSameOutput(folder / "further", folder / "new"));
    EXPECT_FALSE(isSameOutput(folder / "new", folder / "newer"));
    EXPECT_FALSE(isSameOutput(folder / "day.png", folder / "new"));
    EXPECT_FALSE(isSameOutput(folder / "sub" / "day.png", folder / "day.png"));
    EXPECT_FALSE(isSameOutput("/dev/null", "/dev/null"));
}

TEST_F(OutputFileTests, aRingOfLinksEnds) {
    fs::create_symlink("a", folder / "b");
    fs::create_symlink("b", folder / "a");
    EXPECT_FALSE(isSameOutput(folder / "a", folder / "c"));
}

TEST_F(OutputFileTests, aMissingFolderIsKnownBeforehand) {
    EXPECT_EQ(whyNotAnOutputFile(folder / "none" / "day.png"),
              "there is no folder " + (folder / "none").string());
    EXPECT_EQ(whyNotAnOutputFile(folder), folder.string() + " is a folder; name a file to write");
    EXPECT_EQ(whyNotAnOutputFile(folder / "day.png"), std::nullopt);
}

} // namespace
} // namespace Companion
