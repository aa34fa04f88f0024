#include "Platform/Keychain/FileKeychain.h"
#include "Platform/Keychain/KeyFile.h"
#include "Tests/Platform/OrdinaryUser.h"
#include "Tests/Platform/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <future>
#include <string>
#include <vector>

namespace {

using Foundation::SecretBytes;
using Platform::FileKeychain;
using Platform::GenericPasswordIdentity;
using Platform::KeychainStatus;
using std::filesystem::path;

GenericPasswordIdentity const theKey{.service = "CalendarProviders.RegistryProvider",
                                     .account = "RealmEncryptionKey"};
SecretBytes const theBytes = SecretBytes::filledBy(64, [](auto bytes) { bytes[3] = std::byte{200}; });

std::uint32_t modeOf(path const& file) {
    struct stat status{};
    ::lstat(file.c_str(), &status);
    return status.st_mode & 07777U;
}

class FileKeychainTests : public testing::Test {
protected:
    TemporaryFolder home;
    FileKeychain keychain{home.path()};
    path folder = home.path() / "Quillora" / "Keychain";
    path item = folder / "item CalendarProviders.RegistryProvider RealmEncryptionKey";

    void expectFailure(KeychainStatus status = KeychainStatus::ioErr) const {
        auto const match = keychain.copyMatching(theKey);
        EXPECT_EQ(match.status, status);
        EXPECT_FALSE(match.data.has_value());
    }
};

} // namespace

TEST_F(FileKeychainTests, keepsAnItemForItsOwnerAlone) {
    ASSERT_EQ(keychain.add(theKey, theBytes), KeychainStatus::success);
    EXPECT_EQ(modeOf(home.path() / "Quillora"), 0700U);
    EXPECT_EQ(modeOf(folder), 0700U);
    EXPECT_EQ(modeOf(item), 0600U);
    EXPECT_EQ(keychain.folder(), folder);
}

TEST_F(FileKeychainTests, keepsItsModesUnderAHostileMask) {
    auto const before = ::umask(0777);
    auto const status = keychain.add(theKey, theBytes);
    ::umask(before);
    ASSERT_EQ(status, KeychainStatus::success);
    EXPECT_EQ(modeOf(folder), 0700U);
    EXPECT_EQ(modeOf(item), 0600U);
}

TEST_F(FileKeychainTests, leavesNothingBesideTheItem) {
    ASSERT_EQ(keychain.add(theKey, theBytes), KeychainStatus::success);
    EXPECT_EQ(keychain.add(theKey, theBytes), KeychainStatus::ioErr);
    std::size_t count = 0;
    for ([[maybe_unused]] auto const& entry : std::filesystem::directory_iterator(folder))
        ++count;
    EXPECT_EQ(count, 1U);
}

TEST_F(FileKeychainTests, sweepsAwayWhatAKilledProcessLeft) {
    ASSERT_EQ(keychain.add(theKey, theBytes), KeychainStatus::success);
    std::ofstream(folder / "aside 4711") << "half a key";
    ASSERT_EQ(keychain.add({.service = "other", .account = "other"}, theBytes), KeychainStatus::success);
    EXPECT_FALSE(std::filesystem::exists(folder / "aside 4711"));
    EXPECT_EQ(keychain.copyMatching(theKey).data, theBytes);
}

TEST_F(FileKeychainTests, additionsAtOnceAllSucceed) {
    ASSERT_EQ(keychain.add(theKey, theBytes), KeychainStatus::success);
    std::vector<std::future<KeychainStatus>> additions;
    for (int number = 0; number < 24; ++number) {
        additions.push_back(std::async(std::launch::async, [this, number] {
            FileKeychain own(home.path());
            return own.add({.service = "many", .account = std::to_string(number)}, theBytes);
        }));
    }
    for (auto& addition : additions)
        EXPECT_EQ(addition.get(), KeychainStatus::success);
}

TEST_F(FileKeychainTests, theFileOfAnItemIsKnown) {
    ASSERT_EQ(keychain.add(theKey, theBytes), KeychainStatus::success);
    EXPECT_EQ(keychain.file(theKey), item);
}

TEST_F(FileKeychainTests, lookingUpMakesNothing) {
    expectFailure(KeychainStatus::itemNotFound);
    EXPECT_EQ(keychain.deleteMatching(theKey), KeychainStatus::itemNotFound);
    EXPECT_TRUE(home.names().empty());
}

TEST_F(FileKeychainTests, withoutADataHomeEverythingFails) {
    FileKeychain homeless(std::nullopt);
    EXPECT_EQ(homeless.copyMatching(theKey).status, KeychainStatus::ioErr);
    EXPECT_EQ(homeless.deleteMatching(theKey), KeychainStatus::ioErr);
    EXPECT_EQ(homeless.add(theKey, theBytes), KeychainStatus::ioErr);
    EXPECT_FALSE(homeless.folder().has_value());
}

TEST_F(FileKeychainTests, aDataHomeThatIsNotThereMayComeBack) {
    FileKeychain unmounted(home.path() / "unmounted");
    EXPECT_EQ(unmounted.copyMatching(theKey).status, KeychainStatus::ioErr);
}

TEST_F(FileKeychainTests, aFolderThatVanishedHoldsNoItem) {
    ASSERT_EQ(keychain.add(theKey, theBytes), KeychainStatus::success);
    std::filesystem::remove_all(folder);
    expectFailure(KeychainStatus::itemNotFound);
}

TEST_F(FileKeychainTests, aFolderBehindALinkThatLeadsNowhereMayComeBack) {
    std::filesystem::create_directory(home.path() / "Quillora");
    std::filesystem::create_symlink(home.path() / "unmounted", folder);
    expectFailure();
}

TEST_F(FileKeychainTests, anItemBehindALinkIsNotBelieved) {
    ASSERT_EQ(keychain.add(theKey, theBytes), KeychainStatus::success);
    std::filesystem::rename(item, home.path() / "moved");
    std::filesystem::create_symlink(home.path() / "moved", item);
    expectFailure();
}

TEST_F(FileKeychainTests, anItemThatOthersMayReadIsNotBelieved) {
    ASSERT_EQ(keychain.add(theKey, theBytes), KeychainStatus::success);
    for (mode_t const mode : {0640U, 0604U, 0660U, 0602U}) {
        ::chmod(item.c_str(), mode);
        expectFailure();
    }
    ::chmod(item.c_str(), 0400);
    EXPECT_EQ(keychain.copyMatching(theKey).data, theBytes);
}

TEST_F(FileKeychainTests, aFolderThatOthersMayOpenIsNotBelieved) {
    ASSERT_EQ(keychain.add(theKey, theBytes), KeychainStatus::success);
    ::chmod(folder.c_str(), 0755);
    expectFailure();
    EXPECT_EQ(keychain.deleteMatching(theKey), KeychainStatus::ioErr);
    EXPECT_EQ(keychain.add({.service = "other", .account = "other"}, theBytes), KeychainStatus::ioErr);
}

TEST_F(FileKeychainTests, anItemOfAnotherOwnerIsNotBelieved) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can give a file away";
    ASSERT_EQ(keychain.add(theKey, theBytes), KeychainStatus::success);
    ASSERT_EQ(::chown(item.c_str(), 65534, 65534), 0);
    expectFailure();
}

TEST_F(FileKeychainTests, anItemThatCannotBeReadIsNotMissing) {
    OrdinaryUser const user(home.path());
    ASSERT_EQ(keychain.add(theKey, theBytes), KeychainStatus::success);
    ::chmod(item.c_str(), 0000);
    expectFailure();
    ::chmod(item.c_str(), 0600);
    ::chmod(folder.c_str(), 0000);
    expectFailure();
    ::chmod(folder.c_str(), 0700);
}

TEST_F(FileKeychainTests, whatIsNoFileIsNoItem) {
    ASSERT_EQ(keychain.add(theKey, theBytes), KeychainStatus::success);
    std::filesystem::remove(item);
    std::filesystem::create_directory(item);
    expectFailure();
    std::filesystem::remove(item);
    ASSERT_EQ(::mkfifo(item.c_str(), 0600), 0);
    expectFailure();
}

TEST_F(FileKeychainTests, neitherALossNorAChangeYieldsOtherBytes) {
    ASSERT_EQ(keychain.add(theKey, theBytes), KeychainStatus::success);
    auto const whole = Platform::KeyFile::contentOf(theBytes);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_FALSE(Platform::KeyFile::valueIn(whole.bytes().first(length)).data.has_value()) << length;
    }
    for (std::size_t bit = 0; bit < whole.size() * 8; ++bit) {
        auto const changed = SecretBytes::filledBy(whole.size(), [&](auto bytes) {
            std::ranges::copy(whole.bytes(), bytes.begin());
            bytes[bit / 8] ^= std::byte{1} << (bit % 8);
        });
        auto const match = Platform::KeyFile::valueIn(changed.bytes());
        EXPECT_FALSE(match.data.has_value()) << bit;
        EXPECT_NE(match.status, KeychainStatus::itemNotFound) << bit;
    }
}

TEST_F(FileKeychainTests, anItemThatLostItsBytesIsAFailure) {
    ASSERT_EQ(keychain.add(theKey, theBytes), KeychainStatus::success);
    std::filesystem::resize_file(item, 0);
    expectFailure();
}

TEST_F(FileKeychainTests, aHugeFileIsNotRead) {
    ASSERT_EQ(keychain.add(theKey, theBytes), KeychainStatus::success);
    std::filesystem::resize_file(item, 1'000'000'000);
    expectFailure();
    EXPECT_EQ(keychain.add({.service = "big", .account = "big"}, SecretBytes::filledBy(4097, [](auto) {})),
              KeychainStatus::ioErr);
}

TEST_F(FileKeychainTests, aNameThatIsTooLongIsAFailure) {
    EXPECT_EQ(keychain.add({.service = std::string(300, 'x'), .account = "a"}, theBytes),
              KeychainStatus::ioErr);
}
