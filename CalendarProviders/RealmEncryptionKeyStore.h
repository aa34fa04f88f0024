#pragma once

#include "CalendarProviders/ResultEntity.h"
#include "Platform/Keychain/Keychain.h"
#include "Platform/Keychain/RandomSource.h"

#include <string_view>

/// The key of the provider database: 64 random bytes, a generic password of the keychain.
namespace CalendarProviders::RealmEncryptionKeyStore {

inline constexpr std::string_view defaultAccount = "RealmEncryptionKey";

/// Yields the key as a `Foundation::SecretBytes`; makes and keeps one when the keychain says that it holds
/// none. A look-up that fails in any other way fails here too, and no key is made. An existing key is never
/// replaced, and its length is not looked at. Failures are told in `databaseMessage`.
ResultEntity loadOrCreateKey(Platform::Keychain& keychain, Platform::RandomSource& random,
                             std::string_view service, std::string_view account = defaultAccount);

} // namespace CalendarProviders::RealmEncryptionKeyStore
