#include "CalendarProviders/CalendarProviderDatabase.h"
#include "CalendarProviders/RealmEncryptionKeyStore.h"
#include "Platform/Clock/SystemClock.h"
#include "Platform/Keychain/FileKeychain.h"
#include "Platform/Keychain/SystemRandomSource.h"
#include "Platform/ObjectDatabase/SealedObjectDatabaseEngine.h"
#include "Tests/CalendarProviders/ProviderFixtures.h"
#include "Tests/Platform/MemoryScan.h"
#include "Tests/Platform/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace CalendarProviders {
namespace {

using namespace Fixtures;

// The live parts: whatever passes the key on may leave a copy of it behind.
class KeyInMemoryTests : public testing::Test {
protected:
    KeyInMemoryTests() {
        auto const made = RealmEncryptionKeyStore::loadOrCreateKey(keychain, random,
                                                                   CalendarProviderDatabase::keychainService);
        scan.emplace(made.dataAs<Foundation::SecretBytes>().value().bytes());
    }

    TemporaryFolder home;
    Platform::FileKeychain keychain{home.path()};
    Platform::SystemRandomSource random;
    std::optional<MemoryScan> scan;
};

TEST_F(KeyInMemoryTests, aKeyThatWasMadeIsGoneOnceNobodyHoldsIt) {
    auto const found = scan->find();
    EXPECT_EQ(found.inCoreDumps, 0);
    EXPECT_EQ(found.outsideCoreDumps, 0);
}

TEST_F(KeyInMemoryTests, aKeyInUseStandsOnlyWhereNoCoreDumpGoes) {
    auto const key =
        RealmEncryptionKeyStore::loadOrCreateKey(keychain, random, CalendarProviderDatabase::keychainService);
    auto const found = scan->find();
    EXPECT_EQ(found.inCoreDumps, 0);
    EXPECT_GE(found.outsideCoreDumps, 1); // So that the scan is known to find it at all.
    EXPECT_TRUE(key.result);
}

TEST_F(KeyInMemoryTests, aCopyInOrdinaryMemoryWouldBeSeen) {
    auto const key =
        RealmEncryptionKeyStore::loadOrCreateKey(keychain, random, CalendarProviderDatabase::keychainService)
            .dataAs<Foundation::SecretBytes>()
            .value();
    // At the first call of a function the loader puts registers aside in which part of the copy may stand.
    EXPECT_EQ(scan->find().inCoreDumps, 0);
    std::vector<std::byte> copy(key.bytes().begin(), key.bytes().end());
    EXPECT_GE(scan->find().inCoreDumps, 1);
    ::explicit_bzero(copy.data(), copy.size());
    EXPECT_EQ(scan->find().inCoreDumps, 0);
}

TEST_F(KeyInMemoryTests, theDatabaseLeavesNoCopyOfTheKey) {
    {
        auto const engine = std::make_shared<Platform::SealedObjectDatabaseEngine>(
            home.path(), std::make_shared<Platform::SystemClock>());
        auto const database = CalendarProviderDatabase::make(keychain, random, engine)
                                  .dataAs<CalendarProviderDatabase>()
                                  .value();
        expectSuccess(database.save(provider("cal")));
        expectSuccess(database.getAll());
        auto const found = scan->find();
        EXPECT_EQ(found.inCoreDumps, 0);
        EXPECT_GE(found.outsideCoreDumps, 1);
    }
    auto const found = scan->find();
    EXPECT_EQ(found.inCoreDumps, 0);
    EXPECT_EQ(found.outsideCoreDumps, 0);
}

} // namespace
} // namespace CalendarProviders
