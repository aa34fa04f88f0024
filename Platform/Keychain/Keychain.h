#pragma once

#include "Foundation/SecretBytes.h"
#include "Platform/Keychain/KeychainStatus.h"

#include <optional>
#include <string>

namespace Platform {

/// Which generic password is meant. A keychain holds at most one of each.
struct GenericPasswordIdentity {
    std::string service;
    std::string account;

    auto operator<=>(GenericPasswordIdentity const&) const = default;
};

/// What a look-up found.
struct GenericPasswordMatch {
    KeychainStatus status;
    /// Absent on failure, and with `success` when the item's value is a text and not bytes.
    std::optional<Foundation::SecretBytes> data;
};

/// The place for secrets: generic passwords, found by service and account. No operation throws, and none
/// unlocks anything.
class Keychain {
public:
    virtual ~Keychain() = default;

    [[nodiscard]] virtual GenericPasswordMatch
    copyMatching(GenericPasswordIdentity const& identity) const = 0;

    /// Removes the item. `itemNotFound` when there was none.
    virtual KeychainStatus deleteMatching(GenericPasswordIdentity const& identity) = 0;

    /// Keeps a new item, durably before success is reported. An item of the same identity must not exist.
    virtual KeychainStatus add(GenericPasswordIdentity const& identity,
                               Foundation::SecretBytes const& value) = 0;

    /// Puts a value in the place of the one that an item holds, a text too, durably before success is
    /// reported. The item is there all the while. `itemNotFound` when there is none.
    virtual KeychainStatus update(GenericPasswordIdentity const& identity,
                                  Foundation::SecretBytes const& value) = 0;

    /// Nobody waits for this keychain any more: an operation under way in another thread that hangs ends
    /// soon, with `ioErr`.
    virtual void giveUp() = 0;
};

} // namespace Platform
