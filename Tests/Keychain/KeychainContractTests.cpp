#include "Platform/Keychain/FileKeychain.h"
#include "Platform/Keychain/InMemoryKeychain.h"
#include "Platform/Keychain/KeyFile.h"
#include "Platform/Keychain/SecretServiceKeychain.h"
#include "Tests/Keychain/PrivateKeyring.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <ostream>
#include <span>

namespace {

using Foundation::SecretBytes;
using Platform::GenericPasswordIdentity;
using Platform::Keychain;
using Platform::KeychainStatus;

GenericPasswordIdentity const theKey{.service = "Tests.Provider", .account = "Key"};

SecretBytes bytesFrom(std::uint8_t first, std::size_t size = 64) {
    return SecretBytes::filledBy(size, [first](auto bytes) {
        for (std::size_t index = 0; index < bytes.size(); ++index)
            bytes[index] = std::byte(static_cast<std::uint8_t>(first + index * 5));
    });
}

/// One keychain, and what can happen to it from outside.
class World {
public:
    virtual ~World() = default;
    virtual Keychain& keychain() = 0;
    virtual void placeText(GenericPasswordIdentity const& identity, std::string const& text) = 0;
    virtual void lock() { FAIL() << "this keychain has no lock"; }
};

class FakeWorld final : public World {
public:
    Keychain& keychain() override { return fake; }
    void placeText(GenericPasswordIdentity const& identity, std::string const& text) override {
        fake.placeText(identity, text);
    }
    void lock() override { fake.setLocked(true); }

private:
    Platform::InMemoryKeychain fake;
};

class FileWorld final : public World {
public:
    Keychain& keychain() override { return files; }
    void placeText(GenericPasswordIdentity const& identity, std::string const& text) override {
        auto const item = *files.folder() / Platform::KeyFile::nameOf(identity);
        std::filesystem::create_directories(*files.folder());
        std::filesystem::permissions(*files.folder(), std::filesystem::perms::owner_all);
        std::ofstream(item) << text;
        std::filesystem::permissions(item, std::filesystem::perms::owner_read);
    }

private:
    TemporaryFolder dataHome;
    Platform::FileKeychain files{dataHome.path()};
};

class SecretServiceWorld final : public World {
public:
    SecretServiceWorld() { keyring.start(PrivateKeyring::Login::unlocked); }
    Keychain& keychain() override { return service; }
    void placeText(GenericPasswordIdentity const& identity, std::string const& text) override {
        keyring.placeText(identity, text);
    }
    void lock() override { keyring.lockCollections(); }

private:
    PrivateBus bus;
    PrivateKeyring keyring{bus};
    Platform::SecretServiceKeychain service;
};

struct Implementation {
    std::string name;
    std::function<std::unique_ptr<World>()> make;
};

void PrintTo(Implementation const& implementation, std::ostream* out) {
    *out << implementation.name;
}

class KeychainContractTests : public testing::TestWithParam<Implementation> {
protected:
    std::unique_ptr<World> world = GetParam().make();
    Keychain& keychain = world->keychain();
};

class LockableKeychainContractTests : public KeychainContractTests {};

} // namespace

TEST_P(KeychainContractTests, holdsNoItemAtFirst) {
    auto const match = keychain.copyMatching(theKey);
    EXPECT_EQ(match.status, KeychainStatus::itemNotFound);
    EXPECT_FALSE(match.data.has_value());
    EXPECT_EQ(keychain.deleteMatching(theKey), KeychainStatus::itemNotFound);
}

TEST_P(KeychainContractTests, givesBackEveryByte) {
    auto const key = bytesFrom(0);
    ASSERT_EQ(keychain.add(theKey, key), KeychainStatus::success);
    auto const match = keychain.copyMatching(theKey);
    EXPECT_EQ(match.status, KeychainStatus::success);
    EXPECT_EQ(match.data, key);
}

TEST_P(KeychainContractTests, givesBackASingleZero) {
    auto const zero = SecretBytes::filledBy(1, [](auto) {});
    ASSERT_EQ(keychain.add(theKey, zero), KeychainStatus::success);
    EXPECT_EQ(keychain.copyMatching(theKey).data, zero);
}

TEST_P(KeychainContractTests, tellsItemsApartByServiceAndAccount) {
    std::vector<GenericPasswordIdentity> const identities{
        {.service = "a", .account = "b"},       {.service = "a", .account = "c"},
        {.service = "d", .account = "b"},       {.service = "a b", .account = "c"},
        {.service = "a", .account = "b c"},     {.service = "../../etc", .account = "a/b"},
        {.service = "100%", .account = "%2F"},  {.service = "Español", .account = "ключ"},
        {.service = "item a", .account = ".."},
    };
    for (std::size_t index = 0; index < identities.size(); ++index) {
        EXPECT_EQ(keychain.copyMatching(identities[index]).status, KeychainStatus::itemNotFound) << index;
        ASSERT_EQ(keychain.add(identities[index], bytesFrom(static_cast<std::uint8_t>(index))),
                  KeychainStatus::success)
            << index;
    }
    for (std::size_t index = 0; index < identities.size(); ++index) {
        EXPECT_EQ(keychain.copyMatching(identities[index]).data, bytesFrom(static_cast<std::uint8_t>(index)))
            << index;
    }
}

TEST_P(KeychainContractTests, neverReplacesAnItem) {
    ASSERT_EQ(keychain.add(theKey, bytesFrom(1)), KeychainStatus::success);
    EXPECT_EQ(keychain.add(theKey, bytesFrom(2)), KeychainStatus::ioErr);
    EXPECT_EQ(keychain.copyMatching(theKey).data, bytesFrom(1));
}

TEST_P(KeychainContractTests, deletesOnlyTheItemThatIsMeant) {
    GenericPasswordIdentity const other{.service = "Tests.Provider", .account = "Other"};
    ASSERT_EQ(keychain.add(theKey, bytesFrom(1)), KeychainStatus::success);
    ASSERT_EQ(keychain.add(other, bytesFrom(2)), KeychainStatus::success);
    EXPECT_EQ(keychain.deleteMatching(theKey), KeychainStatus::success);
    EXPECT_EQ(keychain.copyMatching(theKey).status, KeychainStatus::itemNotFound);
    EXPECT_EQ(keychain.copyMatching(other).data, bytesFrom(2));
}

TEST_P(KeychainContractTests, keepsANewValueAfterDeletion) {
    ASSERT_EQ(keychain.add(theKey, bytesFrom(1)), KeychainStatus::success);
    ASSERT_EQ(keychain.deleteMatching(theKey), KeychainStatus::success);
    ASSERT_EQ(keychain.add(theKey, bytesFrom(2)), KeychainStatus::success);
    EXPECT_EQ(keychain.copyMatching(theKey).data, bytesFrom(2));
}

TEST_P(KeychainContractTests, anUpdateTakesThePlaceOfWhatWasThere) {
    EXPECT_EQ(keychain.update(theKey, bytesFrom(1)), KeychainStatus::itemNotFound);
    EXPECT_EQ(keychain.copyMatching(theKey).status, KeychainStatus::itemNotFound);
    ASSERT_EQ(keychain.add(theKey, bytesFrom(1)), KeychainStatus::success);
    EXPECT_EQ(keychain.update(theKey, bytesFrom(2, 3)), KeychainStatus::success);
    EXPECT_EQ(keychain.copyMatching(theKey).data, bytesFrom(2, 3));
    EXPECT_EQ(keychain.deleteMatching(theKey), KeychainStatus::success);
    EXPECT_EQ(keychain.copyMatching(theKey).status, KeychainStatus::itemNotFound);
}

TEST_P(KeychainContractTests, anUpdateTakesThePlaceOfATextToo) {
    world->placeText(theKey, "a text that somebody put here");
    EXPECT_EQ(keychain.update(theKey, bytesFrom(1)), KeychainStatus::success);
    EXPECT_EQ(keychain.copyMatching(theKey).data, bytesFrom(1));
}

TEST_P(KeychainContractTests, aTextIsAnItemWithoutData) {
    world->placeText(theKey, "a text that somebody put here");
    auto const match = keychain.copyMatching(theKey);
    EXPECT_EQ(match.status, KeychainStatus::success);
    EXPECT_FALSE(match.data.has_value());
    EXPECT_EQ(keychain.add(theKey, bytesFrom(1)), KeychainStatus::ioErr);
}

TEST_P(KeychainContractTests, deletesATextToo) {
    world->placeText(theKey, "a text that somebody put here");
    EXPECT_EQ(keychain.deleteMatching(theKey), KeychainStatus::success);
    EXPECT_EQ(keychain.copyMatching(theKey).status, KeychainStatus::itemNotFound);
}

TEST_P(LockableKeychainContractTests, aLockedItemIsNotAMissingOne) {
    ASSERT_EQ(keychain.add(theKey, bytesFrom(1)), KeychainStatus::success);
    world->lock();
    auto const match = keychain.copyMatching(theKey);
    EXPECT_EQ(match.status, KeychainStatus::interactionNotAllowed);
    EXPECT_FALSE(match.data.has_value());
    EXPECT_EQ(keychain.deleteMatching(theKey), KeychainStatus::interactionNotAllowed);
    EXPECT_EQ(keychain.add(theKey, bytesFrom(2)), KeychainStatus::interactionNotAllowed);
    EXPECT_EQ(keychain.update(theKey, bytesFrom(2)), KeychainStatus::interactionNotAllowed);
}

TEST_P(LockableKeychainContractTests, aLockedKeychainDoesNotSayThatItIsEmpty) {
    world->lock();
    EXPECT_EQ(keychain.copyMatching(theKey).status, KeychainStatus::interactionNotAllowed);
    EXPECT_EQ(keychain.deleteMatching(theKey), KeychainStatus::interactionNotAllowed);
    EXPECT_EQ(keychain.add(theKey, bytesFrom(2)), KeychainStatus::interactionNotAllowed);
}

namespace {

Implementation const fake{.name = "Fake", .make = [] { return std::make_unique<FakeWorld>(); }};
Implementation const files{.name = "Files", .make = [] { return std::make_unique<FileWorld>(); }};
Implementation const service{.name = "SecretService",
                             .make = [] { return std::make_unique<SecretServiceWorld>(); }};

std::string nameOf(testing::TestParamInfo<Implementation> const& info) {
    return info.param.name;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Every, KeychainContractTests, testing::Values(fake, files, service), nameOf);
INSTANTIATE_TEST_SUITE_P(Every, LockableKeychainContractTests, testing::Values(fake, service), nameOf);
