#include "Platform/EventStore/Folder/RegularFile.h"

#include "Tests/EventStore/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Platform;

TEST(RegularFileTests, theWholeContentComesWithItsStamp) {
    TemporaryFolder const folder;
    auto const file = folder.write("a.ics", std::string("one\0two", 7));
    auto const read = readRegularFile(file);
    ASSERT_TRUE(read.has_value()) << read.error();
    EXPECT_EQ(read->content, std::string("one\0two", 7));
    EXPECT_EQ(read->stamp.size, 7);
    EXPECT_EQ(read->stamp, *stampOfRegularFile(file));
}

TEST(RegularFileTests, aFileOfTheLimitIsReadAndALargerOneRefused) {
    TemporaryFolder const folder;
    constexpr std::int64_t limit = 2 * 1024 * 1024;
    auto const file = folder.write("a.ics", std::string(limit, 'x'));
    EXPECT_EQ(readRegularFile(file, limit)->content.size(), static_cast<std::size_t>(limit));
    folder.write("a.ics", std::string(limit + 1, 'x'));
    EXPECT_EQ(readRegularFile(file, limit).error(), "it is larger than 2 MiB");
}

TEST(RegularFileTests, whatIsNoFileIsRefusedWithoutWaiting) {
    TemporaryFolder const folder;
    ASSERT_EQ(::mkfifo((folder / "pipe.ics").c_str(), 0600), 0);
    folder.write("file", "");
    std::filesystem::create_symlink(folder / "none", folder / "dangling.ics");
    struct Row {
        std::filesystem::path path;
        char const* reason;
    };
    for (auto const& row : std::vector<Row>{{folder / "pipe.ics", "it is not a regular file"},
                                            {folder.path(), "it is not a regular file"},
                                            {"/dev/null", "it is not a regular file"},
                                            {folder / "none", "No such file or directory"},
                                            {folder / "dangling.ics", "No such file or directory"},
                                            {folder / "file/a.ics", "Not a directory"}}) {
        EXPECT_EQ(stampOfRegularFile(row.path).error(), row.reason) << row.path;
        EXPECT_EQ(readRegularFile(row.path).error(), row.reason) << row.path;
    }
}

TEST(RegularFileTests, aTimeBeyondTheCountedOnesIsTheLastOfThem) {
    TemporaryFolder const folder;
    auto const file = folder.write("a.ics", "text");
    struct Row {
        std::int64_t seconds;
        std::int64_t stamp;
    };
    for (auto const& row : {Row{10'413'792'000, INT64_MAX}, Row{9'000'000'000, 9'000'000'000'000'000'000}}) {
        struct timespec const times[] = {{.tv_sec = row.seconds, .tv_nsec = 0},
                                         {.tv_sec = row.seconds, .tv_nsec = 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
        struct stat status{};
        ASSERT_EQ(::stat(file.c_str(), &status), 0);
        if (status.st_mtim.tv_sec != row.seconds) GTEST_SKIP() << "this file system keeps no such time";
        EXPECT_EQ(stampOfRegularFile(file)->modified, row.stamp);
    }
}

TEST(RegularFileTests, aStampIsYoungForTwoSecondsAndInTheFuture) {
    constexpr std::int64_t second = 1'000'000'000;
    FileStamp const stamp{
        .device = 1, .inode = 1, .size = 0, .modified = 100 * second, .changed = 200 * second};
    EXPECT_TRUE(stamp.isYoung(199 * second));
    EXPECT_TRUE(stamp.isYoung(202 * second - 1));
    EXPECT_FALSE(stamp.isYoung(202 * second));
}
