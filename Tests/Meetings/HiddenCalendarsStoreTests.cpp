#include "Meetings/HiddenCalendarsStore.h"

#include "Platform/Files/InMemoryFileManager.h"
#include "Platform/NotificationCenter/RecordingNotificationCenter.h"

#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Meetings {
namespace {

using Identifiers = std::set<std::string>;

constexpr char const* file = "/container/hiddenCalendarIdentifiers.json";

class HiddenCalendarsStoreTests : public testing::Test {
protected:
    Platform::InMemoryFileManager files;
    Platform::RecordingNotificationCenter notifications;

    Identifiers loadFrom(std::string content) {
        files.place(file, std::move(content));
        return HiddenCalendarsStore::load(files);
    }
};

TEST_F(HiddenCalendarsStoreTests, withoutAFileNothingIsHidden) {
    EXPECT_EQ(HiddenCalendarsStore::load(files), Identifiers{});
}

TEST_F(HiddenCalendarsStoreTests, aFileThatMayNotBeReadHidesNothing) {
    files.place(file, R"(["a"])");
    files.refusesReads();
    EXPECT_EQ(HiddenCalendarsStore::load(files), Identifiers{});
}

TEST_F(HiddenCalendarsStoreTests, whatIsNoArrayOfTextsHidesNothing) {
    EXPECT_EQ(loadFrom(""), Identifiers{});
    EXPECT_EQ(loadFrom("a, b"), Identifiers{});
    EXPECT_EQ(loadFrom(R"({"a":1})"), Identifiers{});
    EXPECT_EQ(loadFrom(R"("a")"), Identifiers{});
    EXPECT_EQ(loadFrom(R"(["a",3])"), Identifiers{});
    EXPECT_EQ(loadFrom(R"(["a",null])"), Identifiers{});
    EXPECT_EQ(loadFrom(R"(["a")"), Identifiers{});
}

TEST_F(HiddenCalendarsStoreTests, anIdentifierThatStandsTwiceIsLoadedOnce) {
    EXPECT_EQ(loadFrom(R"(["a","b","a"])"), (Identifiers{"a", "b"}));
}

TEST_F(HiddenCalendarsStoreTests, anEmptyIdentifierIsKept) {
    EXPECT_EQ(loadFrom(R"([""])"), Identifiers{""});
}

TEST_F(HiddenCalendarsStoreTests, whatWasSavedIsLoaded) {
    HiddenCalendarsStore::save(files, notifications, {"a1/work", "a1/home"});
    EXPECT_EQ(HiddenCalendarsStore::load(files), (Identifiers{"a1/home", "a1/work"}));
    EXPECT_EQ(files.content(file), R"(["a1\/home","a1\/work"])");
}

TEST_F(HiddenCalendarsStoreTests, savingTheEmptySetWritesAnEmptyArrayAndAnnouncesIt) {
    HiddenCalendarsStore::save(files, notifications, {});
    EXPECT_EQ(files.content(file), "[]");
    EXPECT_EQ(notifications.posted(), std::vector<std::string>{"hiddenCalendarsDidChange"});
}

TEST_F(HiddenCalendarsStoreTests, theAnnouncementFollowsAFailedWriteToo) {
    files.place(file, R"(["old"])");
    files.failsAfter(0);
    HiddenCalendarsStore::save(files, notifications, {"new"});
    EXPECT_EQ(files.content(file), R"(["old"])");
    EXPECT_EQ(notifications.posted(), std::vector<std::string>{"hiddenCalendarsDidChange"});
}

TEST_F(HiddenCalendarsStoreTests, theNewSetCanBeReadWhenTheChangeIsAnnounced) {
    Identifiers seen;
    auto const observation =
        notifications.observe("hiddenCalendarsDidChange", [&] { seen = HiddenCalendarsStore::load(files); });
    HiddenCalendarsStore::save(files, notifications, {"a"});
    EXPECT_EQ(seen, Identifiers{"a"});
}

TEST_F(HiddenCalendarsStoreTests, anIdentifierThatIsNotUTF8StopsTheSave) {
    files.place(file, R"(["old"])");
    HiddenCalendarsStore::save(files, notifications, {"good", "bad\xFF"});
    EXPECT_EQ(files.content(file), R"(["old"])");
    EXPECT_TRUE(notifications.posted().empty());
}

TEST_F(HiddenCalendarsStoreTests, withoutAContainerTheTemporaryFolderServes) {
    files.withoutContainer();
    HiddenCalendarsStore::save(files, notifications, {"a"});
    EXPECT_EQ(files.content("/tmp/hiddenCalendarIdentifiers.json"), R"(["a"])");
    EXPECT_EQ(HiddenCalendarsStore::load(files), Identifiers{"a"});
}

TEST_F(HiddenCalendarsStoreTests, aContainerThatHasGoneMakesTheWriteFailSilently) {
    files.withVanishedContainer();
    HiddenCalendarsStore::save(files, notifications, {"a"});
    EXPECT_TRUE(files.files().empty());
    EXPECT_EQ(HiddenCalendarsStore::load(files), Identifiers{});
}

TEST_F(HiddenCalendarsStoreTests, clearingRemovesTheFileAndAnnouncesNothing) {
    files.place(file, R"(["a"])");
    HiddenCalendarsStore::clear(files);
    EXPECT_EQ(files.content(file), std::nullopt);
    EXPECT_EQ(HiddenCalendarsStore::load(files), Identifiers{});
    HiddenCalendarsStore::clear(files);
    EXPECT_TRUE(notifications.posted().empty());
}

} // namespace
} // namespace Meetings
