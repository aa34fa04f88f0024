#include "Platform/Keychain/InMemoryKeychain.h"

#include <gtest/gtest.h>

namespace {

using Foundation::SecretBytes;
using Platform::GenericPasswordIdentity;
using Platform::InMemoryKeychain;
using Platform::KeychainStatus;
using Kind = InMemoryKeychain::Operation::Kind;

GenericPasswordIdentity const theKey{.service = "Tests.Provider", .account = "Key"};
SecretBytes const theBytes = SecretBytes::filledBy(64, [](auto) {});

} // namespace

TEST(InMemoryKeychainTests, remembersWhatWasAskedAndHowItWent) {
    InMemoryKeychain keychain;
    static_cast<void>(keychain.copyMatching(theKey));
    keychain.add(theKey, theBytes);
    keychain.deleteMatching(theKey);
    std::vector<InMemoryKeychain::Operation> const expected{
        {.kind = Kind::copyMatching, .identity = theKey, .status = KeychainStatus::itemNotFound},
        {.kind = Kind::add, .identity = theKey, .status = KeychainStatus::success},
        {.kind = Kind::deleteMatching, .identity = theKey, .status = KeychainStatus::success},
    };
    EXPECT_EQ(keychain.history(), expected);
}

TEST(InMemoryKeychainTests, answersWithAScriptedStatusAndChangesNothing) {
    InMemoryKeychain keychain;
    keychain.place(theKey, theBytes);
    keychain.answersLookupsWith(KeychainStatus::authFailed);
    keychain.answersDeletesWith(KeychainStatus::ioErr);
    keychain.answersAddsWith(static_cast<KeychainStatus>(-25299));
    EXPECT_EQ(keychain.copyMatching(theKey).status, KeychainStatus::authFailed);
    EXPECT_FALSE(keychain.copyMatching(theKey).data.has_value());
    EXPECT_EQ(keychain.deleteMatching(theKey), KeychainStatus::ioErr);
    EXPECT_EQ(static_cast<int>(keychain.add({.service = "a", .account = "b"}, theBytes)), -25299);
    EXPECT_EQ(keychain.itemCount(), 1U);
    keychain.answersLookupsWith(std::nullopt);
    EXPECT_EQ(keychain.copyMatching(theKey).data, theBytes);
}

TEST(InMemoryKeychainTests, hasNoBytesWhereATextIs) {
    InMemoryKeychain keychain;
    keychain.placeText(theKey, "a text");
    EXPECT_FALSE(keychain.value(theKey).has_value());
    EXPECT_EQ(keychain.itemCount(), 1U);
}
