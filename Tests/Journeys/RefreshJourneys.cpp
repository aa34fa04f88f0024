#include "PrivateHome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// What a program that was started apart holds while it looks at the calendars.
class RefreshLock {
public:
    explicit RefreshLock(std::filesystem::path const& file)
        : descriptor(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
        EXPECT_EQ(::flock(descriptor, LOCK_EX), 0);
    }
    RefreshLock(RefreshLock const&) = delete;
    RefreshLock& operator=(RefreshLock const&) = delete;
    ~RefreshLock() { ::close(descriptor); }

private:
    int descriptor;
};

// A calendar of so many files that "day" does not look at each before it answers.
class RefreshJourneys : public testing::Test {
protected:
    void SetUp() override {
        for (int number = 0; number < 520; ++number)
            write(number, "20200311");
        home.setUp();
        makeFolderOld();
        EXPECT_EQ(home.quillora({"sources", "refresh"}).exitCode, 0);
    }
    // Nobody who was started apart may be left in a home that goes away.
    void TearDown() override { RefreshLock const wait(lockFile); }

    void write(int number, std::string const& day) const {
        home.write(folder / (std::to_string(number) + ".ics"),
                   calendarFile(event(std::to_string(number), "Meet " + std::to_string(number),
                                      ":" + day + "T090000Z", ":" + day + "T100000Z")));
    }

    // Files and folders of the last two seconds are not trusted.
    void makeFolderOld() const {
        auto const bound = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        struct stat status{};
        do {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            ASSERT_EQ(::stat(folder.c_str(), &status), 0);
            ASSERT_LT(std::chrono::steady_clock::now(), bound);
        } while (status.st_ctim.tv_sec + 3 > std::time(nullptr));
    }

    [[nodiscard]] std::vector<std::string> meets() const {
        return meetNames(home.dayJSON({"--at", "2026-03-11T08:00"}));
    }

    PrivateHome home;
    std::filesystem::path const folder = home.calendars() / "work";
    std::filesystem::path const lockFile = home.folder() / "cache/quillora/calendars/refresh.lock";
};

TEST_F(RefreshJourneys, whatWasWrittenInPlaceIsSeenByTheNextDayWithoutAnybodyAsking) {
    EXPECT_THAT(meets(), IsEmpty());
    {
        RefreshLock const wait(lockFile);
    }
    write(7, "20260311");
    // The first may miss it; the look that it leaves behind does not.
    auto const bound = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    auto found = meets();
    while (found.empty() && std::chrono::steady_clock::now() < bound) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        found = meets();
    }
    EXPECT_THAT(found, ElementsAre("Meet 7"));
}

TEST_F(RefreshJourneys, aRefreshTellsHowManyFilesWereNewOrChanged) {
    write(7, "20260311");
    write(8, "20260311");
    EXPECT_THAT(home.outputOf({"sources", "refresh"}), HasSubstr("read anew: 2\n"));
    EXPECT_THAT(meets(), ElementsAre("Meet 7", "Meet 8"));
}

TEST_F(RefreshJourneys, inTheBackgroundItSaysNothingAndLeavesTheLookToWhoIsAtIt) {
    write(7, "20260311");
    ProgramResult result{};
    {
        RefreshLock const other(lockFile);
        result = home.quillora({"sources", "refresh", "--in-background"});
    }
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output + result.errors, "");
    EXPECT_THAT(home.outputOf({"sources", "refresh"}), HasSubstr("read anew: 1\n"))
        << "it looked beside the other";
}

TEST_F(RefreshJourneys, inTheBackgroundItGivesWayOnceItIsItsTurn) {
    auto const witness = home.folder() / "witness";
    home.environment["LD_PRELOAD"] = QUILLORA_BUILD_DIR "/tests/libquillora_preloaded_witness.so";
    home.environment["QUILLORA_TESTS_WITNESS"] = witness.string();
    auto const witnessed = [&](std::vector<std::string> const& words) {
        std::filesystem::remove(witness);
        EXPECT_EQ(home.quillora(words).exitCode, 0);
        return home.contentOf(witness);
    };
    EXPECT_EQ(witnessed({"sources", "refresh", "--in-background"}), "turn\npriority\n");
    // Somebody waits for this one.
    EXPECT_EQ(witnessed({"sources", "refresh"}), "turn\n");
    RefreshLock const other(lockFile);
    EXPECT_EQ(witnessed({"sources", "refresh", "--in-background"}), "turn\n");
}

TEST_F(RefreshJourneys, withoutAccessNothingIsLookedAt) {
    EXPECT_EQ(home.quillora({"access", "deny"}).exitCode, 0);
    auto const result = home.quillora({"sources", "refresh"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.errors, HasSubstr("quillora access grant"));
    EXPECT_EQ(home.quillora({"access", "grant"}).exitCode, 0);
}

} // namespace
