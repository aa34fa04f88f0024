#include "Platform/EventStore/Index/SeenFolder.h"
#include "Tests/EventStore/Folder/ClosedDoors.h"
#include "Tests/EventStore/Folder/SmallCalendars.h"
#include "Tests/EventStore/Index/IndexedRoot.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

using namespace Platform;

namespace {

using Texts = std::vector<std::string>;

constexpr auto elsewhere = "20200311T090000Z";
constexpr std::int64_t minute = 60 * IndexedRoot::second;

std::string oneEvent(std::string const& uid, std::string_view title,
                     std::string_view start = "20260311T090000Z") {
    return smallFile({smallEvent(uid, title, start)});
}

// A calendar of so many files that not each of them is looked at, three of which speak of March 2026.
class SeenFolderTests : public testing::Test {
protected:
    static constexpr int fileCount = 501;

    SeenFolderTests() {
        for (int number = 0; number < fileCount - 3; ++number)
            root.write("work/" + std::to_string(number) + ".ics",
                       oneEvent(std::to_string(number), "Long ago", elsewhere));
        for (auto const* const name : {"a", "b", "c"})
            root.write(std::string("work/") + name + ".ics", oneEvent(name, name));
        now = IndexedRoot::later();
        EXPECT_EQ(root.titles(*root.reader(), now), abc);
    }

    // What a new process that trusts what was seen answers.
    [[nodiscard]] Texts trusting() const { return root.titles(*root.trustingReader(), now); }

    [[nodiscard]] bool answersUnseen() const {
        auto const subject = root.trustingReader();
        EXPECT_FALSE(root.titles(*subject, now).empty());
        return !subject->takeUnverified().empty();
    }

    // An event that was elsewhere comes to March, and its folder does not show it.
    void writeInPlace(std::string const& title) const { root.write("work/7.ics", oneEvent("7", title)); }

    [[nodiscard]] std::filesystem::path seenFile() const {
        return root.onlyIndex().replace_extension(SeenFolderFile::suffix);
    }

    Texts const abc{"a", "b", "c"};
    IndexedRoot root;
    std::int64_t now = 0;
};

struct FolderChange {
    char const* name;
    std::function<void(IndexedRoot const&)> make;
    Texts titles;
};

void PrintTo(FolderChange const& change, std::ostream* stream) {
    *stream << change.name;
}

class FolderChangeTests : public SeenFolderTests, public testing::WithParamInterface<FolderChange> {};

} // namespace

TEST_F(SeenFolderTests, whatWasSeenIsAnsweredFromAndToldToBeUnseen) {
    auto const subject = root.trustingReader();
    EXPECT_EQ(root.titles(*subject, now), abc);
    auto const unseen = subject->takeUnverified();
    ASSERT_EQ(unseen.size(), 1U);
    EXPECT_EQ(unseen.front().folder, root / "work");
    EXPECT_EQ(subject->reads(), 0);
}

TEST_P(FolderChangeTests, isSeenAtOnce) {
    ASSERT_EQ(trusting(), abc);
    GetParam().make(root);
    EXPECT_EQ(trusting(), GetParam().titles);
    EXPECT_EQ(trusting(), GetParam().titles);
}

INSTANTIATE_TEST_SUITE_P(
    Changes, FolderChangeTests,
    testing::Values(FolderChange{"an event asked for, written in place",
                                 [](auto const& root) { root.write("work/b.ics", oneEvent("b", "B")); },
                                 {"a", "B", "c"}},
                    FolderChange{"a new file",
                                 [](auto const& root) { root.write("work/d.ics", oneEvent("d", "d")); },
                                 {"a", "b", "c", "d"}},
                    FolderChange{"a file renamed over one of elsewhere",
                                 [](auto const& root) {
                                     root.write("work/aside", oneEvent("7", "moved here"));
                                     std::filesystem::rename(root / "work/aside", root / "work/7.ics");
                                 },
                                 {"moved here", "a", "b", "c"}},
                    FolderChange{"a file linked in",
                                 [](auto const& root) {
                                     root.write("other/d.ics", oneEvent("d", "d", elsewhere));
                                     root.write("other/d.ics", oneEvent("d", "d"));
                                     std::filesystem::create_hard_link(root / "other/d.ics",
                                                                       root / "work/d.ics");
                                     std::filesystem::remove_all(root / "other");
                                 },
                                 {"a", "b", "c", "d"}},
                    FolderChange{"a file removed",
                                 [](auto const& root) { std::filesystem::remove(root / "work/b.ics"); },
                                 {"a", "c"}},
                    FolderChange{
                        "the folder renamed",
                        [](auto const& root) { std::filesystem::rename(root / "work", root / "office"); },
                        {"a", "b", "c"}},
                    FolderChange{"the folder replaced",
                                 [](auto const& root) {
                                     std::filesystem::rename(root / "work", root / ".gone");
                                     root.write("work/b.ics", oneEvent("b", "another"));
                                 },
                                 {"another"}},
                    FolderChange{"a new calendar beside it",
                                 [](auto const& root) { root.write("home/h.ics", oneEvent("h", "h")); },
                                 {"h", "a", "b", "c"}},
                    FolderChange{"the index gone",
                                 [](auto const& root) { std::filesystem::remove(root.onlyIndex()); },
                                 {"a", "b", "c"}}));

TEST_F(SeenFolderTests, whatIsWrittenInPlaceIsMissedUntilSomebodyLooks) {
    writeInPlace("new");
    EXPECT_EQ(trusting(), abc);
    root.trustingReader()->refresh(now);
    EXPECT_EQ(trusting(), (Texts{"new", "a", "b", "c"}));
}

TEST_F(SeenFolderTests, whatIsWrittenInPlaceIsMissedForAQuarterOfAnHourAtMost) {
    writeInPlace("new");
    now += 14 * minute;
    EXPECT_EQ(trusting(), abc);
    now += 2 * minute;
    EXPECT_EQ(trusting(), (Texts{"new", "a", "b", "c"}));
}

TEST_F(SeenFolderTests, aLookThatFindsLittleIsNoLongerAnsweredWithout) {
    writeInPlace("new");
    // One changed file is not worth another index; so what the next process would know is out of date.
    EXPECT_EQ(root.titles(*root.reader(), now), (Texts{"new", "a", "b", "c"}));
    EXPECT_EQ(trusting(), (Texts{"new", "a", "b", "c"}));
    EXPECT_TRUE(answersUnseen()) << "nobody was told that the index should be written";
    root.reader()->refresh(now);
    auto const subject = root.trustingReader();
    EXPECT_EQ(root.titles(*subject, now), (Texts{"new", "a", "b", "c"}));
    EXPECT_EQ(subject->reads(), 0);
}

TEST_F(SeenFolderTests, aRefreshReadsWhatChangedAndWritesItDown) {
    writeInPlace("new");
    auto const first = root.reader();
    first->refresh(now);
    EXPECT_EQ(first->reads(), 1);
    auto const second = root.reader();
    second->refresh(now);
    EXPECT_EQ(second->reads(), 0);
}

TEST_F(SeenFolderTests, aLookLongAgoIsNotedAnew) {
    now += 20 * minute;
    EXPECT_EQ(trusting(), abc);
    EXPECT_TRUE(answersUnseen());
    writeInPlace("new");
    EXPECT_EQ(trusting(), abc) << "the look of just now was not noted";
}

TEST_F(SeenFolderTests, aClockThatGoesBackCostsALook) {
    writeInPlace("new");
    now -= 2 * minute;
    EXPECT_EQ(trusting(), (Texts{"new", "a", "b", "c"}));
}

TEST_F(SeenFolderTests, aFolderThatHasJustChangedIsNotTrusted) {
    std::filesystem::remove(seenFile());
    auto const stamp = *stampOfFolder(root / "work");
    // Within the grain of the folder's time a further file would not show.
    EXPECT_EQ(root.titles(*root.reader(), stamp.changed + IndexedRoot::second), abc);
    EXPECT_FALSE(std::filesystem::exists(seenFile()));
    EXPECT_EQ(root.titles(*root.reader(), stamp.changed + 3 * IndexedRoot::second), abc);
    EXPECT_TRUE(std::filesystem::exists(seenFile()));
}

TEST_F(SeenFolderTests, ofFewFilesEachIsLookedAt) {
    std::filesystem::remove(root / "work/8.ics");
    root.reader()->refresh(now);
    writeInPlace("new");
    EXPECT_FALSE(answersUnseen());
    EXPECT_EQ(trusting(), (Texts{"new", "a", "b", "c"}));
}

TEST_F(SeenFolderTests, behindALinkEachFileIsLookedAt) {
    root.write("other/target.ics", oneEvent("t", "t", elsewhere));
    std::filesystem::create_symlink(root / "other/target.ics", root / "work/link.ics");
    EXPECT_EQ(root.titles(*root.reader(), now), abc);
    EXPECT_EQ(trusting(), abc);
    root.write("other/target.ics", oneEvent("t", "t"));
    EXPECT_EQ(trusting(), (Texts{"t", "a", "b", "c", "t"}));
}

TEST_F(SeenFolderTests, aLinkThatLeadsNowhereYetIsLookedAt) {
    std::filesystem::create_directories(root / ".elsewhere");
    std::filesystem::create_symlink(root / ".elsewhere/l.ics", root / "work/l.ics");
    EXPECT_EQ(root.titles(*root.reader(), now), abc);
    EXPECT_FALSE(answersUnseen());
    root.write(".elsewhere/l.ics", oneEvent("l", "l"));
    EXPECT_EQ(trusting(), (Texts{"a", "b", "c", "l"}));
}

TEST_F(SeenFolderTests, aLinkOutOfTheRootNeitherNamesNorColoursACalendar) {
    root.write("../name", "Elsewhere");
    root.write("../color", "#FF0000");
    std::filesystem::create_symlink("../../name", root / "work/displayname");
    std::filesystem::create_symlink("../../color", root / "work/color");
    for (int process = 0; process < 3; ++process) {
        auto const subject = root.trustingReader();
        EXPECT_EQ(root.titles(*subject, now), abc);
        auto const calendars = subject->calendars(now);
        ASSERT_EQ(calendars.size(), 1U);
        EXPECT_EQ(calendars.front().title, "work") << process;
        EXPECT_FALSE(calendars.front().cgColor.components.has_value()) << process;
    }
}

TEST_F(SeenFolderTests, aLinkWithinTheRootNamesAndColoursACalendarAsItsTargetDoes) {
    std::filesystem::create_symlink("../looks/title", root / "work/displayname");
    std::filesystem::create_symlink("../looks/shade", root / "work/color");
    struct Look {
        char const* name;
        char const* color;
        std::vector<double> components;
    };
    for (auto const& look :
         std::vector<Look>{{"Office", "#FF0000", {1, 0, 0, 1}}, {"Home", "#00FF00", {0, 1, 0, 1}}}) {
        root.write("looks/title", look.name);
        root.write("looks/shade", look.color);
        for (int process = 0; process < 3; ++process) {
            auto const calendars = root.trustingReader()->calendars(now);
            ASSERT_EQ(calendars.size(), 1U);
            EXPECT_EQ(calendars.front().title, look.name) << process;
            EXPECT_EQ(calendars.front().cgColor.components, look.components) << process;
        }
        EXPECT_EQ(trusting(), abc);
    }
}

TEST_F(SeenFolderTests, aFileThatCannotBeReadIsToldOfEachTime) {
    std::filesystem::permissions(root / "work/b.ics", std::filesystem::perms::none);
    OrdinaryUser const user(root / "..");
    if (!user.isBoundByModes()) GTEST_SKIP() << "modes do not bind this user";
    for (int process = 0; process < 3; ++process) {
        auto const subject = root.trustingReader();
        EXPECT_EQ(root.titles(*subject, now), (Texts{"a", "c"}));
        EXPECT_EQ(subject->takeProblems().size(), 1U) << process;
    }
}

TEST_F(SeenFolderTests, whereNothingCanBeNotedEachFileIsLookedAtAndARefreshSaysSo) {
    OrdinaryUser const user(root / "..");
    if (!user.isBoundByModes()) GTEST_SKIP() << "modes do not bind this user";
    std::filesystem::permissions(root.indexes(),
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    writeInPlace("new");
    EXPECT_EQ(trusting(), (Texts{"new", "a", "b", "c"}));
    EXPECT_FALSE(root.reader()->refresh(now));
    EXPECT_EQ(trusting(), (Texts{"new", "a", "b", "c"}));
    std::filesystem::permissions(root.indexes(), std::filesystem::perms::owner_all);
    EXPECT_TRUE(root.reader()->refresh(now));
}

TEST_F(SeenFolderTests, aRefreshThatDoesNotFindTheRootSaysSo) {
    std::filesystem::rename((root / "").parent_path(), root / "../away");
    EXPECT_FALSE(root.reader()->refresh(now));
}

TEST_F(SeenFolderTests, aFileOfTheFutureDoesNotHaveTheIndexWrittenAtEachLook) {
    auto const ahead = std::chrono::file_clock::now() + std::chrono::days(300);
    std::filesystem::last_write_time(root / "work/8.ics", ahead);
    root.reader()->refresh(now);
    auto const before = *stampOfRegularFile(root.onlyIndex());
    EXPECT_FALSE(answersUnseen()) << "a look was asked for that can change nothing";
    root.reader()->refresh(now);
    EXPECT_EQ(*stampOfRegularFile(root.onlyIndex()), before);
    EXPECT_EQ(trusting(), abc);
}

TEST(SeenRootTests, whichLooseFilesAreCalendarsIsLookedAt) {
    IndexedRoot const root;
    for (int number = 0; number < 501; ++number)
        root.write(std::to_string(number) + ".ics", oneEvent(std::to_string(number), "Long ago", elsewhere));
    root.write("seven.ics", oneEvent("7", "Seven"));
    auto const now = IndexedRoot::later();
    EXPECT_EQ(root.titles(*root.reader(), now), (Texts{"Seven"}));
    root.write("seven.ics", smallFile({smallEvent("7", "Seven")}, "X-WR-CALNAME:Own\r\n"));
    EXPECT_EQ(root.titles(*root.trustingReader(), now), (Texts{"Seven"}));
}

TEST_F(SeenFolderTests, anyOtherByteInWhatWasNotedCostsALook) {
    std::ifstream stream(seenFile(), std::ios::binary);
    std::string const whole{std::istreambuf_iterator<char>(stream), {}};
    ASSERT_FALSE(whole.empty());
    auto const file = seenFile();
    writeInPlace("new");
    for (std::size_t place = 0; place <= whole.size(); ++place) {
        auto damaged = whole;
        if (place < whole.size()) {
            damaged[place] = static_cast<char>(damaged[place] ^ 0x10);
        } else {
            damaged.pop_back();
        }
        std::ofstream(file, std::ios::binary | std::ios::trunc) << damaged;
        auto const subject = root.trustingReader();
        ASSERT_EQ(root.titles(*subject, now), (Texts{"new", "a", "b", "c"})) << "byte " << place;
    }
    std::ofstream(file, std::ios::binary | std::ios::trunc) << whole;
    EXPECT_EQ(trusting(), abc) << "not even the whole note was trusted, so this test shows nothing";
}

TEST_F(SeenFolderTests, whatWasNotedOfAnotherFolderIsNotTrusted) {
    SeenFolderFile const mine(root.onlyIndex(), 1);
    mine.save({.stamp = 1, .stampSum = 2, .fileCount = 3, .lookedAt = 4});
    EXPECT_TRUE(mine.load().has_value());
    EXPECT_FALSE(SeenFolderFile(root.onlyIndex(), 2).load().has_value());
    mine.remove();
    EXPECT_FALSE(mine.load().has_value());
}
