#pragma once

#include "Foundation/SecretBytes.h"
#include "Foundation/URL.h"
#include "Platform/Keychain/Keychain.h"

#include <expected>
#include <memory>
#include <string>
#include <string_view>

namespace Composition {

/// The bearer tokens in a keychain, one for each backend: a token is never sent anywhere but to the address
/// that it was given for.
class BackendTokens final {
public:
    static constexpr std::string_view keychainService = "com.zentorik.quillora.backend";

    explicit BackendTokens(std::shared_ptr<Platform::Keychain> keychain) : keychain(std::move(keychain)) {}

    /// How an item is called; for who copies it from keychain to keychain.
    [[nodiscard]] static Platform::GenericPasswordIdentity identity(Foundation::URL const& backend);

    /// The token, or why there is none. May take as long as the keychain's patience.
    [[nodiscard]] std::expected<std::string, Platform::KeychainStatus>
    find(Foundation::URL const& backend) const;

    /// Keeps the token; an older one for that backend is replaced. On a failure the older one is kept.
    Platform::KeychainStatus save(Foundation::URL const& backend, std::string_view token);

    /// `itemNotFound` when there was none.
    Platform::KeychainStatus remove(Foundation::URL const& backend);

    /// Ends a look-up that hangs in another thread.
    void giveUp() const;

private:
    std::shared_ptr<Platform::Keychain> keychain;
};

} // namespace Composition
