#include "Platform/EventStore/Folder/CalendarStoreConfiguration.h"

#include "Platform/Files/InMemoryFileManager.h"
#include "Platform/Files/PosixFileManager.h"
#include "Tests/EventStore/TemporaryFolder.h"

#include <gtest/gtest.h>

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
    for (auto const* const content :
         {"", "{", "[]", "{}", R"({"version":1,"sources":{}})", R"({"sources":[{"kind":"folder"}]})",
          R"({"sources":[{"kind":"folder","id":"","path":"/x","title":"X"}]})", R"({"sources":[3]})"}) {
        files->place(file, content);
        EXPECT_TRUE(configuration.load().roots.empty()) << content;
        EXPECT_EQ(
            configuration.load().problem,
            "/config/quillora/calendar-store.json is damaged, so none of its calendar folders is shown; the "
            "next change keeps a copy of it and starts a new list")
            << content;
        EXPECT_EQ(files->content(file), content);
    }
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
    EXPECT_TRUE(configuration.load().problem->starts_with(std::string(file) + " could not be read ("));
    EXPECT_FALSE(configuration.add(root / "Home", std::nullopt).has_value());
    EXPECT_EQ(files->content(file), "kept");
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
