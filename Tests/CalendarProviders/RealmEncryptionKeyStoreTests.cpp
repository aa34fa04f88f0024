#include "CalendarProviders/RealmEncryptionKeyStore.h"
#include "Platform/Keychain/InMemoryKeychain.h"
#include "Platform/Keychain/ScriptedRandomSource.h"
#include "Tests/CalendarProviders/ProviderFixtures.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace CalendarProviders {
namespace {

using namespace Fixtures;
using Foundation::SecretBytes;
using Platform::KeychainStatus;
using Kind = Platform::InMemoryKeychain::Operation::Kind;

constexpr char const* service = "CalendarProviders.RegistryProvider";

std::vector<Kind> kinds(Platform::InMemoryKeychain const& keychain) {
    std::vector<Kind> found;
    for (auto const& operation : keychain.history())
        found.push_back(operation.kind);
    return found;
}

TEST(RealmEncryptionKeyStoreTests, anEmptyKeychainGetsAKeyOf64RandomBytes) {
    Platform::InMemoryKeychain keychain;
    Platform::ScriptedRandomSource random;
    auto const result = RealmEncryptionKeyStore::loadOrCreateKey(keychain, random, service);
    expectSuccess(result);
    EXPECT_EQ(result.dataAs<SecretBytes>(), countingKey());
    EXPECT_EQ(keychain.value(keyIdentity), countingKey());
    EXPECT_EQ(keychain.itemCount(), 1U);
    EXPECT_EQ(random.requestedSizes(), std::vector<std::size_t>{64});
}

TEST(RealmEncryptionKeyStoreTests, theSecondCallYieldsTheSameKeyAndChangesNothing) {
    Platform::InMemoryKeychain keychain;
    Platform::ScriptedRandomSource random;
    static_cast<void>(RealmEncryptionKeyStore::loadOrCreateKey(keychain, random, service));
    auto const again = RealmEncryptionKeyStore::loadOrCreateKey(keychain, random, service);
    EXPECT_EQ(again.dataAs<SecretBytes>(), countingKey());
    EXPECT_EQ(kinds(keychain),
              (std::vector{Kind::copyMatching, Kind::deleteMatching, Kind::add, Kind::copyMatching}));
    EXPECT_EQ(random.requestedSizes().size(), 1U);
}

TEST(RealmEncryptionKeyStoreTests, aNewKeyIsAddedAfterWhateverStoodThereWasDeleted) {
    Platform::InMemoryKeychain keychain;
    Platform::ScriptedRandomSource random;
    static_cast<void>(RealmEncryptionKeyStore::loadOrCreateKey(keychain, random, service));
    auto const& history = keychain.history();
    ASSERT_EQ(history.size(), 3U);
    EXPECT_EQ(history[0].kind, Kind::copyMatching);
    EXPECT_EQ(history[1].kind, Kind::deleteMatching);
    EXPECT_EQ(history[2].kind, Kind::add);
    for (auto const& operation : history)
        EXPECT_EQ(operation.identity, keyIdentity);
}

TEST(RealmEncryptionKeyStoreTests, serviceAndAccountNameTheItem) {
    Platform::InMemoryKeychain keychain;
    Platform::ScriptedRandomSource random;
    static_cast<void>(RealmEncryptionKeyStore::loadOrCreateKey(keychain, random, "a service", "an account"));
    EXPECT_EQ(keychain.value({.service = "a service", .account = "an account"}), countingKey());
    EXPECT_EQ(keychain.itemCount(), 1U);
}

TEST(RealmEncryptionKeyStoreTests, theLengthOfAStoredKeyIsNotLookedAt) {
    Platform::InMemoryKeychain keychain;
    keychain.place(keyIdentity, countingKey(3));
    Platform::ScriptedRandomSource random;
    auto const result = RealmEncryptionKeyStore::loadOrCreateKey(keychain, random, service);
    expectSuccess(result);
    EXPECT_EQ(result.dataAs<SecretBytes>(), countingKey(3));
    EXPECT_EQ(kinds(keychain), std::vector{Kind::copyMatching});
}

TEST(RealmEncryptionKeyStoreTests, onlyAMissingItemLeadsToAKey) {
    struct Refusal {
        char const* name;
        std::int32_t status;
        char const* text;
    };
    for (auto const& refusal : std::to_array<Refusal>({
             {"locked", -25308,
              "Keychain lookup failed with status -25308; refusing to regenerate the encryption key"},
             {"denied", -25293,
              "Keychain lookup failed with status -25293; refusing to regenerate the encryption key"},
             {"unreachable", -36,
              "Keychain lookup failed with status -36; refusing to regenerate the encryption key"},
             {"an unknown positive status", 7,
              "Keychain lookup failed with status 7; refusing to regenerate the encryption key"},
             {"the smallest status", -2147483648,
              "Keychain lookup failed with status -2147483648; refusing to regenerate the encryption key"},
             {"a success that brings nothing", 0,
              "Keychain lookup failed with status 0; refusing to regenerate the encryption key"},
         })) {
        SCOPED_TRACE(refusal.name);
        Platform::InMemoryKeychain keychain;
        keychain.answersLookupsWith(static_cast<KeychainStatus>(refusal.status));
        Platform::ScriptedRandomSource random;
        expectFailure(RealmEncryptionKeyStore::loadOrCreateKey(keychain, random, service),
                      {.database = refusal.text});
        EXPECT_EQ(kinds(keychain), std::vector{Kind::copyMatching});
        EXPECT_EQ(keychain.itemCount(), 0U);
        EXPECT_TRUE(random.requestedSizes().empty());
    }
}

TEST(RealmEncryptionKeyStoreTests, aTextInTheItemsPlaceIsRefusedWithStatusZeroAndStays) {
    Platform::InMemoryKeychain keychain;
    keychain.placeText(keyIdentity, "typed by hand");
    Platform::ScriptedRandomSource random;
    expectFailure(
        RealmEncryptionKeyStore::loadOrCreateKey(keychain, random, service),
        {.database = "Keychain lookup failed with status 0; refusing to regenerate the encryption key"});
    EXPECT_EQ(kinds(keychain), std::vector{Kind::copyMatching});
    EXPECT_EQ(keychain.itemCount(), 1U);
}

TEST(RealmEncryptionKeyStoreTests, aLockedKeychainKeepsItsKeyForLater) {
    Platform::InMemoryKeychain keychain;
    keychain.place(keyIdentity, countingKey(64, 100));
    keychain.setLocked(true);
    Platform::ScriptedRandomSource random;
    EXPECT_FALSE(RealmEncryptionKeyStore::loadOrCreateKey(keychain, random, service).result);
    keychain.setLocked(false);
    EXPECT_EQ(RealmEncryptionKeyStore::loadOrCreateKey(keychain, random, service).dataAs<SecretBytes>(),
              countingKey(64, 100));
}

TEST(RealmEncryptionKeyStoreTests, withoutRandomBytesThereIsNoKey) {
    Platform::InMemoryKeychain keychain;
    Platform::ScriptedRandomSource random;
    random.failsWith(5);
    expectFailure(RealmEncryptionKeyStore::loadOrCreateKey(keychain, random, service),
                  {.database = "Failed to generate the encryption key"});
    EXPECT_EQ(kinds(keychain), std::vector{Kind::copyMatching});
    EXPECT_EQ(keychain.itemCount(), 0U);
}

TEST(RealmEncryptionKeyStoreTests, aKeyThatCannotBeKeptIsNotYielded) {
    Platform::InMemoryKeychain keychain;
    keychain.answersAddsWith(KeychainStatus::interactionNotAllowed);
    Platform::ScriptedRandomSource random;
    expectFailure(RealmEncryptionKeyStore::loadOrCreateKey(keychain, random, service),
                  {.database = "Failed to save the encryption key to Keychain"});
    EXPECT_EQ(keychain.itemCount(), 0U);
}

TEST(RealmEncryptionKeyStoreTests, aFailingDeletionDoesNotKeepTheKeyFromBeingAdded) {
    Platform::InMemoryKeychain keychain;
    keychain.answersDeletesWith(KeychainStatus::ioErr);
    Platform::ScriptedRandomSource random;
    expectSuccess(RealmEncryptionKeyStore::loadOrCreateKey(keychain, random, service));
    EXPECT_EQ(keychain.value(keyIdentity), countingKey());
}

TEST(RealmEncryptionKeyStoreTests, everyKeyIsMadeOfBytesOfItsOwn) {
    Platform::InMemoryKeychain keychain;
    Platform::ScriptedRandomSource random;
    static_cast<void>(RealmEncryptionKeyStore::loadOrCreateKey(keychain, random, "first"));
    auto const second = RealmEncryptionKeyStore::loadOrCreateKey(keychain, random, "second");
    EXPECT_EQ(second.dataAs<SecretBytes>(), countingKey(64, 64));
}

} // namespace
} // namespace CalendarProviders
