#include "Applications/Composition/BackendTokens.h"
#include "Applications/Composition/KeychainTokenProvider.h"
#include "Networking/Timeout.h"
#include "Platform/Keychain/InMemoryKeychain.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <memory>
#include <mutex>

namespace Composition {
namespace {

using Platform::KeychainStatus;

class BackendTokensTests : public testing::Test {
protected:
    std::shared_ptr<Platform::InMemoryKeychain> keychain = std::make_shared<Platform::InMemoryKeychain>();
    BackendTokens tokens{keychain};
    Foundation::URL const url{.absoluteString = "https://h"};
    Foundation::URL const other{.absoluteString = "https://other"};
};

TEST_F(BackendTokensTests, aTokenIsFoundForItsOwnBackendOnly) {
    EXPECT_EQ(tokens.find(url), std::unexpected(KeychainStatus::itemNotFound));
    EXPECT_EQ(tokens.save(url, "t1"), KeychainStatus::success);
    EXPECT_EQ(tokens.find(url), "t1");
    EXPECT_EQ(tokens.find(other), std::unexpected(KeychainStatus::itemNotFound));
    EXPECT_EQ(tokens.save(url, "t2"), KeychainStatus::success);
    EXPECT_EQ(tokens.save(url, "t2"), KeychainStatus::success);
    EXPECT_EQ(tokens.find(url), "t2");
    EXPECT_EQ(tokens.remove(url), KeychainStatus::success);
    EXPECT_EQ(tokens.remove(url), KeychainStatus::itemNotFound);
    EXPECT_EQ(tokens.find(url), std::unexpected(KeychainStatus::itemNotFound));
}

TEST_F(BackendTokensTests, aLockedKeychainKeepsAndGivesNothing) {
    ASSERT_EQ(tokens.save(url, "t1"), KeychainStatus::success);
    keychain->setLocked(true);
    EXPECT_EQ(tokens.find(url), std::unexpected(KeychainStatus::interactionNotAllowed));
    EXPECT_EQ(tokens.save(url, "t2"), KeychainStatus::interactionNotAllowed);
    keychain->setLocked(false);
    EXPECT_EQ(tokens.find(url), "t1");
}

TEST_F(BackendTokensTests, aFailedChangeIsReportedAndWhatStandsThereIsNoToken) {
    ASSERT_EQ(tokens.save(url, "t1"), KeychainStatus::success);
    keychain->answersUpdatesWith(KeychainStatus::authFailed);
    EXPECT_EQ(tokens.save(url, "t2"), KeychainStatus::authFailed);
    EXPECT_EQ(tokens.find(url), "t1");
    keychain->placeText(BackendTokens::identity(other), "typed by hand");
    EXPECT_EQ(tokens.find(other), std::unexpected(KeychainStatus::itemNotFound));
}

TEST_F(BackendTokensTests, aTokenThatIsReplacedIsThereAllTheWhile) {
    ASSERT_EQ(tokens.save(url, "t1"), KeychainStatus::success);
    keychain->answersDeletesWith(KeychainStatus::ioErr);
    keychain->answersAddsWith(KeychainStatus::ioErr);
    EXPECT_EQ(tokens.save(url, "t2"), KeychainStatus::success);
    EXPECT_EQ(tokens.find(url), "t2");
}

TEST_F(BackendTokensTests, theProviderAsksAnewEachTime) {
    KeychainTokenProvider provider(tokens, url);
    EXPECT_THROW(Foundation::runTask(provider.token()), std::runtime_error);
    EXPECT_EQ(provider.failure(), KeychainStatus::itemNotFound);
    ASSERT_EQ(tokens.save(url, "t1"), KeychainStatus::success);
    EXPECT_EQ(Foundation::runTask(provider.token()), "t1");
    EXPECT_EQ(provider.failure(), std::nullopt);
    ASSERT_EQ(tokens.save(url, "t2"), KeychainStatus::success);
    EXPECT_EQ(Foundation::runTask(provider.token()), "t2");
}

// Answers no look-up before it is given up.
class HangingKeychain final : public Platform::Keychain {
public:
    [[nodiscard]] Platform::GenericPasswordMatch
    copyMatching(Platform::GenericPasswordIdentity const&) const override {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return isGivenUp; });
        return {.status = KeychainStatus::ioErr, .data = std::nullopt};
    }
    KeychainStatus deleteMatching(Platform::GenericPasswordIdentity const&) override {
        return KeychainStatus::ioErr;
    }
    KeychainStatus add(Platform::GenericPasswordIdentity const&, Foundation::SecretBytes const&) override {
        return KeychainStatus::ioErr;
    }
    KeychainStatus update(Platform::GenericPasswordIdentity const&, Foundation::SecretBytes const&) override {
        return KeychainStatus::ioErr;
    }

    void giveUp() override {
        {
            std::scoped_lock const lock(mutex);
            isGivenUp = true;
        }
        changed.notify_all();
    }

private:
    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    bool isGivenUp = false;
};

TEST(KeychainTokenProviderTests, aKeychainThatHangsHoldsNobodyUp) {
    auto const keychain = std::make_shared<HangingKeychain>();
    KeychainTokenProvider provider(BackendTokens(keychain), {.absoluteString = "https://h"});
    std::function<Foundation::Task<std::string>()> operation = [&] { return provider.token(); };
    // Were the keychain waited for, this would never end; nor would the provider, which gives it up.
    EXPECT_THROW(Foundation::runTask(Networking::withTimeout<std::string>(0.05, operation)),
                 Networking::TimeoutError);
}

} // namespace
} // namespace Composition
