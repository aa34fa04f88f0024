#include "Platform/EventStore/Folder/FolderChanges.h"

#include "Tests/EventStore/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>

using namespace Platform;
using State = FolderChanges::State;

namespace {

struct Happening {
    char const* name;
    std::function<void(TemporaryFolder const&)> make;
};

void PrintTo(Happening const& happening, std::ostream* stream) {
    *stream << happening.name;
}

} // namespace

class FolderChangesTests : public testing::TestWithParam<Happening> {};

TEST_P(FolderChangesTests, isNotedOnceTheFolderIsWatched) {
    TemporaryFolder const root;
    root.write("work/a.ics", "A");
    root.write("aside", "aside");
    FolderChanges changes;
    EXPECT_EQ(changes.state(root / "work"), State::unknown);
    changes.watch(root / "work");
    ASSERT_EQ(changes.state(root / "work"), State::unchanged);
    GetParam().make(root);
    EXPECT_EQ(changes.state(root / "work"), State::changed);
    EXPECT_EQ(changes.state(root / "work"), State::changed) << "until it is watched anew";
}

INSTANTIATE_TEST_SUITE_P(
    Happenings, FolderChangesTests,
    testing::Values(
        Happening{"a file written in place", [](auto const& root) { root.write("work/a.ics", "B"); }},
        Happening{"a new file", [](auto const& root) { root.write("work/b.ics", "B"); }},
        Happening{
            "a file linked in",
            [](auto const& root) { std::filesystem::create_hard_link(root / "aside", root / "work/c.ics"); }},
        Happening{"a file moved in",
                  [](auto const& root) { std::filesystem::rename(root / "aside", root / "work/a.ics"); }},
        Happening{"a file moved out",
                  [](auto const& root) { std::filesystem::rename(root / "work/a.ics", root / "b.ics"); }},
        Happening{"a file removed", [](auto const& root) { std::filesystem::remove(root / "work/a.ics"); }},
        Happening{"a file closed to its owner",
                  [](auto const& root) {
                      std::filesystem::permissions(root / "work/a.ics", std::filesystem::perms::none);
                  }},
        Happening{"the folder moved away",
                  [](auto const& root) { std::filesystem::rename(root / "work", root / "office"); }},
        Happening{"the folder replaced",
                  [](auto const& root) {
                      std::filesystem::rename(root / "work", root / "office");
                      root.write("work/a.ics", "another");
                  }},
        Happening{"the folder removed", [](auto const& root) { std::filesystem::remove_all(root / "work"); }},
        Happening{"the folder removed and made again", [](auto const& root) {
                      std::filesystem::remove_all(root / "work");
                      root.write("work/a.ics", "A");
                  }}));

TEST(FolderChangesTest, aFolderThatIsRemovedAndComesBackIsWatchedAnew) {
    TemporaryFolder const root;
    root.write("work/a.ics", "A");
    FolderChanges changes;
    changes.watch(root / "work");
    std::filesystem::remove_all(root / "work");
    ASSERT_EQ(changes.state(root / "work"), State::changed);
    // While it is away there is nothing to note, and nobody may take that for rest.
    changes.watch(root / "work");
    EXPECT_EQ(changes.state(root / "work"), State::unknown);
    root.write("work/a.ics", "A");
    changes.watch(root / "work");
    EXPECT_EQ(changes.state(root / "work"), State::unchanged);
    root.write("work/a.ics", "B");
    EXPECT_EQ(changes.state(root / "work"), State::changed);
}

TEST(FolderChangesTest, aFolderLookedAtAgainIsAtRestAgain) {
    TemporaryFolder const root;
    root.write("work/a.ics", "A");
    FolderChanges changes;
    changes.watch(root / "work");
    root.write("work/a.ics", "B");
    EXPECT_EQ(changes.state(root / "work"), State::changed);
    changes.watch(root / "work");
    EXPECT_EQ(changes.state(root / "work"), State::unchanged);
    root.write("work/a.ics", "C");
    EXPECT_EQ(changes.state(root / "work"), State::changed);
}

TEST(FolderChangesTest, aFolderAboveThatIsMovedLeadsElsewhere) {
    TemporaryFolder const root;
    root.write("calendars/work/a.ics", "A");
    root.write("others/work/a.ics", "other");
    FolderChanges changes;
    changes.watch(root / "calendars/work");
    std::filesystem::rename(root / "calendars", root / "gone");
    EXPECT_EQ(changes.state(root / "calendars/work"), State::changed);
    std::filesystem::rename(root / "others", root / "calendars");
    EXPECT_EQ(changes.state(root / "calendars/work"), State::changed);
    changes.watch(root / "calendars/work");
    EXPECT_EQ(changes.state(root / "calendars/work"), State::unchanged);
    root.write("calendars/work/a.ics", "changed");
    EXPECT_EQ(changes.state(root / "calendars/work"), State::changed);
}

TEST(FolderChangesTest, oneFolderIsToldFromAnother) {
    TemporaryFolder const root;
    root.write("one/a.ics", "A");
    root.write("two/a.ics", "A");
    FolderChanges changes;
    changes.watch(root / "one");
    changes.watch(root / "two");
    root.write("two/a.ics", "B");
    EXPECT_EQ(changes.state(root / "one"), State::unchanged);
    EXPECT_EQ(changes.state(root / "two"), State::changed);
}

TEST(FolderChangesTest, ofTwoPathsToOneFolderNoneIsTakenForUnchanged) {
    TemporaryFolder const root;
    root.write("work/a.ics", "A");
    std::filesystem::create_directory_symlink("work", root / "again");
    FolderChanges changes;
    changes.watch(root / "work");
    changes.watch(root / "again");
    root.write("work/a.ics", "B");
    EXPECT_NE(changes.state(root / "work"), State::unchanged);
    EXPECT_NE(changes.state(root / "again"), State::unchanged);
}

TEST(FolderChangesTest, aFolderThatIsNotThereStaysUnknown) {
    TemporaryFolder const root;
    FolderChanges changes;
    changes.watch(root / "none");
    EXPECT_EQ(changes.state(root / "none"), State::unknown);
}

TEST(FolderChangesTest, moreThanTheSystemNotesMakesEverythingUncertain) {
    TemporaryFolder const root;
    root.write("quiet/a.ics", "A");
    root.write("busy/a.ics", "A");
    FolderChanges changes;
    changes.watch(root / "quiet");
    changes.watch(root / "busy");
    int limit = 0;
    std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> limit;
    if (limit <= 0 || limit > 200'000) GTEST_SKIP() << "the system notes " << limit << " events";
    // Two events each, and no two alike, which would count as one.
    for (int number = 0; number * 2 < limit + 100; ++number) {
        auto const link = root / "busy/" / std::to_string(number);
        std::filesystem::create_symlink("a.ics", link);
        std::filesystem::remove(link);
    }
    EXPECT_EQ(changes.state(root / "busy"), State::changed);
    EXPECT_EQ(changes.state(root / "quiet"), State::changed);
    changes.watch(root / "quiet");
    EXPECT_EQ(changes.state(root / "quiet"), State::unchanged);
}
