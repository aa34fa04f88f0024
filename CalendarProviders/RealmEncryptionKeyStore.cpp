#include "CalendarProviders/RealmEncryptionKeyStore.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>

using Foundation::SecretBytes;
using Platform::GenericPasswordIdentity;
using Platform::KeychainStatus;

namespace CalendarProviders::RealmEncryptionKeyStore {
namespace {

constexpr std::size_t keyLength = 64;

struct Found {
    SecretBytes key;
};
struct LookupFailure {
    KeychainStatus status;
};
struct NotFound {};

using LoadResult = std::variant<Found, LookupFailure, NotFound>;

LoadResult load(Platform::Keychain const& keychain, GenericPasswordIdentity const& identity) {
    auto match = keychain.copyMatching(identity);
    if (match.status == KeychainStatus::itemNotFound) return NotFound{};
    // An item without bytes fails with the status of a success: it is there, and it is no key.
    if (match.status != KeychainStatus::success || !match.data) return LookupFailure{.status = match.status};
    return Found{.key = *std::move(match.data)};
}

std::optional<SecretBytes> generateKey(Platform::RandomSource& random) {
    std::int32_t status = 0;
    auto key = SecretBytes::filledBy(keyLength,
                                     [&](std::span<std::byte> buffer) { status = random.copyBytes(buffer); });
    if (status != 0) return std::nullopt;
    return key;
}

bool save(SecretBytes const& key, Platform::Keychain& keychain, GenericPasswordIdentity const& identity) {
    // Clears what may stand there stale or unreadable; there being nothing is the usual case.
    static_cast<void>(keychain.deleteMatching(identity));
    return keychain.add(identity, key) == KeychainStatus::success;
}

// A locked or unreadable keychain must never cause a fresh key: it would make the existing database
// unreadable, and an unreadable database is taken away.
ResultEntity refusal(KeychainStatus status) {
    return failed(
        {.databaseMessage = "Keychain lookup failed with status " +
                            std::to_string(static_cast<std::underlying_type_t<KeychainStatus>>(status)) +
                            "; refusing to regenerate the encryption key"});
}

} // namespace

ResultEntity loadOrCreateKey(Platform::Keychain& keychain, Platform::RandomSource& random,
                             std::string_view service, std::string_view account) {
    GenericPasswordIdentity const identity = {.service = std::string(service),
                                              .account = std::string(account)};
    auto const loaded = load(keychain, identity);
    if (auto const* found = std::get_if<Found>(&loaded)) return succeeded(found->key);
    if (auto const* failure = std::get_if<LookupFailure>(&loaded)) return refusal(failure->status);

    auto const key = generateKey(random);
    if (!key) return failed({.databaseMessage = "Failed to generate the encryption key"});
    // A key that could not be kept is dropped, so that nothing is ever encrypted with it.
    if (!save(*key, keychain, identity))
        return failed({.databaseMessage = "Failed to save the encryption key to Keychain"});
    return succeeded(*key);
}

} // namespace CalendarProviders::RealmEncryptionKeyStore
