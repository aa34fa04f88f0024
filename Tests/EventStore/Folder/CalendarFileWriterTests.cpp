#include "Platform/EventStore/Folder/CalendarFileWriter.h"

#include "Platform/EventStore/Folder/AsideFile.h"
#include "Platform/Files/FileDescriptor.h"
#include "Tests/EventStore/Folder/ClosedDoors.h"
#include "Tests/EventStore/TemporaryFolder.h"
#include "Tests/Platform/KilledProcess.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

using namespace Platform;
using Method = CalendarFileWriter::Method;
using Outcome = CalendarFileWriter::Outcome;

namespace {

constexpr auto done = Outcome::done;
constexpr auto changedMeanwhile = Outcome::changedMeanwhile;
constexpr std::int64_t farFuture = 4'000'000'000'000'000'000;

using Contents = std::map<std::string, std::string>;

Contents contentsOf(TemporaryFolder const& folder) {
    Contents found;
    for (auto const& entry : std::filesystem::directory_iterator(folder.path())) {
        std::ifstream stream(entry.path(), std::ios::binary);
        found[entry.path().filename().string()] = {std::istreambuf_iterator<char>(stream), {}};
    }
    return found;
}

unsigned int modeOf(std::filesystem::path const& file) {
    struct stat status{};
    EXPECT_EQ(::stat(file.c_str(), &status), 0);
    return status.st_mode & 0777U;
}

class CalendarFileWriterTests : public testing::TestWithParam<Method> {
protected:
    TemporaryFolder folder;
    CalendarFileWriter writer{GetParam()};
};

// A group besides the usual one that this process may give a file to.
std::optional<gid_t> anotherGroup() {
    if (::geteuid() == 0) return 4242;
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(::getgroups(0, nullptr), 0)));
    auto const count = ::getgroups(static_cast<int>(groups.size()), groups.data());
    for (int index = 0; index < count; ++index)
        if (groups[static_cast<std::size_t>(index)] != ::getegid())
            return groups[static_cast<std::size_t>(index)];
    return std::nullopt;
}

std::string leftover(TemporaryFolder const& folder, AsideName const& name, std::string_view content) {
    auto const text = name.text();
    folder.write(text, content);
    return text;
}

// Another program's save at any moment of `save`, after which the others take the saving process for dead.
void expectNothingLostToAHastyClearance(
    CalendarFileWriter const& writer,
    std::function<CalendarFileWriter::Result(std::filesystem::path const&)> const& save) {
    TemporaryFolder const folder;
    auto const file = folder / "a.ics";
    bool wasInterrupted = true;
    for (int stop = 1; wasInterrupted; ++stop) {
        folder.write("a.ics", "another's");
        auto const outcome = KilledProcess::interruptedAtSystemCall(
            stop, [&] { return save(file) == changedMeanwhile; },
            [&] { writer.clearLeftovers(folder.path(), farFuture); }, wasInterrupted);
        if (outcome == KilledProcess::Outcome::notPermitted) GTEST_SKIP() << "no process may be traced here";
        ASSERT_EQ(outcome, KilledProcess::Outcome::finished) << stop;
        ASSERT_EQ(contentsOf(folder), (Contents{{"a.ics", "another's"}})) << stop;
    }
}

} // namespace

TEST_P(CalendarFileWriterTests, whoSleptForSoLongThatOthersClearedUpTriesAgain) {
    expectNothingLostToAHastyClearance(
        writer, [&](std::filesystem::path const& file) { return writer.replace(file, "old", "new"); });
    expectNothingLostToAHastyClearance(
        writer, [&](std::filesystem::path const& file) { return writer.remove(file, "old"); });
    expectNothingLostToAHastyClearance(
        writer, [&](std::filesystem::path const& file) { return writer.create(file, "new"); });
}

TEST_P(CalendarFileWriterTests, whatWasExpectedIsReplacedAndNothingElseStays) {
    auto const file = folder.write("a.ics", "old");
    EXPECT_EQ(writer.replace(file, "old", "new content"), done);
    EXPECT_EQ(contentsOf(folder), (Contents{{"a.ics", "new content"}}));
}

TEST_P(CalendarFileWriterTests, aReplacedFileKeepsItsPermissions) {
    auto const file = folder.write("a.ics", "old");
    ASSERT_EQ(::chmod(file.c_str(), 0640), 0);
    EXPECT_EQ(writer.replace(file, "old", "new"), done);
    EXPECT_EQ(modeOf(file), 0640U);
}

TEST_P(CalendarFileWriterTests, aReplacedFileKeepsItsGroupAndOwner) {
    auto const file = folder.write("a.ics", "old");
    constexpr uid_t anotherUser = 4242;
    auto const group = anotherGroup();
    if (!group) GTEST_SKIP() << "this user has no other group to give a file to";
    bool const mayGive = ::geteuid() == 0;
    ASSERT_EQ(::chown(file.c_str(), mayGive ? anotherUser : ::geteuid(), *group), 0);
    ASSERT_EQ(::chmod(file.c_str(), 0664), 0);
    EXPECT_EQ(writer.replace(file, "old", "new"), done);
    struct stat status{};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_gid, *group);
    EXPECT_EQ(status.st_uid, mayGive ? anotherUser : ::geteuid());
    EXPECT_EQ(modeOf(file), 0664U);
}

TEST_P(CalendarFileWriterTests, withAGroupThatCannotBeKeptItsRightsGo) {
    if (::geteuid() != 0) GTEST_SKIP() << "only the superuser can make such a file";
    constexpr uid_t nobody = 65534;
    constexpr gid_t unknownGroup = 4242;
    struct Row {
        mode_t before;
        mode_t after;
    };
    ASSERT_EQ(::chown(folder.path().c_str(), nobody, nobody), 0);
    TemporaryFolder const elsewhere;
    for (auto const& row : {Row{0664, 0604}, Row{0606, 0600}, Row{0647, 0604}}) {
        auto const file = folder.write("a.ics", "old");
        ASSERT_EQ(::chown(file.c_str(), nobody, unknownGroup), 0);
        ASSERT_EQ(::chmod(file.c_str(), row.before), 0);
        {
            OrdinaryUser const user(elsewhere.path());
            if (!user.isBoundByModes()) GTEST_SKIP() << "no user is bound by permissions here";
            EXPECT_EQ(writer.replace(file, "old", "new"), done);
        }
        EXPECT_EQ(modeOf(file), row.after) << row.before;
        EXPECT_EQ(contentsOf(folder), (Contents{{"a.ics", "new"}}));
    }
}

TEST_P(CalendarFileWriterTests, whatProgramsNotedAtAFileStays) {
    auto const file = folder.write("a.ics", "old");
    constexpr std::string_view note = "kept";
    if (::setxattr(file.c_str(), "user.example", note.data(), note.size(), 0) != 0)
        GTEST_SKIP() << "no notes on this file system";
    EXPECT_EQ(writer.replace(file, "old", "new"), done);
    std::string found(note.size(), '\0');
    EXPECT_EQ(::getxattr(file.c_str(), "user.example", found.data(), found.size()),
              static_cast<ssize_t>(note.size()));
    EXPECT_EQ(found, note);
}

TEST_P(CalendarFileWriterTests, whatAnAccessListSaysStays) {
    auto const file = folder.write("a.ics", "old");
    // Version 2; the owner rw, user 4242 r, the group nothing, at most r, others nothing.
    constexpr auto none = "\xff\xff\xff\xff";
    auto const entry = [](char tag, char rights, std::string const& who) {
        return std::string{tag, '\0', rights, '\0'} + who;
    };
    auto const list = std::string("\x02\x00\x00\x00", 4) + entry(0x01, 6, none) +
                      entry(0x02, 4, std::string("\x92\x10\x00\x00", 4)) + entry(0x04, 0, none) +
                      entry(0x10, 4, none) + entry(0x20, 0, none);
    if (::setxattr(file.c_str(), "system.posix_acl_access", list.data(), list.size(), 0) != 0)
        GTEST_SKIP() << "no access lists on this file system";
    EXPECT_EQ(writer.replace(file, "old", "new"), done);
    std::string found(list.size(), '\0');
    EXPECT_EQ(::getxattr(file.c_str(), "system.posix_acl_access", found.data(), found.size()),
              static_cast<ssize_t>(list.size()));
    EXPECT_EQ(found, list);
    EXPECT_EQ(modeOf(file), 0640U);
}

TEST_P(CalendarFileWriterTests, aReadOnlyFileStaysAsItIs) {
    auto const file = folder.write("a.ics", "old");
    ASSERT_EQ(::chmod(file.c_str(), 0444), 0);
    for (auto const& result : {writer.replace(file, "old", "new"), writer.remove(file, "old")}) {
        ASSERT_FALSE(result.has_value());
        EXPECT_TRUE(result.error().isReadOnlyFile);
        EXPECT_EQ(result.error().reason, std::errc::permission_denied);
    }
    EXPECT_EQ(contentsOf(folder), (Contents{{"a.ics", "old"}}));
}

TEST_P(CalendarFileWriterTests, whatSomebodyElseWroteIsNotReplaced) {
    auto const file = folder.write("a.ics", "another's");
    EXPECT_EQ(writer.replace(file, "old", "new"), changedMeanwhile);
    EXPECT_EQ(contentsOf(folder), (Contents{{"a.ics", "another's"}}));
    EXPECT_EQ(writer.remove(file, "old"), changedMeanwhile);
    EXPECT_EQ(contentsOf(folder), (Contents{{"a.ics", "another's"}}));
}

TEST_P(CalendarFileWriterTests, aFileThatSomebodyIsWritingIsLeftAlone) {
    auto const file = folder.write("a.ics", "old");
    FileDescriptor const other(::open(file.c_str(), O_WRONLY | O_CLOEXEC));
    FileDescriptor const reader(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
    if (::fcntl(reader.get(), F_SETLEASE, F_RDLCK) == 0 || errno != EAGAIN)
        GTEST_SKIP() << "this file system does not tell who writes";
    EXPECT_EQ(writer.replace(file, "old", "new"), changedMeanwhile);
    EXPECT_EQ(writer.remove(file, "old"), changedMeanwhile);
    EXPECT_EQ(contentsOf(folder), (Contents{{"a.ics", "old"}}));
    // It still is the file that the other has open.
    ASSERT_EQ(::pwrite(other.get(), "OLD", 3, 0), 3);
    EXPECT_EQ(contentsOf(folder), (Contents{{"a.ics", "OLD"}}));
}

TEST_P(CalendarFileWriterTests, whatHasGoneIsNeitherReplacedNorRemoved) {
    EXPECT_EQ(writer.replace(folder / "a.ics", "old", "new"), changedMeanwhile);
    EXPECT_EQ(writer.remove(folder / "a.ics", "old"), changedMeanwhile);
    EXPECT_EQ(contentsOf(folder), Contents{});
}

TEST_P(CalendarFileWriterTests, aLinkIsFollowed) {
    folder.write("there/a.ics", "old");
    std::filesystem::create_symlink("there/a.ics", folder / "link.ics");
    EXPECT_EQ(writer.replace(folder / "link.ics", "old", "new"), done);
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.ics"));
    std::ifstream stream(folder / "there/a.ics");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}), "new");
    EXPECT_EQ(writer.remove(folder / "link.ics", "new"), done);
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(folder / "link.ics")));
    EXPECT_TRUE(std::filesystem::is_empty(folder / "there"));
}

TEST_P(CalendarFileWriterTests, aNewFileIsPrivateAndTakesNoOthersPlace) {
    EXPECT_EQ(writer.create(folder / "a.ics", "new"), done);
    EXPECT_EQ(modeOf(folder / "a.ics"), 0600U);
    EXPECT_EQ(writer.create(folder / "a.ics", "newer"), changedMeanwhile);
    EXPECT_EQ(contentsOf(folder), (Contents{{"a.ics", "new"}}));
}

TEST_P(CalendarFileWriterTests, whatWasExpectedIsRemoved) {
    auto const file = folder.write("a.ics", "old");
    folder.write("b.ics", "old");
    EXPECT_EQ(writer.remove(file, "old"), done);
    EXPECT_EQ(contentsOf(folder), (Contents{{"b.ics", "old"}}));
}

TEST_P(CalendarFileWriterTests, aClosedFolderIsAFailureThatChangesNothing) {
    auto const file = folder.write("a.ics", "old");
    OrdinaryUser const user(folder.path());
    ASSERT_EQ(::chmod(folder.path().c_str(), 0500), 0);
    for (auto const& result : {writer.replace(file, "old", "new"), writer.create(folder / "b.ics", "new"),
                               writer.remove(file, "old")}) {
        ASSERT_FALSE(result.has_value());
        EXPECT_EQ(result.error().reason, std::errc::permission_denied);
    }
    ASSERT_EQ(::chmod(folder.path().c_str(), 0700), 0);
    EXPECT_EQ(contentsOf(folder), (Contents{{"a.ics", "old"}}));
}

INSTANTIATE_TEST_SUITE_P(Methods, CalendarFileWriterTests,
                         testing::Values(Method::exchange, Method::compareAndMove), [](auto const& method) {
                             return method.param == Method::exchange ? "exchange" : "compareAndMove";
                         });

TEST(LeftoverTests, theNameOfAHiddenFileTellsItsStory) {
    AsideName const name{.oldDigest = AsideName::digestOf("old"),
                         .newDigest = AsideName::digestOfNothing(),
                         .fileName = "a-b.ics"};
    auto const read = AsideName::fromText(name.text());
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(read->oldDigest, name.oldDigest);
    EXPECT_EQ(read->newDigest, "0000000000000000");
    EXPECT_EQ(read->fileName, "a-b.ics");
    EXPECT_NE(name.text(), name.text());
    for (auto const* other : {"a.ics", ".quillora-.tmp", ".quillora-0123.ics", ".5A.tmp"})
        EXPECT_FALSE(AsideName::fromText(other).has_value()) << other;
}

TEST(LeftoverTests, aNameTooLongToBeToldIsLeftOut) {
    AsideName const name{.oldDigest = AsideName::digestOf("old"),
                         .newDigest = AsideName::digestOf("new"),
                         .fileName = std::string(240, 'x')};
    EXPECT_LE(name.text().size(), 255U);
    EXPECT_EQ(AsideName::fromText(name.text())->fileName, "");
}

TEST(LeftoverTests, whatAKilledSaveLeftIsRemoved) {
    TemporaryFolder const folder;
    folder.write("a.ics", "old");
    folder.write(".hidden", "someone's");
    AsideName const name{.oldDigest = AsideName::digestOf("old"),
                         .newDigest = AsideName::digestOf("new"),
                         .fileName = "a.ics"};
    leftover(folder, name, "ne");
    leftover(folder, name, "new");
    leftover(folder, name, "old");
    CalendarFileWriter().clearLeftovers(folder.path(), farFuture);
    EXPECT_EQ(contentsOf(folder), (Contents{{".hidden", "someone's"}, {"a.ics", "old"}}));
}

TEST(LeftoverTests, whatMayStillBeInUseStays) {
    TemporaryFolder const folder;
    auto const name = leftover(folder,
                               {.oldDigest = AsideName::digestOf("old"),
                                .newDigest = AsideName::digestOf("new"),
                                .fileName = "a.ics"},
                               "new");
    struct stat status{};
    ASSERT_EQ(::stat((folder / name).c_str(), &status), 0);
    auto const made = static_cast<std::int64_t>(status.st_mtim.tv_sec) * 1'000'000'000;
    CalendarFileWriter().clearLeftovers(folder.path(), made + 60LL * 1'000'000'000);
    EXPECT_EQ(contentsOf(folder), (Contents{{name, "new"}}));
}

// The process exchanged, and was killed before it saw that it had another's change in its hands.
TEST(LeftoverTests, anothersChangeIsPutBack) {
    TemporaryFolder const folder;
    folder.write("a.ics", "new");
    leftover(folder,
             {.oldDigest = AsideName::digestOf("old"),
              .newDigest = AsideName::digestOf("new"),
              .fileName = "a.ics"},
             "another's");
    CalendarFileWriter().clearLeftovers(folder.path(), farFuture);
    EXPECT_EQ(contentsOf(folder), (Contents{{"a.ics", "another's"}}));
}

TEST(LeftoverTests, anothersChangeOfARemovedFileIsPutBack) {
    TemporaryFolder const folder;
    leftover(folder,
             {.oldDigest = AsideName::digestOf("old"),
              .newDigest = AsideName::digestOfNothing(),
              .fileName = "a.ics"},
             "another's");
    CalendarFileWriter().clearLeftovers(folder.path(), farFuture);
    EXPECT_EQ(contentsOf(folder), (Contents{{"a.ics", "another's"}}));
}

TEST(LeftoverTests, whatHasBeenWrittenSinceIsNotTurnedBack) {
    TemporaryFolder const folder;
    folder.write("a.ics", "newer");
    leftover(folder,
             {.oldDigest = AsideName::digestOf("old"),
              .newDigest = AsideName::digestOf("new"),
              .fileName = "a.ics"},
             "another's, long gone");
    CalendarFileWriter().clearLeftovers(folder.path(), farFuture);
    EXPECT_EQ(contentsOf(folder), (Contents{{"a.ics", "newer"}}));
}
