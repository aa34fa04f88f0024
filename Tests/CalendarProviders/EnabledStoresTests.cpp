#include "CalendarProviders/EnabledCalendarAccountsStore.h"
#include "CalendarProviders/EnabledCalendarProvidersStore.h"
#include "Platform/Files/InMemoryFileManager.h"

#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace CalendarProviders {
namespace {

using Kind = Platform::InMemoryFileManager::Operation::Kind;
using Providers = std::set<AccountProviderEnum>;

Providers const onlyEventKit = {AccountProviderEnum::eventKit};

constexpr char const* accountsFile = "/container/enabledCalendarAccounts.json";
constexpr char const* providersFile = "/data/Quillora/enabledCalendarProviders.json";

TEST(EnabledCalendarAccountsStoreTests, withoutAFileNothingIsEnabled) {
    Platform::InMemoryFileManager const files;
    EXPECT_EQ(EnabledCalendarAccountsStore::load(files), Providers{});
}

TEST(EnabledCalendarAccountsStoreTests, textsThatNameNoKindAreLeftOut) {
    Platform::InMemoryFileManager files;
    files.place(accountsFile, R"(["other","eventKit","EventKit","eventKit"])");
    EXPECT_EQ(EnabledCalendarAccountsStore::load(files), onlyEventKit);
}

TEST(EnabledCalendarAccountsStoreTests, whatIsNoArrayOfTextsEnablesNothing) {
    for (auto const* content :
         {"", "eventKit", R"({"eventKit":true})", R"(["eventKit",1])", R"(["eventKit",null])"}) {
        Platform::InMemoryFileManager files;
        files.place(accountsFile, content);
        EXPECT_EQ(EnabledCalendarAccountsStore::load(files), Providers{}) << content;
    }
}

TEST(EnabledCalendarAccountsStoreTests, whatWasSavedIsLoaded) {
    Platform::InMemoryFileManager const files;
    EnabledCalendarAccountsStore::save(files, onlyEventKit);
    EXPECT_EQ(files.content(accountsFile), R"(["eventKit"])");
    EXPECT_EQ(EnabledCalendarAccountsStore::load(files), onlyEventKit);
}

TEST(EnabledCalendarAccountsStoreTests, savingTheEmptySetWritesAnEmptyArray) {
    Platform::InMemoryFileManager const files;
    EnabledCalendarAccountsStore::save(files, {});
    EXPECT_EQ(files.content(accountsFile), "[]");
}

TEST(EnabledCalendarAccountsStoreTests, aFailedSaveLeavesTheOldFile) {
    Platform::InMemoryFileManager files;
    files.place(accountsFile, R"(["eventKit"])");
    files.failsAfter(0);
    EnabledCalendarAccountsStore::save(files, {});
    EXPECT_EQ(EnabledCalendarAccountsStore::load(files), onlyEventKit);
}

TEST(EnabledCalendarAccountsStoreTests, clearingRemovesTheFile) {
    Platform::InMemoryFileManager const files;
    EnabledCalendarAccountsStore::save(files, onlyEventKit);
    EnabledCalendarAccountsStore::clear(files);
    EXPECT_EQ(files.content(accountsFile), std::nullopt);
    EnabledCalendarAccountsStore::clear(files);
    EXPECT_EQ(EnabledCalendarAccountsStore::load(files), Providers{});
}

TEST(EnabledCalendarAccountsStoreTests, withoutAContainerTheTemporaryFolderServes) {
    Platform::InMemoryFileManager files;
    files.withoutContainer();
    EnabledCalendarAccountsStore::save(files, onlyEventKit);
    EXPECT_EQ(files.content("/tmp/enabledCalendarAccounts.json"), R"(["eventKit"])");
    EXPECT_EQ(EnabledCalendarAccountsStore::load(files), onlyEventKit);
}

TEST(EnabledCalendarProvidersStoreTests, whatWasSavedIsLoadedFromTheDataHome) {
    Platform::InMemoryFileManager const files;
    EnabledCalendarProvidersStore::save(files, onlyEventKit);
    EXPECT_EQ(files.content(providersFile), R"(["eventKit"])");
    EXPECT_EQ(EnabledCalendarProvidersStore::load(files), onlyEventKit);
}

TEST(EnabledCalendarProvidersStoreTests, textsThatNameNoKindAreLeftOut) {
    Platform::InMemoryFileManager files;
    files.place(providersFile, R"(["eventKit","other"])");
    EXPECT_EQ(EnabledCalendarProvidersStore::load(files), onlyEventKit);
}

TEST(EnabledCalendarProvidersStoreTests, everyLookUpMakesTheFolderALoadToo) {
    Platform::InMemoryFileManager const files;
    EXPECT_EQ(EnabledCalendarProvidersStore::load(files), Providers{});
    auto const history = files.history();
    ASSERT_FALSE(history.empty());
    EXPECT_EQ(history.front().kind, Kind::createDirectory);
    EXPECT_EQ(history.front().path, "/data/Quillora");
}

TEST(EnabledCalendarProvidersStoreTests, theQuarantineMarksAreClearedAfterTheWrite) {
    Platform::InMemoryFileManager const files;
    EnabledCalendarProvidersStore::save(files, onlyEventKit);
    std::vector<Kind> kinds;
    for (auto const& operation : files.history())
        kinds.push_back(operation.kind);
    EXPECT_EQ(kinds, (std::vector{Kind::createDirectory, Kind::write, Kind::clearQuarantine}));
    EXPECT_EQ(files.history().back().path, providersFile);
}

TEST(EnabledCalendarProvidersStoreTests, savingTheEmptySetWritesAnEmptyArray) {
    Platform::InMemoryFileManager const files;
    EnabledCalendarProvidersStore::save(files, {});
    EXPECT_EQ(files.content(providersFile), "[]");
}

TEST(EnabledCalendarProvidersStoreTests, withoutADataHomeTheStoreStaysSilentAndEmpty) {
    Platform::InMemoryFileManager files;
    files.withoutApplicationSupport();
    EnabledCalendarProvidersStore::save(files, onlyEventKit);
    EXPECT_EQ(EnabledCalendarProvidersStore::load(files), Providers{});
    EXPECT_TRUE(files.files().empty());
}

TEST(EnabledCalendarProvidersStoreTests, aFailedSaveLeavesTheOldFile) {
    Platform::InMemoryFileManager files;
    files.place(providersFile, R"(["eventKit"])");
    files.failsAfter(0);
    EnabledCalendarProvidersStore::save(files, {});
    EXPECT_EQ(EnabledCalendarProvidersStore::load(files), onlyEventKit);
}

} // namespace
} // namespace CalendarProviders
