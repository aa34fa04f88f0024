#include "Platform/EventStore/Folder/RefusedFolder.h"
#include "Tests/EventStore/TemporaryFolder.h"
#include "Tests/Platform/OrdinaryUser.h"

#include <gtest/gtest.h>

namespace Platform {
namespace {

class RefusedFolderTests : public testing::Test {
protected:
    std::filesystem::path folder(std::string_view name) const {
        std::filesystem::create_directories(home / name);
        return home / name;
    }
    // The folder is the ordinary user's own, unless that is said otherwise.
    static void close(std::filesystem::path const& folder, bool isOwn = true) {
        if (isOwn && ::geteuid() == 0) {
            ASSERT_EQ(::chown(folder.c_str(), 65534, 65534), 0);
        }
        std::filesystem::permissions(folder, std::filesystem::perms::none);
    }
    [[nodiscard]] std::vector<RefusedFolder> refused(std::vector<std::filesystem::path> const& paths) const {
        std::vector<CalendarRoot> roots;
        for (auto const& path : paths)
            roots.push_back({.kind = folderRootKind, .id = "", .path = path, .title = ""});
        OrdinaryUser const user(home.path());
        return refusedFolders(places, roots);
    }

    TemporaryFolder home;
    CalendarStorePlaces places{.configurationDirectory = home / "config",
                               .nativeCalendar = home / "data/native"};
};

TEST_F(RefusedFolderTests, openFoldersAndMissingOnesRefuseNothing) {
    EXPECT_EQ(refused({folder("open"), home / "missing", "relative"}), std::vector<RefusedFolder>{});
    EXPECT_FALSE(hasNativeCalendar(places));
}

TEST_F(RefusedFolderTests, theClosedFolderItselfIsNamed) {
    auto const closed = folder("closed");
    close(closed);
    EXPECT_EQ(refused({folder("open"), closed}),
              (std::vector<RefusedFolder>{{.folder = closed, .closed = closed, .isClosedByOther = false}}));
}

TEST_F(RefusedFolderTests, theFirstClosedFolderAboveIsNamed) {
    auto const inner = folder("a/b/c/d");
    close(home / "a/b/c");
    close(home / "a/b");
    EXPECT_EQ(refused({inner}), (std::vector<RefusedFolder>{
                                    {.folder = inner, .closed = home / "a/b", .isClosedByOther = false}}));
    std::filesystem::permissions(home / "a/b", std::filesystem::perms::owner_all);
    std::filesystem::permissions(home / "a/b/c", std::filesystem::perms::owner_all);
}

TEST_F(RefusedFolderTests, anotherUsersFolderIsTold) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can make another user's folder";
    auto const closed = folder("closed");
    close(closed, false);
    EXPECT_EQ(refused({closed}),
              (std::vector<RefusedFolder>{{.folder = closed, .closed = closed, .isClosedByOther = true}}));
}

TEST_F(RefusedFolderTests, theOwnCalendarComesFirstAndCountsAlsoWhereOneMayNotLook) {
    folder("data/native");
    auto const closed = folder("closed");
    close(closed);
    close(home / "data");
    auto const found = refused({closed});
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].folder, places.nativeCalendar);
    EXPECT_EQ(found[0].closed, home / "data");
    EXPECT_EQ(found[1].folder, closed);
}

} // namespace
} // namespace Platform
