#include "LoopDriver.h"

#include "Tests/EventStore/TemporaryFolder.h"

#include "Applications/Watching/CalendarWatches.h"
#include "Platform/Files/InMemoryFileManager.h"
#include "Platform/WidgetHost/GLibMainLoop.h"
#include "Platform/WidgetHost/TaskThread.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

namespace {

namespace fs = std::filesystem;
using Kind = Watching::WatchedPlace::Kind;

/// A person with one source of calendars, watched on the real kernel and the real loop.
class CalendarWatchesTests : public testing::Test {
protected:
    CalendarWatchesTests() {
        files->place("/config/calendar-store.json",
                     R"({"version":1,"sources":[{"kind":"folder","id":"k3fa","path":")" + source.native() +
                         R"(","title":"Source"}]})");
    }

    void watch() {
        watches.emplace(events, places(), configuration, thread.executor(), mainLoop, [this] { ++changes; });
        watches->update();
        settle();
    }

    /// Until all listings that were asked for are watched.
    void finishListings() {
        // Each may ask for one more.
        for (int round = 0; round < 4; ++round) {
            bool isDone = false;
            auto const tellBack = [](Platform::MainLoop* loop, bool* done) -> Foundation::Task<void> {
                loop->invoke([done] { *done = true; });
                co_return;
            };
            thread.executor().start(tellBack(&mainLoop, &isDone));
            ASSERT_TRUE(LoopDriver::runUntil([&] { return isDone; }));
        }
    }

    /// Until nothing more has been told for longer than several changes are awaited.
    void settle() {
        finishListings();
        int told = -1;
        while (told != changes) {
            told = changes;
            bool isOver = false;
            auto const later = Platform::GLibSource::afterDelay(
                3 * Watching::CalendarWatches::settlingMilliseconds, [&] { isOver = true; });
            LoopDriver::runUntil([&] { return isOver; });
            finishListings();
        }
    }

    [[nodiscard]] bool isTold() {
        bool const told = LoopDriver::runUntil([this] { return changes > seen; });
        settle();
        seen = changes;
        return told;
    }

    [[nodiscard]] Platform::CalendarStorePlaces places() const {
        return {.configurationDirectory = "/config", .nativeCalendar = home / "own/native"};
    }

    static void writeEvent(fs::path const& folder) { std::ofstream(folder / "event.ics") << "x"; }

    TemporaryFolder const home;
    fs::path const source = home / "some/where/source";
    std::shared_ptr<Platform::InMemoryFileManager> files = std::make_shared<Platform::InMemoryFileManager>();
    std::shared_ptr<Platform::CalendarStoreConfiguration const> configuration =
        std::make_shared<Platform::CalendarStoreConfiguration>("/config", files);
    Platform::GLibMainLoop mainLoop;
    Platform::FolderEvents events;
    Platform::TaskThread thread;
    std::optional<Watching::CalendarWatches> watches;
    int changes = 0;
    int seen = 0;
};

TEST_F(CalendarWatchesTests, aSourceThatIsMadeLaterIsNoticedAndThenFollowed) {
    watch();
    fs::create_directory(home / "some");
    EXPECT_TRUE(isTold()) << "a folder on the way";
    fs::create_directories(source);
    EXPECT_TRUE(isTold()) << "the source";
    writeEvent(source);
    EXPECT_TRUE(isTold()) << "a file in it";
    fs::create_directory(source / "calendar");
    EXPECT_TRUE(isTold()) << "a calendar in it";
    writeEvent(source / "calendar");
    EXPECT_TRUE(isTold()) << "a file in that";
}

TEST_F(CalendarWatchesTests, aSourceThatIsMovedAwayIsNoticedAndFollowedWhenItComesBack) {
    fs::create_directories(source / "calendar");
    watch();
    fs::rename(source, home / "away");
    EXPECT_TRUE(isTold()) << "gone";
    writeEvent(home / "away/calendar");
    settle();
    EXPECT_EQ(changes, seen) << "what happens elsewhere does not matter";
    fs::rename(home / "away", source);
    EXPECT_TRUE(isTold()) << "back";
    writeEvent(source / "calendar");
    EXPECT_TRUE(isTold()) << "a file in it";
}

TEST_F(CalendarWatchesTests, aFolderAboveTheSourceThatIsMovedAwayIsNoticedToo) {
    fs::create_directories(source);
    watch();
    fs::rename(home / "some", home / "other");
    EXPECT_TRUE(isTold()) << "gone";
    fs::rename(home / "other", home / "some");
    EXPECT_TRUE(isTold()) << "back";
    writeEvent(source);
    EXPECT_TRUE(isTold()) << "a file in it";
}

TEST_F(CalendarWatchesTests, aFolderAboveTheSourceThatIsRemovedIsFollowedWhenItComesBack) {
    fs::create_directories(source / "calendar");
    watch();
    for (int time = 0; time < 2; ++time) {
        fs::remove_all(home / "some");
        EXPECT_TRUE(isTold()) << "gone";
        fs::create_directories(source / "calendar");
        EXPECT_TRUE(isTold()) << "back";
        writeEvent(source / "calendar");
        EXPECT_TRUE(isTold()) << "a file in it";
    }
}

TEST_F(CalendarWatchesTests, theTargetOfALinkIsFollowedAndSoIsTheLink) {
    fs::create_directories(home / "real/one");
    fs::create_directories(home / "real/two");
    fs::create_directories(source.parent_path());
    fs::create_directory_symlink("../../real/one", source);
    watch();
    fs::rename(home / "real/one", home / "away");
    EXPECT_TRUE(isTold()) << "the target gone";
    fs::rename(home / "away", home / "real/one");
    EXPECT_TRUE(isTold()) << "the target back";
    writeEvent(home / "real/one");
    EXPECT_TRUE(isTold()) << "a file in it";
    fs::create_directory_symlink(home / "real/two", home / "link");
    fs::rename(home / "link", source);
    EXPECT_TRUE(isTold()) << "another target";
    writeEvent(home / "real/two");
    EXPECT_TRUE(isTold()) << "a file in that";
}

TEST_F(CalendarWatchesTests, theOwnCalendarThatIsMadeLaterIsNoticed) {
    watch();
    fs::create_directories(home / "own/native");
    EXPECT_TRUE(isTold());
    writeEvent(home / "own/native");
    EXPECT_TRUE(isTold());
}

TEST_F(CalendarWatchesTests, whatHappensBesideTheWayWakesNobody) {
    fs::create_directories(source);
    watch();
    writeEvent(home.path());
    fs::create_directory(home / "some/beside");
    writeEvent(source.parent_path());
    settle();
    EXPECT_EQ(changes, 0);
}

TEST_F(CalendarWatchesTests, aRingOfLinksEndsTheWay) {
    fs::create_directories(source.parent_path());
    fs::create_directory_symlink(source, home / "ring");
    fs::create_directory_symlink(home / "ring", source);
    watch();
    fs::remove(source);
    fs::create_directory(source);
    EXPECT_TRUE(isTold());
    writeEvent(source);
    EXPECT_TRUE(isTold());
}

TEST_F(CalendarWatchesTests, theWayToAMissingSourceEndsAtWhatIsMissing) {
    fs::create_directory(home / "some");
    auto found = Watching::watchedPlaces(places(), *configuration);
    std::erase_if(found, [](auto const& place) { return place.kind == Kind::itself; });
    EXPECT_EQ(found,
              (std::vector<Watching::WatchedPlace>{
                  {.kind = Kind::entry, .folder = fs::canonical(home.path()), .name = "own"},
                  {.kind = Kind::entry, .folder = fs::canonical(home.path()) / "some", .name = "where"}}));
}

} // namespace
