#include "Platform/Clock/FixedClock.h"
#include "Platform/ObjectDatabase/Quarantine.h"
#include "Platform/ObjectDatabase/SealedObjectDatabaseEngine.h"
#include "Tests/ObjectDatabase/DatabaseFixtures.h"
#include "Tests/Platform/FaultScale.h"
#include "Tests/Platform/KilledProcess.h"
#include "Tests/Platform/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <thread>

namespace {

using namespace DatabaseFixtures;
using namespace std::chrono_literals;
using KilledProcess::Outcome;
using Platform::PersistedObject;
using Platform::SealedObjectDatabaseEngine;
using std::filesystem::path;

class CrashTests : public testing::Test {
protected:
    TemporaryFolder dataHome;
    path file = dataHome.path() / "Quillora" / "Tests.realm";
    std::shared_ptr<Platform::FixedClock> clock =
        std::make_shared<Platform::FixedClock>(Foundation::Date{.secondsSince1970 = 1763726400});
    SealedObjectDatabaseEngine engine{dataHome.path(), clock, 60s};

    bool write(PersistedObject const& object) {
        auto const database = engine.open(at(file));
        return database && (*database)->write(adding({object})).has_value();
    }
    std::vector<PersistedObject> peopleIn(path const& place) {
        auto const database = engine.open(at(place));
        if (!database) throw std::runtime_error(database.error().localizedDescription);
        return (*database)->objects("Person").value();
    }
    std::vector<PersistedObject> people() { return peopleIn(file); }

    /// What the counter of that name stands at; 0 when it has not begun.
    int counter(std::string const& name) {
        auto const object = engine.open(at(file)).value()->object("Person", name).value();
        return object ? std::stoi(*object->property<std::string>("name")) : 0;
    }
    bool setCounter(std::string const& name, int value) { return write(person(name, std::to_string(value))); }
};

} // namespace

TEST_F(CrashTests, aWriterKilledAtAnySystemCallLeavesTheOldOrTheNew) {
    ASSERT_TRUE(write(person("a", "0")));
    bool sawOld = false;
    bool sawNew = false;
    int stop = 1;
    for (auto outcome = Outcome::killed; outcome == Outcome::killed; ++stop) {
        auto const before = people();
        auto const next = person("a", std::to_string(stop));
        outcome = KilledProcess::killedAtSystemCall(stop, [&] { return write(next); });
        if (outcome == Outcome::notPermitted) GTEST_SKIP() << "no process may be traced here";
        ASSERT_NE(outcome, Outcome::failed) << stop;
        auto const after = people();
        ASSERT_TRUE(after == before || after.front() == next) << stop;
        ASSERT_EQ(after.size(), before.size()) << stop;
        (after == before ? sawOld : sawNew) = true;
        // Another writer finds nothing in its way, and loses nothing.
        auto const other = person("other", std::to_string(stop));
        ASSERT_TRUE(write(other)) << stop;
        ASSERT_EQ(people(), (std::vector{after.front(), other})) << stop;
    }
    EXPECT_TRUE(sawOld);
    EXPECT_TRUE(sawNew);
    EXPECT_GT(stop, 40);
}

TEST_F(CrashTests, aMakerKilledAtAnySystemCallLeavesNoDatabaseOrAnEmptyOne) {
    int stop = 1;
    for (auto outcome = Outcome::killed; outcome == Outcome::killed; ++stop) {
        std::filesystem::remove_all(file.parent_path());
        outcome = KilledProcess::killedAtSystemCall(stop, [&] { return engine.open(at(file)).has_value(); });
        if (outcome == Outcome::notPermitted) GTEST_SKIP() << "no process may be traced here";
        ASSERT_NE(outcome, Outcome::failed) << stop;
        ASSERT_TRUE(people().empty()) << stop;
    }
    EXPECT_GT(stop, 40);
}

TEST_F(CrashTests, aMoveToQuarantineKilledAtAnySystemCallLosesNothing) {
    int stop = 1;
    for (auto outcome = Outcome::killed; outcome == Outcome::killed; ++stop) {
        std::filesystem::remove_all(file.parent_path());
        ASSERT_TRUE(write(person("a", "Ada")));
        outcome = KilledProcess::killedAtSystemCall(
            stop, [&] { return engine.deleteFiles(at(file)).value_or(false); });
        if (outcome == Outcome::notPermitted) GTEST_SKIP() << "no process may be traced here";
        ASSERT_NE(outcome, Outcome::failed) << stop;
        auto const copies = Platform::Quarantine::copies(file);
        auto const where = std::filesystem::exists(file) ? file : copies.at(0);
        ASSERT_EQ(peopleIn(where), std::vector{person("a", "Ada")}) << stop;
        // A half-finished move is no hindrance to beginning anew.
        ASSERT_TRUE(write(person("b", "Bob"))) << stop;
    }
    EXPECT_GT(stop, 20);
}

TEST_F(CrashTests, killsAtAnyMomentLoseNothingBesideAnotherWriter) {
    auto const kills = FaultScale::of(1000);
    KilledProcess::Repeating steady([&](int time) { return setCounter("steady", time); });
    std::mt19937 random(4711);
    std::uniform_int_distribution<int> writings(0, 2);
    std::uniform_int_distribution<int> microseconds(0, 20'000);
    int steadyDone = 0;
    for (int round = 0; round < kills; ++round) {
        auto const before = counter("killed");
        int done = 0;
        {
            KilledProcess::Repeating killed([&](int time) { return setCounter("killed", before + time); });
            ASSERT_TRUE(killed.awaitDone(writings(random))) << round;
            auto const end =
                std::chrono::steady_clock::now() + std::chrono::microseconds(microseconds(random));
            while (std::chrono::steady_clock::now() < end)
                std::this_thread::yield();
            done = killed.kill();
        }
        // The last writing may have been done and not told.
        auto const after = counter("killed");
        ASSERT_GE(after, before + done) << round;
        ASSERT_LE(after, before + done + 1) << round;
        ASSERT_GE(counter("steady"), steadyDone) << round;
        ASSERT_TRUE(steady.awaitDone(++steadyDone)) << round;
    }
    auto const told = steady.kill();
    EXPECT_GE(counter("steady"), told);
    EXPECT_LE(counter("steady"), told + 1);
}

TEST_F(CrashTests, aWriterKilledAtAnySystemCallBesideAnotherWriterLosesNothing) {
    auto const kills = FaultScale::of(1000);
    ASSERT_TRUE(setCounter("killed", 0));
    KilledProcess::Repeating steady([&](int time) { return setCounter("steady", time); });
    int steadyDone = 0;
    int killed = 0;
    int wholeWritings = 0; // Each after a kill at every one of its system calls.
    for (int stop = 1; killed < kills || wholeWritings == 0; ++stop) {
        auto const before = counter("killed");
        auto const outcome =
            KilledProcess::killedAtSystemCall(stop, [&] { return setCounter("killed", before + 1); });
        if (outcome == Outcome::notPermitted) GTEST_SKIP() << "no process may be traced here";
        ASSERT_NE(outcome, Outcome::failed) << stop;
        auto const after = counter("killed");
        ASSERT_GE(after, before) << stop;
        ASSERT_LE(after, before + 1) << stop;
        if (outcome == Outcome::finished) {
            ASSERT_EQ(after, before + 1);
            EXPECT_GT(stop, 40);
            ++wholeWritings;
            stop = 0;
        } else {
            ++killed;
        }
        // The other writer has lost nothing, and goes on.
        ASSERT_GE(counter("steady"), steadyDone) << stop;
        ASSERT_TRUE(steady.awaitDone(++steadyDone)) << stop;
    }
    auto const told = steady.kill();
    EXPECT_GE(counter("steady"), told);
    EXPECT_LE(counter("steady"), told + 1);
    RecordProperty("kills", killed);
    RecordProperty("wholeWritings", wholeWritings);
}

TEST_F(CrashTests, twoProcessesLoseNothingToEachOther) {
    constexpr int each = 40;
    {
        auto const writing = [&](std::string const& name) {
            return [this, name](int time) { return write(person(name + std::to_string(time), name)); };
        };
        KilledProcess::Repeating first(writing("first "));
        KilledProcess::Repeating second(writing("second "));
        ASSERT_TRUE(first.awaitDone(each));
        ASSERT_TRUE(second.awaitDone(each));
    }
    auto const found = people();
    for (auto const* name : {"first ", "second "}) {
        for (int time = 1; time <= each; ++time) {
            auto const expected = person(name + std::to_string(time), name);
            EXPECT_NE(std::ranges::find(found, expected), found.end()) << expected.primaryKey;
        }
    }
}

TEST_F(CrashTests, twoThreadsLoseNothingToEachOther) {
    constexpr int each = 20;
    int failures = 0;
    auto const writing = [&](std::string const& name, int& failed) {
        for (int time = 0; time < each; ++time)
            if (!write(person(name + std::to_string(time), name))) ++failed;
    };
    int othersFailures = 0;
    std::thread other(writing, "other ", std::ref(othersFailures));
    writing("mine ", failures);
    other.join();
    EXPECT_EQ(failures + othersFailures, 0);
    EXPECT_EQ(people().size(), 2U * each);
}
