#include "Platform/EventStore/Folder/CalendarStoreConfiguration.h"

#include "Platform/Files/InMemoryFileManager.h"
#include "Platform/Files/PosixFileLocks.h"
#include "Platform/Files/PosixFileManager.h"
#include "Tests/EventStore/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <latch>
#include <thread>

#include <sys/stat.h>

using namespace Platform;

namespace {

constexpr auto file = "/config/quillora/calendar-store.json";

class CalendarStoreConfigurationTests : public testing::Test {
protected:
    CalendarStoreConfigurationTests() { std::filesystem::create_directories(root / "Home"); }

    TemporaryFolder root;
    std::shared_ptr<InMemoryFileManager> files = std::make_shared<InMemoryFileManager>();
    CalendarStoreConfiguration configuration{"/config/quillora", files};
};

} // namespace

TEST_F(CalendarStoreConfigurationTests, withoutAFileThereAreNoRootsAndNoProblem) {
    EXPECT_TRUE(configuration.load().roots.empty());
    EXPECT_EQ(configuration.load().problem, std::nullopt);
}

TEST_F(CalendarStoreConfigurationTests, theDocumentIsWrittenAsItIsDescribed) {
    files->place(file,
                 R"({"version":1,"sources":[{"kind":"folder","id":"k3fa","path":"/home/ann/.calendars",)"
                 R"("title":"Ann"},{"kind":"dataServer","id":"b2","path":"x","title":"Accounts"}]})");
    auto const content = configuration.load();
    EXPECT_EQ(content.problem, std::nullopt);
    ASSERT_EQ(content.roots.size(), 2U);
    EXPECT_EQ(content.roots[0],
              (CalendarRoot{.kind = "folder", .id = "k3fa", .path = "/home/ann/.calendars", .title = "Ann"}));
    EXPECT_EQ(content.roots[1].kind, "dataServer");

    ASSERT_TRUE(configuration.remove("b2").has_value());
    EXPECT_EQ(files->content(file), R"({"version":1,"sources":[{"kind":"folder","id":"k3fa",)"
                                    R"("path":"\/home\/ann\/.calendars","title":"Ann"}]})");
}

TEST_F(CalendarStoreConfigurationTests, anAddedFolderIsTitledByItsNameAndComesLast) {
    std::filesystem::create_directories(root / "Work");
    auto const home = configuration.add(root / "Home", std::nullopt);
    auto const work = configuration.add(root / "Work/", "The office");
    ASSERT_TRUE(home.has_value()) << home.error();
    ASSERT_TRUE(work.has_value()) << work.error();
    EXPECT_EQ(home->title, "Home");
    EXPECT_EQ(home->kind, "folder");
    EXPECT_EQ(work->title, "The office");
    EXPECT_EQ(work->path, root / "Work");
    EXPECT_EQ(configuration.load().roots, (std::vector<CalendarRoot>{*home, *work}));
}

TEST_F(CalendarStoreConfigurationTests, anIdIsShortUniqueAndTheSameForTheSamePath) {
    std::set<std::string> ids;
    for (int number = 0; number < 40; ++number) {
        auto const folder = root / ("folder-" + std::to_string(number));
        std::filesystem::create_directories(folder);
        auto const added = configuration.add(folder, std::nullopt);
        ASSERT_TRUE(added.has_value()) << added.error();
        EXPECT_TRUE(std::string_view("abcdefghijklmnopqrstuvwxyz").contains(added->id[0])) << added->id;
        EXPECT_EQ(added->id.size(), 4U);
        EXPECT_EQ(added->id.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789"), std::string::npos);
        ids.insert(added->id);
    }
    EXPECT_EQ(ids.size(), 40U);

    auto const first = configuration.remove((root / "folder-7").string());
    ASSERT_TRUE(first.has_value()) << first.error();
    EXPECT_EQ(configuration.add(root / "folder-7", std::nullopt)->id, first->id);
}

TEST_F(CalendarStoreConfigurationTests, aFolderThatCannotBeAddedIsRefusedAndNothingWritten) {
    root.write("file.ics", "");
    std::filesystem::create_symlink(root / "Home", root / "link");
    std::filesystem::create_symlink("loop", root / "loop");
    ASSERT_TRUE(configuration.add(root / "Home", std::nullopt).has_value());
    auto const before = files->content(file);
    auto const path = root.path().string();
    struct Row {
        char const* name;
        std::filesystem::path folder;
        std::string text;
    };
    std::vector<Row> const rows{
        {"relative", "Home", "Home is not an absolute path; nothing was added."},
        {"missing", root / "None", "There is no folder " + path + "/None; nothing was added."},
        {"a file", root / "file.ics",
         path +
             "/file.ics is not a folder; nothing was added. Name the folder that holds the calendar files."},
        {"below a file", root / "file.ics/deeper",
         "There is no folder " + path + "/file.ics/deeper; nothing was added."},
        {"a link to itself", root / "loop",
         path + "/loop could not be examined (Too many levels of symbolic links); nothing was added."},
        {"there already", root / "Home", path + "/Home is a source already (\"Home\"); nothing was added."},
        {"there already, by a link", root / "link",
         path + "/link is a source already (\"Home\"); nothing was added."},
        {"no UTF-8", root / "a\xff",
         "The folder name " + path +
             "/a\xEF\xBF\xBD is not valid UTF-8; nothing was added. Rename the folder first."},
    };
    for (auto const& row : rows) {
        auto const added = configuration.add(row.folder, std::nullopt);
        ASSERT_FALSE(added.has_value()) << row.name;
        EXPECT_EQ(added.error(), row.text) << row.name;
        EXPECT_EQ(files->content(file), before) << row.name;
    }
}

TEST_F(CalendarStoreConfigurationTests, aRootIsRemovedByItsIdPathOrTitle) {
    for (int way = 0; way < 3; ++way) {
        auto const added = configuration.add(root / "Home", "My home");
        ASSERT_TRUE(added.has_value()) << added.error();
        auto const names = std::to_array<std::string>({added->id, (root / "Home/").string(), "My home"});
        auto const removed = configuration.remove(names.at(static_cast<std::size_t>(way)));
        ASSERT_TRUE(removed.has_value()) << removed.error();
        EXPECT_EQ(*removed, *added);
        EXPECT_TRUE(configuration.load().roots.empty());
    }
}

TEST_F(CalendarStoreConfigurationTests, aNameOfNoneOrOfSeveralRootsRemovesNothing) {
    std::filesystem::create_directories(root / "Work");
    ASSERT_TRUE(configuration.add(root / "Home", "Same").has_value());
    ASSERT_TRUE(configuration.add(root / "Work", "Same").has_value());
    EXPECT_EQ(configuration.remove("Other").error(), "No source is called Other; nothing was removed.");
    EXPECT_EQ(configuration.remove("Same").error(),
              "Several sources are called Same; nothing was removed. Name one by its id or path.");
    EXPECT_EQ(configuration.load().roots.size(), 2U);
}

TEST_F(CalendarStoreConfigurationTests, aDamagedFileHasNoRootsAndAReason) {
    for (auto const* const content : {"", "x", "{", "[]", "{}", R"({"version":1,"sources":{}})"}) {
        files->place(file, content);
        EXPECT_TRUE(configuration.load().roots.empty()) << content;
        EXPECT_EQ(
            configuration.load().problem,
            "the list of calendar folders is damaged, so none of them is shown; the next change keeps a "
            "copy of it and starts a new list")
            << content;
        EXPECT_TRUE(configuration.load().mayBeChanged) << content;
        EXPECT_EQ(files->content(file), content);
    }
}

TEST_F(CalendarStoreConfigurationTests, aDamagedEntryIsLeftOutAndKeptAside) {
    CalendarRoot const good{.kind = "folder", .id = "k3fa", .path = "/home/ann/.calendars", .title = "Ann"};
    std::string const goodEntry =
        R"({"kind":"folder","id":"k3fa","path":"/home/ann/.calendars","title":"Ann"})";
    for (std::string const bad :
         {"3", R"({"kind":"folder"})", R"({"kind":"folder","id":"","path":"/x","title":"X"})"}) {
        auto const document = R"({"version":1,"sources":[)" + bad + "," + goodEntry + "]}";
        auto const store = std::make_shared<InMemoryFileManager>();
        store->place(file, document);
        CalendarStoreConfiguration const subject("/config/quillora", store);
        EXPECT_EQ(subject.load().roots, std::vector{good}) << bad;
        EXPECT_EQ(
            subject.load().problem,
            "the list of calendar folders is damaged in 1 of its entries, which are not shown; the next "
            "change keeps a copy of it and goes on with the rest")
            << bad;
        auto const added = subject.add(root / "Home", std::nullopt);
        ASSERT_TRUE(added.has_value()) << added.error();
        EXPECT_EQ(subject.load().roots, (std::vector{good, *added})) << bad;
        EXPECT_EQ(subject.load().problem, std::nullopt) << bad;
        EXPECT_EQ(store->content(std::string(file) + ".damaged"), document);
    }
}

TEST_F(CalendarStoreConfigurationTests, aFileOfANewerVersionIsReadAndNeverChanged) {
    std::string const document =
        R"({"version":2,"sources":[{"kind":"folder","id":"k3fa","path":"/ann","title":"Ann"},{"new":1}]})";
    files->place(file, document);
    EXPECT_EQ(configuration.load().roots,
              (std::vector{CalendarRoot{.kind = "folder", .id = "k3fa", .path = "/ann", .title = "Ann"}}));
    EXPECT_FALSE(configuration.load().mayBeChanged);
    std::string const problem = "/config/quillora/calendar-store.json: the list of calendar folders was "
                                "written by a newer version of "
                                "Quillora; what is understood of it is shown, and it cannot be changed; ";
    EXPECT_EQ(configuration.add(root / "Home", std::nullopt).error(), problem + "nothing was added.");
    EXPECT_EQ(configuration.remove("k3fa").error(), problem + "nothing was removed.");
    EXPECT_EQ(files->content(file), document);
    EXPECT_EQ(files->content(std::string(file) + ".damaged"), std::nullopt);
}

TEST_F(CalendarStoreConfigurationTests, changesAtTheSameTimeAllStay) {
    auto const disk = std::make_shared<PosixFileManager>(Foundation::Environment());
    std::vector<std::filesystem::path> folders;
    for (int number = 0; number < 12; ++number) {
        folders.push_back(root / ("folder-" + std::to_string(number)));
        std::filesystem::create_directories(folders.back());
    }
    std::latch start(static_cast<std::ptrdiff_t>(folders.size()));
    std::vector<std::string> failures(folders.size());
    {
        std::vector<std::jthread> threads;
        for (std::size_t number = 0; number < folders.size(); ++number) {
            threads.emplace_back([&, number] {
                CalendarStoreConfiguration const own(root / "config", disk,
                                                     std::make_shared<PosixFileLocks>());
                start.arrive_and_wait();
                auto const added = own.add(folders[number], std::nullopt);
                if (!added) failures[number] = added.error();
            });
        }
    }
    EXPECT_EQ(failures, std::vector<std::string>(folders.size()));
    std::set<std::filesystem::path> kept;
    for (auto const& known : CalendarStoreConfiguration(root / "config", disk).load().roots)
        kept.insert(known.path);
    EXPECT_EQ(kept, std::set(folders.begin(), folders.end()));
}

TEST_F(CalendarStoreConfigurationTests, aLockThatIsNotHadIsToldAndNothingChanged) {
    class RefusedLocks final : public FileLocks {
        [[nodiscard]] std::expected<std::unique_ptr<Held>, std::error_code>
        take(std::filesystem::path const& /*lockFile*/, std::chrono::milliseconds patience) const override {
            EXPECT_EQ(patience, std::chrono::seconds(10));
            return std::unexpected(std::make_error_code(std::errc::timed_out));
        }
    };
    CalendarStoreConfiguration const subject("/config/quillora", files, std::make_shared<RefusedLocks>());
    EXPECT_EQ(subject.add(root / "Home", std::nullopt).error(),
              "/config/quillora/.calendar-store.json.lock could not be locked (Connection timed out); "
              "nothing was added.");
    EXPECT_EQ(files->content(file), std::nullopt);
}

TEST_F(CalendarStoreConfigurationTests, aHeldLockIsAwaitedOnlySoLong) {
    PosixFileLocks const locks;
    auto const held = locks.take(root / "lock", std::chrono::milliseconds(0));
    ASSERT_TRUE(held.has_value());
    EXPECT_EQ(locks.take(root / "lock", std::chrono::milliseconds(20)).error(), std::errc::timed_out);
}

TEST_F(CalendarStoreConfigurationTests, aDamagedFileIsKeptBesideTheNewOne) {
    files->place(file, "{ torn");
    ASSERT_TRUE(configuration.add(root / "Home", std::nullopt).has_value());
    EXPECT_EQ(files->content("/config/quillora/calendar-store.json.damaged"), "{ torn");
    EXPECT_EQ(configuration.load().roots.size(), 1U);

    files->place(file, "torn again");
    ASSERT_TRUE(configuration.add(root / "Home", std::nullopt).has_value());
    EXPECT_EQ(files->content("/config/quillora/calendar-store.json.damaged"), "{ torn");
    EXPECT_EQ(files->content("/config/quillora/calendar-store.json.damaged-2"), "torn again");
}

TEST_F(CalendarStoreConfigurationTests, aFileThatMayNotBeReadIsNeverReplaced) {
    files->place(file, "kept");
    files->refusesReads();
    EXPECT_TRUE(configuration.load().roots.empty());
    EXPECT_TRUE(
        configuration.load().problem->starts_with("the list of calendar folders could not be read ("));
    EXPECT_FALSE(configuration.add(root / "Home", std::nullopt).has_value());
    EXPECT_EQ(files->content(file), "kept");
}

TEST_F(CalendarStoreConfigurationTests, aFileThatIsTooLargeIsNeverReplaced) {
    std::string const large(largestPreferenceFile + 1, ' ');
    files->place(file, large);
    EXPECT_EQ(configuration.load().problem,
              "the list of calendar folders could not be read (File too large), so none of them is shown");
    EXPECT_FALSE(configuration.add(root / "Home", std::nullopt).has_value());
    EXPECT_EQ(files->content(file), large);
}

TEST_F(CalendarStoreConfigurationTests, whatCouldNotBeReadAgainIsNotWritten) {
    std::string const title(largestPreferenceFile, 'x');
    auto const added = configuration.add(root / "Home", title);
    ASSERT_FALSE(added.has_value());
    EXPECT_TRUE(added.error().contains("(File too large)"));
    EXPECT_EQ(files->content(file), std::nullopt);
}

TEST_F(CalendarStoreConfigurationTests, aFailedWriteIsToldAndLeavesTheListAsItWas) {
    files->failsAfter(0);
    auto const added = configuration.add(root / "Home", std::nullopt);
    ASSERT_FALSE(added.has_value());
    EXPECT_TRUE(added.error().ends_with("the list of sources is unchanged.")) << added.error();
    EXPECT_EQ(files->content(file), std::nullopt);
}

TEST_F(CalendarStoreConfigurationTests, theFileIsTheOwnersAlone) {
    CalendarStoreConfiguration const onDisk(root / "config/quillora",
                                            std::make_shared<PosixFileManager>(Foundation::Environment()));
    ASSERT_TRUE(onDisk.add(root / "Home", std::nullopt).has_value());
    struct stat status{};
    ASSERT_EQ(::stat((root / "config/quillora/calendar-store.json").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    ASSERT_EQ(::stat((root / "config/quillora").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
    EXPECT_EQ(onDisk.load().roots.size(), 1U);
}
