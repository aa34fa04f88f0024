#include "CalendarProviders/CalendarProviderRegistryApplication.h"
#include "CalendarProviders/EnabledCalendarAccountsStore.h"
#include "CalendarProviders/LocalRegistryRepositoryImpl.h"
#include "Platform/Files/InMemoryFileManager.h"
#include "Platform/Keychain/InMemoryKeychain.h"
#include "Platform/Keychain/ScriptedRandomSource.h"
#include "Platform/ObjectDatabase/InMemoryObjectDatabaseEngine.h"
#include "Tests/CalendarProviders/ProviderFixtures.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace CalendarProviders {
namespace {

using namespace Fixtures;
using Ids = std::vector<std::string>;

constexpr char const* mirrorFile = "/container/enabledCalendarAccounts.json";

/// Another repository, with a history of what was asked of it. Its answers can be replaced.
class ObservedRepository final : public CalendarProviderRegistryRepository {
public:
    explicit ObservedRepository(CalendarProviderDatabase database) : behind(std::move(database)) {}

    ResultEntity newProvider(CalendarProviderEntity const& provider) override {
        history.push_back("new " + provider.capId);
        return behind.newProvider(provider);
    }
    ResultEntity update(CalendarProviderEntity const& provider) override {
        history.push_back("update " + provider.capId);
        return behind.update(provider);
    }
    ResultEntity deleteProvider(std::string const& id) override {
        history.push_back("delete " + id);
        return behind.deleteProvider(id);
    }
    ResultEntity getOne(std::string const& id) override {
        history.push_back("getOne " + id);
        return behind.getOne(id);
    }
    ResultEntity getAll() override {
        history.emplace_back("getAll");
        return listAnswer ? *listAnswer : behind.getAll();
    }

    std::vector<std::string> history;
    std::optional<ResultEntity> listAnswer;

private:
    LocalRegistryRepositoryImpl behind;
};

/// Answers every request with one result, and remembers the kinds it was asked for.
class GivenPermission final : public CalendarPermissionRepository {
public:
    Foundation::Task<ResultEntity> requestAccess(AccountProviderEnum provider) override {
        requests.push_back(provider);
        co_return answer;
    }

    std::vector<AccountProviderEnum> requests;
    ResultEntity answer = succeeded();
};

class CalendarProviderRegistryApplicationTests : public testing::Test {
protected:
    CalendarProviderRegistryApplicationTests() {
        Platform::InMemoryKeychain keychain;
        Platform::ScriptedRandomSource random;
        auto const made = CalendarProviderDatabase::make(keychain, random, engine);
        repository = std::make_shared<ObservedRepository>(made.dataAs<CalendarProviderDatabase>().value());
    }

    CalendarProviderRegistryApplication application() const { return {repository, permission, files}; }

    std::optional<std::string> mirror() const { return files->content(mirrorFile); }
    bool mirrorWasWritten() const { return mirror().has_value(); }

    std::shared_ptr<Platform::InMemoryObjectDatabaseEngine> engine =
        std::make_shared<Platform::InMemoryObjectDatabaseEngine>();
    std::shared_ptr<Platform::InMemoryFileManager> files = std::make_shared<Platform::InMemoryFileManager>();
    std::shared_ptr<GivenPermission> permission = std::make_shared<GivenPermission>();
    std::shared_ptr<ObservedRepository> repository;
};

TEST_F(CalendarProviderRegistryApplicationTests, aNewProviderIsRegisteredAndMirrored) {
    auto const registry = application();
    expectPlainSuccess(registry.newProvider(provider("a")));
    EXPECT_EQ(repository->history, (std::vector<std::string>{"getAll", "new a", "getAll"}));
    EXPECT_EQ(ids(registry.getAll()), Ids{"a"});
    EXPECT_EQ(mirror(), R"(["eventKit"])");
}

TEST_F(CalendarProviderRegistryApplicationTests, aNewProviderThatIsDisabledMirrorsNothing) {
    expectPlainSuccess(application().newProvider(provider("a", false)));
    EXPECT_EQ(mirror(), "[]");
}

TEST_F(CalendarProviderRegistryApplicationTests, anInvalidNewProviderIsRefusedBeforeAnythingIsRead) {
    auto candidate = provider("   ");
    candidate.capEmail = "";
    expectFailure(application().newProvider(candidate), {.domain = "The provider id cannot be empty"});
    candidate.capId = "a";
    expectFailure(application().newProvider(candidate), {.domain = "The provider email cannot be empty"});
    EXPECT_TRUE(repository->history.empty());
    EXPECT_FALSE(mirrorWasWritten());
}

TEST_F(CalendarProviderRegistryApplicationTests, aSecondProviderOfTheKindIsRefused) {
    auto const registry = application();
    static_cast<void>(registry.newProvider(provider("a")));
    repository->history.clear();
    files->place(mirrorFile, "untouched");
    expectFailure(registry.newProvider(provider("b")),
                  {.domain = "A provider of type eventKit is already registered"});
    // The kind is examined before the id.
    expectFailure(registry.newProvider(provider("a")),
                  {.domain = "A provider of type eventKit is already registered"});
    EXPECT_EQ(repository->history, (std::vector<std::string>{"getAll", "getAll"}));
    EXPECT_EQ(mirror(), "untouched");
}

TEST_F(CalendarProviderRegistryApplicationTests, aFailedReadCountsAsNoRegistrations) {
    auto const registry = application();
    static_cast<void>(registry.newProvider(provider("a")));
    repository->listAnswer = failed({.databaseMessage = "locked for too long"});
    expectPlainSuccess(registry.newProvider(provider("b")));
    repository->listAnswer.reset();
    EXPECT_EQ(ids(registry.getAll()), (Ids{"a", "b"}));
}

TEST_F(CalendarProviderRegistryApplicationTests, aReadOfAnotherTypeCountsAsNoRegistrations) {
    repository->listAnswer = succeeded(std::string("no list"));
    expectPlainSuccess(application().newProvider(provider("a")));
    EXPECT_EQ(mirror(), "[]");
}

TEST_F(CalendarProviderRegistryApplicationTests, aTakenIdIsTheRepositorysFailureAndMirrorsNothing) {
    static_cast<void>(application().newProvider(provider("a")));
    files->place(mirrorFile, "untouched");
    repository->listAnswer = succeeded(std::vector<CalendarProviderEntity>{});
    expectFailure(application().newProvider(provider("a")),
                  {.infrastructure = "A provider is already registered with that id"});
    EXPECT_EQ(mirror(), "untouched");
}

TEST_F(CalendarProviderRegistryApplicationTests, disablingTheOnlyProviderEmptiesTheMirror) {
    auto const registry = application();
    static_cast<void>(registry.newProvider(provider("a")));
    repository->history.clear();
    expectPlainSuccess(registry.update(provider("a", false)));
    EXPECT_EQ(repository->history, (std::vector<std::string>{"update a", "getAll"}));
    EXPECT_EQ(mirror(), "[]");
    expectPlainSuccess(registry.update(provider("a", true)));
    EXPECT_EQ(mirror(), R"(["eventKit"])");
}

TEST_F(CalendarProviderRegistryApplicationTests, anUpdateIsExaminedForItsOwnFieldsAlone) {
    auto const registry = application();
    static_cast<void>(registry.newProvider(provider("a")));
    // A second one of the kind, by its unknown id.
    expectPlainSuccess(registry.update(provider("b")));
    EXPECT_EQ(ids(registry.getAll()), (Ids{"a", "b"}));
}

TEST_F(CalendarProviderRegistryApplicationTests, anInvalidUpdateIsRefusedBeforeAnythingIsWritten) {
    auto candidate = provider("a");
    candidate.capEmail = " ";
    expectFailure(application().update(candidate), {.domain = "The provider email cannot be empty"});
    expectFailure(application().update(provider("")), {.domain = "The provider id cannot be empty"});
    EXPECT_TRUE(repository->history.empty());
    EXPECT_FALSE(mirrorWasWritten());
}

TEST_F(CalendarProviderRegistryApplicationTests, twoProvidersOfAKindAreMirroredOnceAndWhileOneIsEnabled) {
    auto const registry = application();
    static_cast<void>(registry.update(provider("a")));
    static_cast<void>(registry.update(provider("b")));
    EXPECT_EQ(mirror(), R"(["eventKit"])");
    static_cast<void>(registry.update(provider("a", false)));
    EXPECT_EQ(mirror(), R"(["eventKit"])");
    static_cast<void>(registry.deleteProvider("b"));
    EXPECT_EQ(mirror(), "[]");
}

TEST_F(CalendarProviderRegistryApplicationTests, deletingAProviderIsMirrored) {
    auto const registry = application();
    static_cast<void>(registry.newProvider(provider("a")));
    repository->history.clear();
    expectPlainSuccess(registry.deleteProvider("a"));
    EXPECT_EQ(repository->history, (std::vector<std::string>{"delete a", "getAll"}));
    EXPECT_EQ(mirror(), "[]");
}

TEST_F(CalendarProviderRegistryApplicationTests, deletingAnUnknownIdSucceedsAndRewritesTheMirror) {
    auto const registry = application();
    static_cast<void>(registry.newProvider(provider("a")));
    files->place(mirrorFile, "stale");
    expectPlainSuccess(registry.deleteProvider("nobody"));
    EXPECT_EQ(mirror(), R"(["eventKit"])");
}

TEST_F(CalendarProviderRegistryApplicationTests, aReadThatFailsAfterAChangeClearsTheMirror) {
    auto const registry = application();
    static_cast<void>(registry.newProvider(provider("a")));
    repository->listAnswer = failed({.databaseMessage = "locked for too long"});
    expectPlainSuccess(registry.update(provider("a")));
    EXPECT_EQ(mirror(), "[]");
}

TEST_F(CalendarProviderRegistryApplicationTests, aChangeThatFailsLeavesTheMirror) {
    auto const registry = application();
    static_cast<void>(registry.newProvider(provider("a")));
    files->place(mirrorFile, "untouched");
    engine->failsToWrite("the disk is full");
    expectFailure(registry.update(provider("a", false)), {.database = "the disk is full"});
    expectFailure(registry.deleteProvider("a"), {.database = "the disk is full"});
    EXPECT_EQ(mirror(), "untouched");
}

TEST_F(CalendarProviderRegistryApplicationTests, aMirrorThatCannotBeWrittenDoesNotUndoTheRegistration) {
    files->failsAfter(0);
    expectPlainSuccess(application().newProvider(provider("a")));
    EXPECT_FALSE(mirrorWasWritten());
    EXPECT_EQ(ids(application().getAll()), Ids{"a"});
}

TEST_F(CalendarProviderRegistryApplicationTests, aDatabaseThatNeverOpensIsToldByEveryOperation) {
    engine->failsToOpen(1000, "damaged");
    engine->failsToDelete("in use elsewhere");
    Messages const expected = {.infrastructure = "Open failed (damaged) and the recovery delete also failed: "
                                                 "in use elsewhere"};
    auto const registry = application();
    expectFailure(registry.newProvider(provider("a")), expected);
    expectFailure(registry.update(provider("a")), expected);
    expectFailure(registry.deleteProvider("a"), expected);
    expectFailure(registry.getOne("a"), expected);
    expectFailure(registry.getAll(), expected);
    EXPECT_FALSE(mirrorWasWritten());
}

TEST_F(CalendarProviderRegistryApplicationTests, lookingUpIsTheRepositorysAndMirrorsNothing) {
    auto const registry = application();
    expectFailure(registry.getOne("nobody"), {.domain = "No provider is registered with that id"});
    EXPECT_EQ(ids(registry.getAll()), Ids{});
    EXPECT_EQ(repository->history, (std::vector<std::string>{"getOne nobody", "getAll"}));
    EXPECT_FALSE(mirrorWasWritten());
}

TEST_F(CalendarProviderRegistryApplicationTests, aResultOfALowerLayerIsReturnedAsItIs) {
    repository->listAnswer = failed({.databaseMessage = "locked for too long"});
    EXPECT_EQ(application().getAll().guidId, repository->listAnswer->guidId);
}

TEST_F(CalendarProviderRegistryApplicationTests, accessIsAskedForThroughThePermissionRepository) {
    permission->answer = failed({.infrastructureMessage = "Calendar access was denied"});
    auto const result = Foundation::runTask(application().requestAccess(AccountProviderEnum::eventKit));
    expectFailure(result, {.infrastructure = "Calendar access was denied"});
    EXPECT_EQ(result.guidId, permission->answer.guidId);
    EXPECT_EQ(permission->requests, std::vector{AccountProviderEnum::eventKit});
    EXPECT_TRUE(repository->history.empty());
}

} // namespace
} // namespace CalendarProviders
