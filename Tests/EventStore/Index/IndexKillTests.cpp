// What becomes of an index when the process that writes it is killed, or meets another writer.

#include "Tests/EventStore/Folder/SmallCalendars.h"
#include "Tests/EventStore/Index/IndexedRoot.h"
#include "Tests/Platform/KilledProcess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>

using namespace Platform;
using KilledProcess::Outcome;

namespace {

using Texts = std::vector<std::string>;

constexpr std::int64_t hour = 3600 * IndexedRoot::second;
constexpr std::int64_t day = 24 * hour;

enum class State { withoutIndex, withAnOldIndex };

std::string nameOf(State state) {
    return state == State::withoutIndex ? "without an index" : "with an old index";
}

std::string oneEvent(std::string const& uid, std::string const& title) {
    return smallFile({smallEvent(uid, title)});
}

// A folder of five files, one of which has changed since its index was written.
class IndexKillTests : public testing::Test {
protected:
    IndexKillTests() {
        for (auto const* const name : {"a", "b", "c", "d", "e"})
            root.write(std::string("work/") + name + ".ics", oneEvent(name, name));
        EXPECT_EQ(titles(*root.reader()), (Texts{"a", "b", "c", "d", "e"}));
        old = root.indexContents();
        changeTo("changed");
    }

    // By another file in its place, as most programs do it.
    void changeTo(std::string const& title) const {
        auto const aside = root.write("aside", oneEvent("c", title));
        std::filesystem::rename(aside, root / "work/c.ics");
    }

    void put(State state) const {
        std::filesystem::remove_all(root.indexes());
        if (state == State::withoutIndex) return;
        std::filesystem::create_directories(root.indexes());
        for (auto const& [path, content] : old)
            std::ofstream(path, std::ios::binary) << content;
    }

    [[nodiscard]] Texts titles(CalendarRootReader& reader, std::int64_t after = 0) const {
        return IndexedRoot::titles(reader, now + after);
    }

    // What the process does: so late after the old index that it writes a new one for a single change.
    [[nodiscard]] bool writes() const { return titles(*root.reader(), 2 * hour).size() == 5; }

    [[nodiscard]] long leftovers() const {
        return std::ranges::count_if(std::filesystem::directory_iterator(root.indexes()),
                                     [](auto const& entry) { return entry.path().extension() == ".tmp"; });
    }

    // A process that comes next gives that answer, and the one after it needs to read no file.
    void expectAnswers(Texts const& truth, std::int64_t after, std::string const& what) const {
        ASSERT_EQ(titles(*root.reader(), after), truth) << what;
        auto const next = root.reader();
        ASSERT_EQ(titles(*next, after), truth) << what;
        ASSERT_EQ(next->reads(), 0) << what;
    }

    IndexedRoot root;
    std::int64_t now = IndexedRoot::later();
    std::map<std::filesystem::path, std::string> old;
};

} // namespace

TEST_F(IndexKillTests, aWriterKilledAtAnySystemCallCostsNoAnswerAndLeavesNothingForGood) {
    Texts const truth{"a", "b", "changed", "d", "e"};
    auto const resident = root.reader();
    ASSERT_EQ(titles(*resident), truth);
    int kills = 0;
    for (auto const state : {State::withoutIndex, State::withAnOldIndex}) {
        bool sawLeftover = false;
        bool sawWritten = false;
        auto outcome = Outcome::killed;
        for (int stop = 1; outcome == Outcome::killed; ++stop) {
            auto const what = nameOf(state) + " at " + std::to_string(stop);
            put(state);
            outcome = KilledProcess::killedAtSystemCall(stop, [&] { return writes(); });
            if (outcome == Outcome::notPermitted) GTEST_SKIP() << "no process may be traced here";
            ASSERT_NE(outcome, Outcome::failed) << what;
            kills += outcome == Outcome::killed ? 1 : 0;
            if (std::filesystem::exists(root.indexes())) {
                sawLeftover = sawLeftover || leftovers() > 0;
                sawWritten = sawWritten || (leftovers() == 0 && root.indexContents() != old);
            }
            // So late that nobody can still be writing what lies there.
            ASSERT_NO_FATAL_FAILURE(expectAnswers(truth, 3 * day, what));
            ASSERT_EQ(leftovers(), 0) << what;
            ASSERT_EQ(titles(*resident), truth) << what;
        }
        EXPECT_TRUE(sawLeftover) << nameOf(state);
        EXPECT_TRUE(sawWritten) << nameOf(state);
    }
    EXPECT_GT(kills, 200);
}

TEST_F(IndexKillTests, aWriterThatIsOvertakenAtAnySystemCallCostsNoAnswer) {
    for (auto const state : {State::withoutIndex, State::withAnOldIndex}) {
        bool wasInterrupted = true;
        for (int stop = 1; wasInterrupted; ++stop) {
            auto const what = nameOf(state) + " at " + std::to_string(stop);
            auto const title = "overtaken at " + std::to_string(stop);
            Texts const truth{"a", "b", title, "d", "e"};
            put(state);
            changeTo("changed");
            auto const outcome = KilledProcess::interruptedAtSystemCall(
                stop, [&] { return writes(); },
                [&] {
                    changeTo(title);
                    // Meanwhile another writes down what is true now.
                    EXPECT_EQ(titles(*root.reader(), 2 * hour), truth) << what;
                },
                wasInterrupted);
            if (outcome == Outcome::notPermitted) GTEST_SKIP() << "no process may be traced here";
            ASSERT_EQ(outcome, Outcome::finished) << what;
            if (!wasInterrupted) break;
            ASSERT_EQ(titles(*root.reader(), 2 * hour), truth) << what;
            ASSERT_NO_FATAL_FAILURE(expectAnswers(truth, 4 * hour, what));
            ASSERT_EQ(leftovers(), 0) << what;
        }
    }
}
