#include "CalendarProviders/RealmDatabaseOpener.h"
#include "CalendarProviders/RealmEncryptedConfigurationFactory.h"
#include "Platform/Keychain/InMemoryKeychain.h"
#include "Platform/Keychain/ScriptedRandomSource.h"
#include "Platform/ObjectDatabase/InMemoryObjectDatabaseEngine.h"
#include "Tests/CalendarProviders/ProviderFixtures.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

namespace CalendarProviders {
namespace {

using namespace Fixtures;
using Platform::InMemoryObjectDatabaseEngine;
using Platform::ObjectDatabaseConfiguration;
using Handle = std::shared_ptr<Platform::ObjectDatabase>;
using Kind = InMemoryObjectDatabaseEngine::Operation::Kind;

constexpr char const* service = "CalendarProviders.RegistryProvider";

void doNothing(Platform::ObjectTransaction&, std::uint64_t) {}

std::vector<Kind> kinds(InMemoryObjectDatabaseEngine const& engine) {
    std::vector<Kind> found;
    for (auto const& operation : engine.history())
        found.push_back(operation.kind);
    return found;
}

ObjectDatabaseConfiguration configuration(Foundation::SecretBytes key = countingKey()) {
    return {
        .fileURL = databaseFile,
        .encryptionKey = std::move(key),
        .schemaVersion = 1,
        .migrationBlock = doNothing,
    };
}

std::vector<Platform::PersistedObject> oneObject() {
    return {{.typeName = "CalendarProviderRealmModel", .primaryKey = "a", .properties = {}}};
}

class RealmEncryptedConfigurationFactoryTests : public testing::Test {
protected:
    ResultEntity make(InMemoryObjectDatabaseEngine const& engine, std::uint64_t schemaVersion = 1,
                      Platform::MigrationBlock migrationBlock = doNothing) {
        return RealmEncryptedConfigurationFactory::make(
            {.keychain = keychain, .random = random, .engine = engine}, service, schemaVersion,
            std::move(migrationBlock));
    }

    Platform::InMemoryKeychain keychain;
    Platform::ScriptedRandomSource random;
};

TEST_F(RealmEncryptedConfigurationFactoryTests, withoutAStoredKeyTheKeyIsMadeFirst) {
    InMemoryObjectDatabaseEngine const engine;
    auto const result = make(engine);
    expectSuccess(result);
    auto const made = result.dataAs<ObjectDatabaseConfiguration>();
    ASSERT_TRUE(made.has_value());
    EXPECT_EQ(made->encryptionKey, countingKey());
    EXPECT_EQ(keychain.value(keyIdentity), countingKey());
}

TEST_F(RealmEncryptedConfigurationFactoryTests, theFileBearsTheServicesNameInTheDefaultFilesFolder) {
    InMemoryObjectDatabaseEngine const engine("/elsewhere");
    auto const made = make(engine).dataAs<ObjectDatabaseConfiguration>();
    ASSERT_TRUE(made.has_value());
    EXPECT_EQ(made->fileURL, "/elsewhere/CalendarProviders.RegistryProvider.realm");
    EXPECT_FALSE(made->readOnly);
}

TEST_F(RealmEncryptedConfigurationFactoryTests, schemaVersionAndMigrationAreTheCallers) {
    InMemoryObjectDatabaseEngine const engine;
    std::optional<std::uint64_t> migratedFrom;
    auto const made =
        make(engine, 18446744073709551615U, [&](Platform::ObjectTransaction&, std::uint64_t oldVersion) {
            migratedFrom = oldVersion;
        }).dataAs<ObjectDatabaseConfiguration>();
    ASSERT_TRUE(made.has_value());
    EXPECT_EQ(made->schemaVersion, 18446744073709551615U);

    InMemoryObjectDatabaseEngine other;
    other.place(databaseFile, countingKey(), 4, {});
    ASSERT_TRUE(other.open(*made).has_value());
    EXPECT_EQ(migratedFrom, 4U);
}

TEST_F(RealmEncryptedConfigurationFactoryTests, withoutAPlaceForDatabasesTheLocationIsAbsent) {
    InMemoryObjectDatabaseEngine const engine(std::nullopt);
    auto const made = make(engine).dataAs<ObjectDatabaseConfiguration>();
    ASSERT_TRUE(made.has_value());
    EXPECT_EQ(made->fileURL, std::nullopt);
}

TEST_F(RealmEncryptedConfigurationFactoryTests, aRefusedLookUpIsTheInfrastructuresFailureAndTouchesNoFile) {
    keychain.setLocked(true);
    InMemoryObjectDatabaseEngine engine;
    engine.place(databaseFile, countingKey(), 1, oneObject());
    expectFailure(make(engine),
                  {.infrastructure = "Keychain lookup failed with status -25308; refusing to regenerate the "
                                     "encryption key"});
    EXPECT_TRUE(engine.history().empty());
    EXPECT_EQ(engine.content(databaseFile), oneObject());
}

TEST_F(RealmEncryptedConfigurationFactoryTests, theOtherTextsOfTheKeyStoreAreLiftedToo) {
    InMemoryObjectDatabaseEngine const engine;
    keychain.answersAddsWith(Platform::KeychainStatus::ioErr);
    expectFailure(make(engine), {.infrastructure = "Failed to save the encryption key to Keychain"});
    random.failsWith(1);
    expectFailure(make(engine), {.infrastructure = "Failed to generate the encryption key"});
}

TEST(RealmDatabaseOpenerTests, anOpenDatabaseIsYieldedAndNothingDeleted) {
    InMemoryObjectDatabaseEngine engine;
    engine.place(databaseFile, countingKey(), 1, oneObject());
    auto const result = RealmDatabaseOpener::open(engine, configuration());
    expectSuccess(result);
    auto const handle = result.dataAs<Handle>();
    ASSERT_TRUE(handle.has_value());
    EXPECT_EQ((*handle)->objects("CalendarProviderRealmModel"), oneObject());
    EXPECT_EQ(kinds(engine), (std::vector{Kind::open, Kind::read}));
}

TEST(RealmDatabaseOpenerTests, whatWasWrittenWithAnotherKeyIsDeletedAndOpenedEmptyWithTheSameKey) {
    InMemoryObjectDatabaseEngine engine;
    engine.place(databaseFile, countingKey(64, 9), 1, oneObject());
    auto const result = RealmDatabaseOpener::open(engine, configuration());
    expectSuccess(result);
    EXPECT_TRUE(result.dataAs<Handle>().has_value());
    EXPECT_EQ(kinds(engine), (std::vector{Kind::open, Kind::deleteFiles, Kind::open}));
    EXPECT_TRUE(engine.exists(databaseFile));
    EXPECT_TRUE(engine.content(databaseFile).empty());
    // The same key opens it from now on.
    EXPECT_TRUE(engine.open(configuration()).has_value());
}

TEST(RealmDatabaseOpenerTests, aSchemaThatCannotBeMigratedIsHandledTheSameWay) {
    InMemoryObjectDatabaseEngine engine;
    engine.place(databaseFile, countingKey(), 2, oneObject());
    expectSuccess(RealmDatabaseOpener::open(engine, configuration()));
    EXPECT_TRUE(engine.content(databaseFile).empty());
}

TEST(RealmDatabaseOpenerTests, aFailedDeletionEndsItWithoutASecondOpening) {
    InMemoryObjectDatabaseEngine engine;
    engine.place(databaseFile, countingKey(), 1, oneObject());
    engine.failsToOpen(1, "first reason");
    engine.failsToDelete("second reason");
    expectFailure(RealmDatabaseOpener::open(engine, configuration()),
                  {.database = "Open failed (first reason) and the recovery delete also failed: second "
                               "reason"});
    EXPECT_EQ(kinds(engine), (std::vector{Kind::open, Kind::deleteFiles}));
    EXPECT_EQ(engine.content(databaseFile), oneObject());
}

TEST(RealmDatabaseOpenerTests, thereIsOneRetryAndNoMore) {
    InMemoryObjectDatabaseEngine engine;
    engine.failsToOpen(2, "no reason");
    expectFailure(RealmDatabaseOpener::open(engine, configuration()),
                  {.database = "Open failed (no reason); recreated the file but it still failed to open: no "
                               "reason"});
    EXPECT_EQ(kinds(engine), (std::vector{Kind::open, Kind::deleteFiles, Kind::open}));
}

TEST(RealmDatabaseOpenerTests, bothReasonsAreToldInTheirOrder) {
    InMemoryObjectDatabaseEngine engine;
    engine.failsToOpen(1, "damaged");
    expectFailure(RealmDatabaseOpener::open(engine, configuration(countingKey(3))),
                  {.database = "Open failed (damaged); recreated the file but it still failed to open: the "
                               "encryption key is not 64 bytes long"});
}

TEST(RealmDatabaseOpenerTests, withoutALocationNothingOpens) {
    InMemoryObjectDatabaseEngine engine(std::nullopt);
    auto nowhere = configuration();
    nowhere.fileURL = std::nullopt;
    expectFailure(RealmDatabaseOpener::open(engine, nowhere),
                  {.database = "Open failed (no location); recreated the file but it still failed to open: "
                               "no location"});
}

} // namespace
} // namespace CalendarProviders
