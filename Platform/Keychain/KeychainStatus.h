#pragma once

#include <cstdint>

namespace Platform {

/// How a keychain operation went. A keychain may answer with other numbers too; every one that is not
/// `success` is a failure.
enum class KeychainStatus : std::int32_t {
    success = 0,
    /// The keychain failed, cannot be reached, or took too long.
    ioErr = -36,
    /// The person, or the keychain's own rules, refused.
    authFailed = -25293,
    /// The keychain was asked, all of it could be looked at, and it holds no such item.
    itemNotFound = -25300,
    /// The item, or the place where it would be, is locked.
    interactionNotAllowed = -25308,
};

} // namespace Platform
