#include "Tests/EventStore/Folder/SmallCalendars.h"
#include "Tests/EventStore/Index/IndexedRoot.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <sys/stat.h>
#include <thread>

using namespace Platform;

namespace {

using Texts = std::vector<std::string>;

void setTimes(std::filesystem::path const& path, FileStamp const& stamp) {
    timespec const time{.tv_sec = stamp.modified / IndexedRoot::second,
                        .tv_nsec = stamp.modified % IndexedRoot::second};
    timespec const times[] = {time, time};
    EXPECT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
}

struct Change {
    char const* name;
    std::function<void(IndexedRoot const&)> make;
    Texts titles;
};

void PrintTo(Change const& change, std::ostream* stream) {
    *stream << change.name;
}

std::string oneEvent(char const* uid, char const* title) {
    return smallFile({smallEvent(uid, title)});
}

} // namespace

class IndexStalenessTests : public testing::TestWithParam<Change> {
protected:
    IndexStalenessTests() {
        root.write("work/a.ics", oneEvent("a", "A"));
        root.write("work/b.ics", oneEvent("b", "B"));
        root.write("work/c.ics", oneEvent("c", "C"));
        root.write("loose.ics", oneEvent("l", "Loose"));
    }

    IndexedRoot root;
};

TEST_P(IndexStalenessTests, isSeenByTheNextProcess) {
    ASSERT_EQ(root.titles(*root.reader()), (Texts{"Loose", "A", "B", "C"}));
    GetParam().make(root);
    EXPECT_EQ(root.titles(*root.reader()), GetParam().titles);
    EXPECT_EQ(root.titles(*root.reader()), GetParam().titles);
}

TEST_P(IndexStalenessTests, isSeenByTheSameProcess) {
    auto const subject = root.reader();
    ASSERT_EQ(root.titles(*subject), (Texts{"Loose", "A", "B", "C"}));
    GetParam().make(root);
    EXPECT_EQ(root.titles(*subject), GetParam().titles);
    EXPECT_EQ(root.titles(*subject), GetParam().titles);
}

INSTANTIATE_TEST_SUITE_P(
    Changes, IndexStalenessTests,
    testing::Values(
        Change{"written in place",
               [](auto const& root) { root.write("work/b.ics", oneEvent("b", "B, and longer")); },
               {"Loose", "A", "B, and longer", "C"}},
        Change{"written in place with the same size and time",
               [](auto const& root) {
                   auto const before = *stampOfRegularFile(root / "work/b.ics");
                   root.write("work/b.ics", oneEvent("b", "X"));
                   setTimes(root / "work/b.ics", before);
                   EXPECT_EQ(stampOfRegularFile(root / "work/b.ics")->modified, before.modified);
               },
               {"Loose", "A", "X", "C"}},
        Change{"renamed over, with the same size and time",
               [](auto const& root) {
                   auto const before = *stampOfRegularFile(root / "work/b.ics");
                   auto const aside = root.write("aside", oneEvent("b", "Y"));
                   setTimes(aside, before);
                   std::filesystem::rename(aside, root / "work/b.ics");
               },
               {"Loose", "A", "Y", "C"}},
        Change{"exchanged with its neighbour",
               [](auto const& root) {
                   std::filesystem::rename(root / "work/b.ics", root / "work/tmp");
                   std::filesystem::rename(root / "work/c.ics", root / "work/b.ics");
                   std::filesystem::rename(root / "work/tmp", root / "work/c.ics");
               },
               {"Loose", "A", "C", "B"}},
        Change{"a new file",
               [](auto const& root) { root.write("work/bb.ics", oneEvent("bb", "BB")); },
               {"Loose", "A", "B", "BB", "C"}},
        Change{"a file linked in",
               [](auto const& root) {
                   root.write("aside", oneEvent("d", "D"));
                   std::filesystem::create_hard_link(root / "aside", root / "work/d.ics");
               },
               {"Loose", "A", "B", "C", "D"}},
        Change{"a link inside the root, whose target changes later",
               [](auto const& root) {
                   root.write("other/target.ics", oneEvent("t", "T"));
                   std::filesystem::create_symlink(root / "other/target.ics", root / "work/z.ics");
                   EXPECT_EQ(IndexedRoot::titles(*root.reader()), (Texts{"Loose", "T", "A", "B", "C", "T"}));
                   root.write("other/target.ics", oneEvent("t", "U"));
               },
               {"Loose", "U", "A", "B", "C", "U"}},
        Change{"a file removed",
               [](auto const& root) { std::filesystem::remove(root / "work/b.ics"); },
               {"Loose", "A", "C"}},
        Change{"all files removed",
               [](auto const& root) {
                   for (auto const* const name : {"work/a.ics", "work/b.ics", "work/c.ics", "loose.ics"})
                       std::filesystem::remove(root / name);
               },
               {}},
        Change{"an event moved to a file of another name",
               [](auto const& root) { std::filesystem::rename(root / "work/b.ics", root / "work/zz.ics"); },
               {"Loose", "A", "C", "B"}},
        Change{"a newer version in another file, which moves it out of sight",
               [](auto const& root) {
                   root.write("work/newer.ics",
                              smallFile({smallEvent("b", "B\r\nSEQUENCE:3", "20300101T090000Z")}));
               },
               {"Loose", "A", "C"}},
        Change{"a loose file that becomes a calendar of its own",
               [](auto const& root) {
                   root.write("loose.ics", smallFile({smallEvent("l", "L"), smallEvent("m", "M")}));
               },
               {"L", "M", "A", "B", "C"}},
        Change{"a folder renamed",
               [](auto const& root) { std::filesystem::rename(root / "work", root / "office"); },
               {"Loose", "A", "B", "C"}},
        Change{"a folder replaced by another of the same name",
               [](auto const& root) {
                   std::filesystem::rename(root / "work", root / ".gone");
                   root.write("work/b.ics", oneEvent("b", "Another"));
               },
               {"Loose", "Another"}},
        Change{"a broken file",
               [](auto const& root) { root.write("work/b.ics", "no calendar at all"); },
               {"Loose", "A", "C"}},
        Change{"the cache gone",
               [](auto const& root) { std::filesystem::remove_all(root.indexes()); },
               {"Loose", "A", "B", "C"}},
        Change{"indexes of a folder in the place of files",
               [](auto const& root) {
                   auto const index = root.onlyIndex();
                   std::filesystem::remove(index);
                   std::filesystem::create_directory(index);
               },
               {"Loose", "A", "B", "C"}}));

TEST(IndexStalenessTest, aFileChangedAgainWithinTheGrainOfItsTimeIsSeen) {
    // As a file system shows it whose times are coarse: the stamp stays, the content does not.
    IndexedRoot const root;
    root.write("work/a.ics", oneEvent("a", "A"));
    auto const stamp = *stampOfRegularFile(root / "work/a.ics");
    auto const first = root.reader();
    EXPECT_EQ(root.titles(*first, stamp.changed + 1), (Texts{"A"}));
    EXPECT_EQ(first->reads(), 1);
    // Written by the time that the index was, so its stamp says nothing: it is read again until it is old
    // enough.
    auto const second = root.reader();
    EXPECT_EQ(root.titles(*second, stamp.changed + IndexedRoot::second), (Texts{"A"}));
    EXPECT_EQ(second->reads(), 1);
    auto const third = root.reader();
    EXPECT_EQ(root.titles(*third, stamp.changed + 7200 * IndexedRoot::second), (Texts{"A"}));
    EXPECT_EQ(third->reads(), 1);
    auto const fourth = root.reader();
    EXPECT_EQ(root.titles(*fourth, stamp.changed + 7200 * IndexedRoot::second), (Texts{"A"}));
    EXPECT_EQ(fourth->reads(), 0);
}

TEST(IndexStalenessTest, aClockThatGoesBackCostsTimeAndNoAnswer) {
    IndexedRoot const root;
    root.write("work/a.ics", oneEvent("a", "A"));
    EXPECT_EQ(root.titles(*root.reader()), (Texts{"A"}));
    auto const past = 1'000'000'000 * IndexedRoot::second; // 2001
    EXPECT_EQ(root.titles(*root.reader(), past), (Texts{"A"}));
    root.write("work/a.ics", oneEvent("a", "B"));
    EXPECT_EQ(root.titles(*root.reader(), past), (Texts{"B"}));
    root.write("work/a.ics", oneEvent("a", "C"));
    EXPECT_EQ(root.titles(*root.reader(), past), (Texts{"C"}));
    EXPECT_EQ(root.titles(*root.reader()), (Texts{"C"}));
}

TEST(IndexStalenessTest, oneChangedFileCostsThatFileOnly) {
    IndexedRoot const root;
    for (int number = 0; number < 500; ++number)
        root.write("work/" + std::to_string(number) + ".ics",
                   smallFile({smallEvent(std::to_string(number), "A", "20200311T090000Z")}));
    EXPECT_EQ(root.titles(*root.reader()), Texts{});
    auto const index = root.onlyIndex();
    auto const before = *stampOfRegularFile(index);
    root.write("work/77.ics", oneEvent("77", "Now"));
    auto const next = root.reader();
    EXPECT_EQ(root.titles(*next), (Texts{"Now"}));
    EXPECT_EQ(next->reads(), 1);
    EXPECT_EQ(*stampOfRegularFile(index), before) << "the index was written for one file";
}

TEST(IndexStalenessTest, manyChangedFilesAreWrittenDown) {
    IndexedRoot const root;
    for (int number = 0; number < 100; ++number)
        root.write("work/" + std::to_string(number) + ".ics", oneEvent(std::to_string(number).c_str(), "A"));
    EXPECT_EQ(root.titles(*root.reader()).size(), 100U);
    for (int number = 0; number < 40; ++number)
        root.write("work/" + std::to_string(number) + ".ics",
                   smallFile({smallEvent(std::to_string(number), "A", "20200311T090000Z")}));
    auto const next = root.reader();
    EXPECT_EQ(root.titles(*next).size(), 60U);
    EXPECT_EQ(next->reads(), 40);
    auto const last = root.reader();
    EXPECT_EQ(root.titles(*last).size(), 60U);
    EXPECT_EQ(last->reads(), 0);
}

TEST(IndexStalenessTest, aCacheThatCannotBeWrittenIsNamedAndTheAnswerStands) {
    IndexedRoot const root;
    root.write("work/a.ics", oneEvent("a", "A"));
    root.write("../cache", "a file in its place");
    auto const subject = root.reader();
    EXPECT_EQ(root.titles(*subject), (Texts{"A"}));
    auto const problems = subject->takeProblems();
    EXPECT_TRUE(std::ranges::any_of(problems, [](StoreProblem const& problem) {
        return problem.effect == StoreProblem::Effect::ignored &&
               problem.reason.contains("could not be written");
    })) << problems.size();
    root.write("work/a.ics", oneEvent("a", "B"));
    EXPECT_EQ(root.titles(*subject), (Texts{"B"}));
}

TEST(IndexStalenessTest, twoProcessesThatWriteItAtOnceDisturbNeither) {
    IndexedRoot const root;
    for (int number = 0; number < 60; ++number)
        root.write("work/" + std::to_string(number) + ".ics", oneEvent(std::to_string(number).c_str(), "A"));
    std::vector<std::jthread> threads;
    std::atomic<int> right = 0;
    for (int worker = 0; worker < 4; ++worker) {
        threads.emplace_back([&] {
            for (int round = 0; round < 15; ++round) {
                // An index of long ago is written anew.
                auto const now = IndexedRoot::later() + round * 7200 * IndexedRoot::second;
                root.write("work/0.ics", oneEvent("0", "A"));
                if (IndexedRoot::titles(*root.reader(), now).size() >= 59) ++right;
            }
        });
    }
    threads.clear();
    EXPECT_EQ(right, 60);
    EXPECT_EQ(root.titles(*root.reader()).size(), 60U);
}
