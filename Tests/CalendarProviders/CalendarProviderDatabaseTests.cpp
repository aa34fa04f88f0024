#include "CalendarProviders/CalendarProviderDatabase.h"
#include "CalendarProviders/CalendarProviderRealmModel.h"
#include "CalendarProviders/LocalRegistryRepositoryImpl.h"
#include "Platform/Keychain/InMemoryKeychain.h"
#include "Platform/Keychain/ScriptedRandomSource.h"
#include "Platform/ObjectDatabase/InMemoryObjectDatabaseEngine.h"
#include "Tests/CalendarProviders/ProviderFixtures.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace CalendarProviders {
namespace {

using namespace Fixtures;
using Ids = std::vector<std::string>;
using Engine = Platform::InMemoryObjectDatabaseEngine;
using Kind = Engine::Operation::Kind;

constexpr char const* cannotOpenText =
    "Open failed (damaged) and the recovery delete also failed: in use elsewhere";

class CalendarProviderDatabaseTests : public testing::Test {
protected:
    CalendarProviderDatabase database() {
        auto const made = CalendarProviderDatabase::make(keychain, random, engine);
        EXPECT_TRUE(made.result);
        return made.dataAs<CalendarProviderDatabase>().value();
    }

    std::vector<Kind> kinds() const {
        std::vector<Kind> found;
        for (auto const& operation : engine->history())
            found.push_back(operation.kind);
        return found;
    }

    void neverOpens() {
        engine->failsToOpen(1000, "damaged");
        engine->failsToDelete("in use elsewhere");
    }

    /// As another program, or a later version of this one, may leave them.
    void place(std::vector<Platform::PersistedObject> objects) {
        engine->place(databaseFile, countingKey(), 1, std::move(objects));
    }

    static Platform::PersistedObject objectOfKind(std::string id, std::string kind) {
        return {.typeName = "CalendarProviderRealmModel",
                .primaryKey = std::move(id),
                .properties = {{.name = "capProvider", .value = std::move(kind)}}};
    }

    Platform::InMemoryKeychain keychain;
    Platform::ScriptedRandomSource random;
    std::shared_ptr<Engine> engine = std::make_shared<Engine>();
};

TEST_F(CalendarProviderDatabaseTests, makingItTouchesTheKeychainAndNoFile) {
    expectSuccess(CalendarProviderDatabase::make(keychain, random, engine));
    EXPECT_EQ(keychain.value(keyIdentity), countingKey());
    EXPECT_TRUE(engine->history().empty());
}

TEST_F(CalendarProviderDatabaseTests, withoutAKeyThereIsNoDatabase) {
    keychain.setLocked(true);
    expectFailure(CalendarProviderDatabase::make(keychain, random, engine),
                  {.infrastructure = "Keychain lookup failed with status -25308; refusing to regenerate the "
                                     "encryption key"});
}

TEST_F(CalendarProviderDatabaseTests, theFileIsOfSchemaOneUnderTheServicesName) {
    EXPECT_EQ(CalendarProviderDatabase::keychainService, "CalendarProviders.RegistryProvider");
    EXPECT_EQ(CalendarProviderDatabase::schemaVersion, 1U);
    expectPlainSuccess(database().save(provider("a")));
    EXPECT_TRUE(engine->exists(databaseFile));
}

TEST_F(CalendarProviderDatabaseTests, anEarlierSchemaIsTakenAsItIs) {
    engine->place(databaseFile, countingKey(), 0, {objectOfKind("a", "eventKit")});
    EXPECT_EQ(ids(database().getAll()), Ids{"a"});
}

TEST_F(CalendarProviderDatabaseTests, everyFieldIsKept) {
    auto const kept = database();
    expectPlainSuccess(kept.save(provider("a", false)));
    auto const result = kept.getOne("a");
    expectSuccess(result);
    auto const found = result.dataAs<CalendarProviderEntity>();
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->capId, "a");
    EXPECT_EQ(found->capProvider, AccountProviderEnum::eventKit);
    EXPECT_EQ(found->capDisplayName, "Calendars on this computer");
    EXPECT_EQ(found->capDescription, "Work and home");
    EXPECT_EQ(found->capEmail, "ana@host");
    EXPECT_FALSE(found->capIsEnabled);
    EXPECT_EQ(found->capRegisteredAt, (Foundation::Date{.secondsSince1970 = 1700000000.5}));
}

TEST_F(CalendarProviderDatabaseTests, eachOperationOpensTheDatabaseAnew) {
    auto const kept = database();
    static_cast<void>(kept.save(provider("a")));
    static_cast<void>(kept.getOne("a"));
    static_cast<void>(kept.getAll());
    static_cast<void>(kept.deleteProvider("a"));
    EXPECT_EQ(kinds(), (std::vector{Kind::open, Kind::write, Kind::open, Kind::read, Kind::open, Kind::read,
                                    Kind::open, Kind::read, Kind::write}));
}

TEST_F(CalendarProviderDatabaseTests, savingAKnownIdChangesItInItsPlace) {
    auto const kept = database();
    static_cast<void>(kept.save(provider("b")));
    static_cast<void>(kept.save(provider("a")));
    auto changed = provider("b");
    changed.capDisplayName = "Another name";
    expectPlainSuccess(kept.save(changed));
    EXPECT_EQ(ids(kept.getAll()), (Ids{"b", "a"}));
    EXPECT_EQ(kept.getOne("b").dataAs<CalendarProviderEntity>()->capDisplayName, "Another name");
}

TEST_F(CalendarProviderDatabaseTests, whatALaterVersionKeepsBesideSurvivesASave) {
    auto object = objectOfKind("a", "eventKit");
    object.properties.push_back({.name = "capLater", .value = std::string("kept")});
    place({object});
    expectPlainSuccess(database().save(provider("a")));
    auto const content = engine->content(databaseFile);
    ASSERT_EQ(content.size(), 1U);
    ASSERT_NE(content[0].property<std::string>("capLater"), nullptr);
    EXPECT_EQ(*content[0].property<std::string>("capLater"), "kept");
}

TEST_F(CalendarProviderDatabaseTests, idsAreEqualOnlyByTheirBytes) {
    auto const kept = database();
    for (auto const* id : {"a", "A", " a", "\u00e9", "e\u0301", ""})
        expectPlainSuccess(kept.save(provider(id)));
    EXPECT_EQ(ids(kept.getAll()), (Ids{"a", "A", " a", "\u00e9", "e\u0301", ""}));
}

TEST_F(CalendarProviderDatabaseTests, anEmptyDatabaseHoldsAnEmptyList) {
    auto const result = database().getAll();
    expectSuccess(result);
    EXPECT_EQ(ids(result), Ids{});
}

TEST_F(CalendarProviderDatabaseTests, anUnknownIdIsNotFound) {
    expectFailure(database().getOne("nobody"), {.domain = "No provider is registered with that id"});
}

TEST_F(CalendarProviderDatabaseTests, anObjectOfAnUnknownKindIsNeitherFoundNorListed) {
    place({objectOfKind("x", "EventKit"), objectOfKind("a", "eventKit"), objectOfKind("y", "")});
    auto const kept = database();
    expectFailure(kept.getOne("x"), {.domain = "No provider is registered with that id"});
    EXPECT_EQ(ids(kept.getAll()), Ids{"a"});
    EXPECT_EQ(engine->content(databaseFile).size(), 3U);
}

TEST_F(CalendarProviderDatabaseTests, objectsOfAnotherTypeAreNotProviders) {
    auto foreign = objectOfKind("a", "eventKit");
    foreign.typeName = "SomethingElse";
    place({foreign});
    EXPECT_EQ(ids(database().getAll()), Ids{});
}

TEST_F(CalendarProviderDatabaseTests, whatAStoredObjectLacksIsEmpty) {
    place({objectOfKind("a", "eventKit")});
    auto const found = database().getOne("a").dataAs<CalendarProviderEntity>();
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->capDisplayName, "");
    EXPECT_FALSE(found->capIsEnabled);
}

TEST_F(CalendarProviderDatabaseTests, deletingRemovesTheOneOfThatId) {
    auto const kept = database();
    static_cast<void>(kept.save(provider("a")));
    static_cast<void>(kept.save(provider("b")));
    expectPlainSuccess(kept.deleteProvider("a"));
    EXPECT_EQ(ids(kept.getAll()), Ids{"b"});
}

TEST_F(CalendarProviderDatabaseTests, deletingAnUnknownIdSucceedsWithoutAWrite) {
    expectPlainSuccess(database().deleteProvider("nobody"));
    EXPECT_EQ(kinds(), (std::vector{Kind::open, Kind::read}));
}

TEST_F(CalendarProviderDatabaseTests, anObjectOfAnUnknownKindCanBeDeleted) {
    place({objectOfKind("x", "other")});
    expectPlainSuccess(database().deleteProvider("x"));
    EXPECT_TRUE(engine->content(databaseFile).empty());
}

TEST_F(CalendarProviderDatabaseTests, aFailedWriteSaysWhyAndChangesNothing) {
    auto const kept = database();
    static_cast<void>(kept.save(provider("a")));
    engine->failsToWrite("the disk is full");
    expectFailure(kept.save(provider("b")), {.database = "the disk is full"});
    expectFailure(kept.deleteProvider("a"), {.database = "the disk is full"});
    EXPECT_EQ(ids(kept.getAll()), Ids{"a"});
}

TEST_F(CalendarProviderDatabaseTests, aFailedReadSaysWhy) {
    auto const kept = database();
    static_cast<void>(kept.save(provider("a")));
    engine->failsToRead("locked for too long");
    expectFailure(kept.getOne("a"), {.database = "locked for too long"});
    expectFailure(kept.getAll(), {.database = "locked for too long"});
    expectFailure(kept.deleteProvider("a"), {.database = "locked for too long"});
    EXPECT_EQ(engine->content(databaseFile).size(), 1U);
}

TEST_F(CalendarProviderDatabaseTests, aDatabaseThatNeverOpensIsTheInfrastructuresFailure) {
    auto const kept = database();
    neverOpens();
    expectFailure(kept.save(provider("a")), {.infrastructure = cannotOpenText});
    expectFailure(kept.deleteProvider("a"), {.infrastructure = cannotOpenText});
    expectFailure(kept.getOne("a"), {.infrastructure = cannotOpenText});
    expectFailure(kept.getAll(), {.infrastructure = cannotOpenText});
}

TEST_F(CalendarProviderDatabaseTests, aStoredKeyOfAnotherLengthFailsAtTheOpening) {
    keychain.place(keyIdentity, countingKey(63));
    expectFailure(database().getAll(),
                  {.infrastructure = "Open failed (the encryption key is not 64 bytes long); recreated the "
                                     "file but it still failed to open: the encryption key is not 64 bytes "
                                     "long"});
}

using LocalRegistryRepositoryImplTests = CalendarProviderDatabaseTests;

TEST_F(LocalRegistryRepositoryImplTests, aNewProviderIsKept) {
    LocalRegistryRepositoryImpl repository(database());
    expectPlainSuccess(repository.newProvider(provider("a")));
    EXPECT_EQ(ids(repository.getAll()), Ids{"a"});
    EXPECT_EQ(repository.getOne("a").dataAs<CalendarProviderEntity>()->capEmail, "ana@host");
}

TEST_F(LocalRegistryRepositoryImplTests, anIdThatIsTakenIsRefusedBeforeAnythingIsWritten) {
    LocalRegistryRepositoryImpl repository(database());
    expectPlainSuccess(repository.newProvider(provider("a")));
    auto second = provider("a");
    second.capEmail = "eva@host";
    expectFailure(repository.newProvider(second),
                  {.infrastructure = "A provider is already registered with that id"});
    EXPECT_EQ(kinds(),
              (std::vector{Kind::open, Kind::read, Kind::open, Kind::write, Kind::open, Kind::read}));
    EXPECT_EQ(repository.getOne("a").dataAs<CalendarProviderEntity>()->capEmail, "ana@host");
}

TEST_F(LocalRegistryRepositoryImplTests, aLookUpThatFailsDoesNotKeepANewProviderFromBeingSaved) {
    LocalRegistryRepositoryImpl repository(database());
    engine->failsToRead("locked for too long");
    expectPlainSuccess(repository.newProvider(provider("a")));
    EXPECT_EQ(engine->content(databaseFile).size(), 1U);
}

TEST_F(LocalRegistryRepositoryImplTests, anIdOfAnUnknownKindCountsAsFreeAndIsTakenOver) {
    place({objectOfKind("x", "other")});
    LocalRegistryRepositoryImpl repository(database());
    expectPlainSuccess(repository.newProvider(provider("x")));
    EXPECT_EQ(ids(repository.getAll()), Ids{"x"});
}

TEST_F(LocalRegistryRepositoryImplTests, aDatabaseThatNeverOpensIsTriedAgainByTheSave) {
    LocalRegistryRepositoryImpl repository(database());
    neverOpens();
    expectFailure(repository.newProvider(provider("a")), {.infrastructure = cannotOpenText});
    EXPECT_EQ(kinds(), (std::vector{Kind::open, Kind::deleteFiles, Kind::open, Kind::deleteFiles}));
}

TEST_F(LocalRegistryRepositoryImplTests, updatingAnUnknownIdInsertsIt) {
    LocalRegistryRepositoryImpl repository(database());
    expectPlainSuccess(repository.update(provider("a")));
    expectPlainSuccess(repository.update(provider("b", false)));
    EXPECT_EQ(ids(repository.getAll()), (Ids{"a", "b"}));
}

TEST_F(LocalRegistryRepositoryImplTests, deletingAndLookingUpAreTheDatabases) {
    LocalRegistryRepositoryImpl repository(database());
    static_cast<void>(repository.newProvider(provider("a")));
    expectPlainSuccess(repository.deleteProvider("a"));
    expectPlainSuccess(repository.deleteProvider("a"));
    expectFailure(repository.getOne("a"), {.domain = "No provider is registered with that id"});
}

} // namespace
} // namespace CalendarProviders
