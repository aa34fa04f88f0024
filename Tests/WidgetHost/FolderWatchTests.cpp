#include "LoopDriver.h"

#include "Platform/WidgetHost/FolderWatch.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>

namespace {

class FolderWatchTests : public testing::Test {
protected:
    FolderWatchTests() {
        std::string pattern = testing::TempDir() + "folder-watch-XXXXXX";
        root = mkdtemp(pattern.data());
        folder = root / "watched";
        std::filesystem::create_directory(folder);
    }
    ~FolderWatchTests() override { std::filesystem::remove_all(root); }

    void watchFor(std::vector<std::string> names) {
        watch =
            std::make_unique<Platform::FolderWatch>(events, folder, std::move(names), [this] { ++changes; });
    }

    static void write(std::filesystem::path const& path, std::string_view text) {
        std::ofstream(path) << text;
    }

    /// As a preference file is saved: aside, then renamed over the old one.
    void replace(std::string const& name, std::string_view text) {
        write(folder / ".aside", text);
        std::filesystem::rename(folder / ".aside", folder / name);
    }

    std::filesystem::path root;
    std::filesystem::path folder;
    Platform::FolderEvents events;
    std::unique_ptr<Platform::FolderWatch> watch;
    int changes = 0;
};

TEST_F(FolderWatchTests, fileThatIsReplacedIsToldOnceEachTime) {
    watchFor({"offset.json"});
    replace("offset.json", "1");
    EXPECT_TRUE(LoopDriver::runUntil([&] { return changes == 1; }));
    replace("offset.json", "2");
    EXPECT_TRUE(LoopDriver::runUntil([&] { return changes == 2; }));
    LoopDriver::runPending();
    EXPECT_EQ(changes, 2);
}

TEST_F(FolderWatchTests, changesThatArriveTogetherAreToldOnce) {
    watchFor({"offset.json"});
    for (int value = 0; value < 20; ++value) {
        replace("offset.json", std::to_string(value));
    }
    LoopDriver::runPending();
    EXPECT_EQ(changes, 1);
}

TEST_F(FolderWatchTests, everyWayOfChangingAFileIsTold) {
    watchFor({"offset.json"});
    write(folder / "offset.json", "1");
    LoopDriver::runPending();
    EXPECT_EQ(changes, 1) << "written in place";

    std::filesystem::remove(folder / "offset.json");
    LoopDriver::runPending();
    EXPECT_EQ(changes, 2) << "removed";

    write(root / "elsewhere.json", "2");
    std::filesystem::create_hard_link(root / "elsewhere.json", folder / "offset.json");
    LoopDriver::runPending();
    EXPECT_EQ(changes, 3) << "linked in";

    std::filesystem::rename(folder / "offset.json", root / "gone.json");
    LoopDriver::runPending();
    EXPECT_EQ(changes, 4) << "moved away";
}

TEST_F(FolderWatchTests, otherFilesAreNotTold) {
    watchFor({"offset.json"});
    write(folder / "other.json", "1");
    write(folder / ".offset.json.tmp", "1");
    LoopDriver::runPending();
    EXPECT_EQ(changes, 0);
}

TEST_F(FolderWatchTests, withoutNamesAllButHiddenFilesAreTold) {
    watchFor({});
    write(folder / ".hidden", "1");
    LoopDriver::runPending();
    EXPECT_EQ(changes, 0);
    write(folder / "sources.json", "1");
    LoopDriver::runPending();
    EXPECT_EQ(changes, 1);
}

TEST_F(FolderWatchTests, missingFolderIsWatchedOnceItIsThereAndRenewed) {
    std::filesystem::remove(folder);
    watchFor({"offset.json"});
    EXPECT_FALSE(watch->isWatching());
    std::filesystem::create_directory(folder);
    watch->renew();
    EXPECT_TRUE(watch->isWatching());
    replace("offset.json", "1");
    EXPECT_TRUE(LoopDriver::runUntil([&] { return changes == 1; }));
}

TEST_F(FolderWatchTests, folderThatGoesIsToldAndLetGoOf) {
    watchFor({"offset.json"});
    std::filesystem::remove(folder);
    EXPECT_TRUE(LoopDriver::runUntil([&] { return changes == 1; }));
    EXPECT_FALSE(watch->isWatching());
}

TEST_F(FolderWatchTests, folderThatIsReplacedIsFollowedByItsPath) {
    watchFor({"offset.json"});
    std::filesystem::rename(folder, root / "old");
    std::filesystem::create_directory(folder);
    EXPECT_TRUE(LoopDriver::runUntil([&] { return changes == 1; }));
    EXPECT_TRUE(watch->isWatching());
    replace("offset.json", "1");
    EXPECT_TRUE(LoopDriver::runUntil([&] { return changes == 2; }));
    write(root / "old" / "offset.json", "3");
    LoopDriver::runPending();
    EXPECT_EQ(changes, 2);
}

TEST_F(FolderWatchTests, folderItselfIsToldWhenItMovesAndNotWhatHappensInIt) {
    watch = std::make_unique<Platform::FolderWatch>(events, folder, [this] { ++changes; });
    write(folder / "offset.json", "1");
    std::filesystem::remove(folder / "offset.json");
    LoopDriver::runPending();
    EXPECT_EQ(changes, 0);
    std::filesystem::rename(folder, root / "old");
    EXPECT_TRUE(LoopDriver::runUntil([&] { return changes == 1; }));
    EXPECT_FALSE(watch->isWatching());
}

TEST_F(FolderWatchTests, watchOfTheFolderItselfTakesNothingFromOneOfItsFiles) {
    watchFor({"offset.json"});
    int moves = 0;
    Platform::FolderWatch const itself(events, folder, [&] { ++moves; });
    write(folder / "offset.json", "1");
    EXPECT_TRUE(LoopDriver::runUntil([&] { return changes == 1; }));
    EXPECT_EQ(moves, 0);
}

TEST_F(FolderWatchTests, fileInPlaceOfTheFolderIsNotWatched) {
    std::filesystem::remove(folder);
    write(folder, "a plain file");
    watchFor({});
    EXPECT_FALSE(watch->isWatching());
}

TEST_F(FolderWatchTests, watchesOfOneFolderAreToldEachOfItsOwnFiles) {
    int others = 0;
    watchFor({"offset.json"});
    auto other = std::make_unique<Platform::FolderWatch>(
        events, folder, std::vector<std::string>{"other.json"}, [&] { ++others; });
    write(folder / "other.json", "1");
    LoopDriver::runPending();
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(others, 1);
    other.reset();
    write(folder / "offset.json", "1");
    LoopDriver::runPending();
    EXPECT_EQ(changes, 1) << "the kernel's watch stays while one needs it";
}

TEST_F(FolderWatchTests, watchThatEndsInAnothersHandlerIsNotToldAnyMore) {
    int calls = 0;
    std::unique_ptr<Platform::FolderWatch> first;
    std::unique_ptr<Platform::FolderWatch> second;
    auto const endBoth = [&] {
        ++calls;
        first.reset();
        second.reset();
    };
    first = std::make_unique<Platform::FolderWatch>(events, folder, std::vector<std::string>{}, endBoth);
    second = std::make_unique<Platform::FolderWatch>(events, folder, std::vector<std::string>{}, endBoth);
    write(folder / "file", "1");
    LoopDriver::runPending();
    EXPECT_EQ(calls, 1);
}

TEST_F(FolderWatchTests, handlerMayEndTheWatch) {
    watch = std::make_unique<Platform::FolderWatch>(events, folder, std::vector<std::string>{}, [this] {
        ++changes;
        watch.reset();
    });
    write(folder / "first", "1");
    LoopDriver::runPending();
    write(folder / "second", "1");
    LoopDriver::runPending();
    EXPECT_EQ(changes, 1);
}

} // namespace
