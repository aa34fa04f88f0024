#include "Applications/Composition/KeychainItem.h"
#include "Platform/Keychain/InMemoryKeychain.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>

namespace Composition {
namespace {

using Platform::InMemoryKeychain;
using Platform::KeychainStatus;

Platform::GenericPasswordIdentity const identity = {.service = "service", .account = "account"};

Foundation::SecretBytes bytes(std::byte value) {
    return Foundation::SecretBytes(std::array{value, value});
}

class KeychainItemTests : public testing::Test {
protected:
    InMemoryKeychain from;
    InMemoryKeychain to;
};

TEST_F(KeychainItemTests, anItemIsCopiedAndStaysWhereItWas) {
    from.place(identity, bytes(std::byte{1}));
    EXPECT_EQ(copyItem(from, to, identity), KeychainStatus::success);
    EXPECT_EQ(from.value(identity), bytes(std::byte{1}));
    EXPECT_EQ(to.value(identity), bytes(std::byte{1}));
}

TEST_F(KeychainItemTests, whatTheOtherHeldGivesWay) {
    from.place(identity, bytes(std::byte{1}));
    to.place(identity, bytes(std::byte{2}));
    EXPECT_EQ(copyItem(from, to, identity), KeychainStatus::success);
    EXPECT_EQ(to.value(identity), bytes(std::byte{1}));
}

TEST_F(KeychainItemTests, anEqualItemIsLeftAlone) {
    from.place(identity, bytes(std::byte{1}));
    to.place(identity, bytes(std::byte{1}));
    EXPECT_EQ(copyItem(from, to, identity), KeychainStatus::success);
    EXPECT_EQ(to.history().size(), 1U); // Only looked at.
}

TEST_F(KeychainItemTests, withNothingToCopyTheOtherIsNotTouched) {
    to.place(identity, bytes(std::byte{2}));
    EXPECT_EQ(copyItem(from, to, identity), KeychainStatus::itemNotFound);
    EXPECT_TRUE(to.history().empty());
}

TEST_F(KeychainItemTests, anItemThatCannotBeReadIsNotCopied) {
    from.place(identity, bytes(std::byte{1}));
    from.setLocked(true);
    EXPECT_EQ(copyItem(from, to, identity), KeychainStatus::interactionNotAllowed);
    EXPECT_TRUE(to.history().empty());
    from.setLocked(false);
    from.placeText(identity, "typed by hand");
    EXPECT_EQ(copyItem(from, to, identity), KeychainStatus::ioErr);
    EXPECT_TRUE(to.history().empty());
}

TEST_F(KeychainItemTests, theOthersFailuresAreTold) {
    from.place(identity, bytes(std::byte{1}));
    to.place(identity, bytes(std::byte{2}));
    to.answersUpdatesWith(KeychainStatus::authFailed);
    EXPECT_EQ(copyItem(from, to, identity), KeychainStatus::authFailed);
    EXPECT_EQ(to.value(identity), bytes(std::byte{2}));
    to.answersUpdatesWith(std::nullopt);
    ASSERT_EQ(to.deleteMatching(identity), KeychainStatus::success);
    to.answersAddsWith(KeychainStatus::ioErr);
    EXPECT_EQ(copyItem(from, to, identity), KeychainStatus::ioErr);
    to.setLocked(true);
    to.answersAddsWith(std::nullopt);
    EXPECT_EQ(copyItem(from, to, identity), KeychainStatus::interactionNotAllowed);
}

} // namespace
} // namespace Composition
