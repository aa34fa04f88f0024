#include "Platform/Keychain/SecretServiceKeychain.h"
#include "Platform/Keychain/SystemRandomSource.h"
#include "Tests/Keychain/PrivateKeyring.h"
#include "Tests/Keychain/StubSecretService.h"
#include "Tests/Platform/MemoryScan.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <future>
#include <optional>

namespace {

using namespace std::chrono_literals;
using Foundation::SecretBytes;
using Platform::GenericPasswordIdentity;
using Platform::KeychainStatus;
using Platform::SecretServiceKeychain;

GenericPasswordIdentity const theKey{.service = "Tests.Provider", .account = "Key"};
SecretBytes const theBytes = SecretBytes::filledBy(64, [](auto bytes) { bytes[3] = std::byte{200}; });

/// Far below a minute, and more than a busy computer needs to answer.
SecretServiceKeychain::Patience const shortPatience{.answer = 300ms, .person = 300ms};
constexpr auto wellBelowAMinute = 20s;

void expectEverythingAnswers(SecretServiceKeychain keychain, KeychainStatus status) {
    auto const match = keychain.copyMatching(theKey);
    EXPECT_EQ(match.status, status);
    EXPECT_FALSE(match.data.has_value());
    EXPECT_EQ(keychain.deleteMatching(theKey), status);
    EXPECT_EQ(keychain.add(theKey, theBytes), status);
}

template <typename Work>
std::chrono::steady_clock::duration timeOf(Work work) {
    auto const start = std::chrono::steady_clock::now();
    work();
    return std::chrono::steady_clock::now() - start;
}

} // namespace

TEST(SecretServiceKeychainTests, waitsTenSecondsForAnAnswerAndLongerForAPerson) {
    SecretServiceKeychain::Patience const patience;
    EXPECT_EQ(patience.answer, 10s);
    EXPECT_EQ(patience.person, 120s);
}

TEST(SecretServiceKeychainTests, noBusIsAFailureAndNotAMissingItem) {
    ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
    expectEverythingAnswers(SecretServiceKeychain(), KeychainStatus::ioErr);
}

TEST(SecretServiceKeychainTests, noServiceIsAFailureAndNotAMissingItem) {
    PrivateBus const bus;
    expectEverythingAnswers(SecretServiceKeychain(), KeychainStatus::ioErr);
}

TEST(SecretServiceKeychainTests, aKeyOutlivesTheDaemon) {
    PrivateBus const bus;
    PrivateKeyring keyring(bus);
    keyring.start(PrivateKeyring::Login::unlocked);
    SecretServiceKeychain keychain;
    ASSERT_EQ(keychain.add(theKey, theBytes), KeychainStatus::success);
    keyring.stop();
    EXPECT_EQ(keychain.copyMatching(theKey).status, KeychainStatus::ioErr);
    keyring.start(PrivateKeyring::Login::unlocked);
    EXPECT_EQ(keychain.copyMatching(theKey).data, theBytes);
}

TEST(SecretServiceKeychainTests, aDaemonThatStartsLockedDoesNotSayThatTheKeyIsMissing) {
    PrivateBus const bus;
    PrivateKeyring keyring(bus);
    keyring.start(PrivateKeyring::Login::unlocked);
    SecretServiceKeychain keychain;
    ASSERT_EQ(keychain.add(theKey, theBytes), KeychainStatus::success);
    keyring.stop();
    keyring.start(PrivateKeyring::Login::locked);
    expectEverythingAnswers(keychain, KeychainStatus::interactionNotAllowed);
    keyring.stop();
    keyring.start(PrivateKeyring::Login::unlocked);
    EXPECT_EQ(keychain.copyMatching(theKey).data, theBytes);
}

TEST(SecretServiceKeychainTests, noCopyOfAKeyStaysInThisProcess) {
    PrivateBus const bus;
    PrivateKeyring keyring(bus);
    keyring.start(PrivateKeyring::Login::unlocked);
    SecretServiceKeychain keychain;
    auto key = std::make_optional(SecretBytes::filledBy(64, [](auto bytes) {
        Platform::SystemRandomSource random;
        ASSERT_EQ(random.copyBytes(bytes), 0);
    }));
    MemoryScan const scan(key->bytes());
    ASSERT_EQ(keychain.add(theKey, *key), KeychainStatus::success);
    EXPECT_EQ(keychain.copyMatching(theKey).data, *key);
    EXPECT_GE(scan.find().outsideCoreDumps, 1);
    EXPECT_EQ(scan.find().inCoreDumps, 0);
    key.reset();
    EXPECT_EQ(scan.find().outsideCoreDumps, 0);
}

TEST(SecretServiceKeychainTests, aKeyThatAKillFollowsIsKept) {
    PrivateBus const bus;
    PrivateKeyring keyring(bus);
    keyring.start(PrivateKeyring::Login::unlocked);
    SecretServiceKeychain keychain;
    ASSERT_EQ(keychain.add(theKey, theBytes), KeychainStatus::success);
    keyring.kill();
    keyring.start(PrivateKeyring::Login::unlocked);
    EXPECT_EQ(keychain.copyMatching(theKey).data, theBytes);
}

TEST(SecretServiceKeychainTests, aFrozenDaemonIsAFailureInGoodTime) {
    PrivateBus const bus;
    PrivateKeyring keyring(bus);
    keyring.start(PrivateKeyring::Login::unlocked);
    SecretServiceKeychain keychain;
    ASSERT_EQ(keychain.add(theKey, theBytes), KeychainStatus::success);
    keyring.freeze();
    auto const taken =
        timeOf([] { expectEverythingAnswers(SecretServiceKeychain(shortPatience), KeychainStatus::ioErr); });
    EXPECT_LT(taken, wellBelowAMinute);
}

TEST(SecretServiceKeychainTests, whoGivesUpDoesNotWaitForAFrozenDaemon) {
    PrivateBus const bus;
    PrivateKeyring keyring(bus);
    keyring.start(PrivateKeyring::Login::unlocked);
    SecretServiceKeychain keychain({.answer = 1h, .person = 1h});
    ASSERT_EQ(keychain.copyMatching(theKey).status, KeychainStatus::itemNotFound);
    keyring.freeze();
    auto asking = std::async(std::launch::async, [&] { return keychain.copyMatching(theKey); });
    keychain.giveUp();
    EXPECT_EQ(asking.get().status, KeychainStatus::ioErr);
}

// As "secret-tool store" does, which knows no schema: the daemon puts the text in the place of our item.
TEST(SecretServiceKeychainTests, aTextUnderNoSchemaStandsInTheItemsPlaceToo) {
    PrivateBus const bus;
    PrivateKeyring keyring(bus);
    keyring.start(PrivateKeyring::Login::unlocked);
    SecretServiceKeychain keychain;
    for (auto const isOursThere : {false, true}) {
        if (isOursThere) ASSERT_EQ(keychain.add(theKey, theBytes), KeychainStatus::success);
        keyring.placeText(theKey, "typed by hand", PrivateKeyring::Schema::none);
        auto const match = keychain.copyMatching(theKey);
        EXPECT_EQ(match.status, KeychainStatus::success);
        EXPECT_FALSE(match.data.has_value());
        EXPECT_EQ(keychain.add(theKey, theBytes), KeychainStatus::ioErr);
        EXPECT_EQ(keychain.deleteMatching(theKey), KeychainStatus::success);
        EXPECT_EQ(keychain.copyMatching(theKey).status, KeychainStatus::itemNotFound);
    }
}

TEST(SecretServiceKeychainTests, anItemOfOursIsBelievedBeforeOneOfAnotherProgram) {
    PrivateBus const bus;
    PrivateKeyring keyring(bus);
    keyring.start(PrivateKeyring::Login::unlocked);
    SecretServiceKeychain keychain;
    keyring.placeText(theKey, "another's", PrivateKeyring::Schema::another);
    EXPECT_FALSE(keychain.copyMatching(theKey).data.has_value());
    EXPECT_EQ(keychain.copyMatching(theKey).status, KeychainStatus::success);
    keyring.placeText(theKey, "ours");
    ASSERT_EQ(keychain.update(theKey, theBytes), KeychainStatus::success);
    EXPECT_EQ(keychain.copyMatching(theKey).data, theBytes);
    EXPECT_EQ(keychain.deleteMatching(theKey), KeychainStatus::success);
    EXPECT_EQ(keychain.copyMatching(theKey).status, KeychainStatus::itemNotFound);
}

TEST(SecretServiceKeychainTests, aFreshDaemonHasNoPlaceForNewItems) {
    PrivateBus const bus;
    PrivateKeyring keyring(bus);
    EXPECT_FALSE(SecretServiceKeychain().lacksDefaultCollection()); // Nobody says so.
    keyring.start(PrivateKeyring::Login::fresh);
    EXPECT_TRUE(SecretServiceKeychain().lacksDefaultCollection());
    EXPECT_NE(SecretServiceKeychain(shortPatience).add(theKey, theBytes), KeychainStatus::success);
    keyring.stop();
    keyring.start(PrivateKeyring::Login::unlocked);
    EXPECT_FALSE(SecretServiceKeychain().lacksDefaultCollection());
}

TEST(SecretServiceKeychainTests, aDaemonThatIsKilledWhileItIsAskedIsAFailureAtOnce) {
    PrivateBus const bus;
    PrivateKeyring keyring(bus);
    keyring.start(PrivateKeyring::Login::unlocked);
    keyring.freeze();
    auto asking = std::async(std::launch::async, [] { return SecretServiceKeychain().copyMatching(theKey); });
    keyring.kill();
    EXPECT_EQ(asking.get().status, KeychainStatus::ioErr);
}

TEST(SecretServiceKeychainTests, theEndOfTheBusIsAFailureAndEndsNobodyElse) {
    PrivateBus bus;
    PrivateKeyring keyring(bus);
    keyring.start(PrivateKeyring::Login::unlocked);
    SecretServiceKeychain keychain;
    ASSERT_EQ(keychain.copyMatching(theKey).status, KeychainStatus::itemNotFound);
    keyring.freeze();
    auto asking = std::async(std::launch::async, [&] { return keychain.copyMatching(theKey); });
    bus.stop();
    EXPECT_EQ(asking.get().status, KeychainStatus::ioErr);
    EXPECT_EQ(keychain.copyMatching(theKey).status, KeychainStatus::ioErr);
}

TEST(SecretServiceKeychainTests, aServiceThatRefusesIsToldApart) {
    PrivateBus const bus;
    StubSecretService const service(bus.address(), StubSecretService::Manner::denies);
    expectEverythingAnswers(SecretServiceKeychain(), KeychainStatus::authFailed);
}

TEST(SecretServiceKeychainTests, aServiceThatNeverAnswersIsAFailureInGoodTime) {
    PrivateBus const bus;
    StubSecretService const service(bus.address(), StubSecretService::Manner::staysSilent);
    auto const taken =
        timeOf([] { expectEverythingAnswers(SecretServiceKeychain(shortPatience), KeychainStatus::ioErr); });
    EXPECT_LT(taken, wellBelowAMinute);
}

TEST(SecretServiceKeychainTests, aServiceThatDiesOnTheCallIsAFailure) {
    PrivateBus const bus;
    StubSecretService const service(bus.address(), StubSecretService::Manner::diesOnCall);
    expectEverythingAnswers(SecretServiceKeychain(), KeychainStatus::ioErr);
}

TEST(SecretServiceKeychainTests, anErrorThatNobodyKnowsIsAFailure) {
    PrivateBus const bus;
    StubSecretService const service(bus.address(), StubSecretService::Manner::failsOddly);
    expectEverythingAnswers(SecretServiceKeychain(), KeychainStatus::ioErr);
}
