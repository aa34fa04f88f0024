#pragma once

#include "Platform/Keychain/Keychain.h"

#include <chrono>
#include <stop_token>

namespace Platform {

/// The keychain that the desktop offers on the process's session bus (the Secret Service). An item is marked
/// with its service, its account and a schema of this program's own, and its secret travels encrypted. Who
/// looks one up names service and account alone: an item that another program put in that place, under no
/// schema or one of its own, is found too, unless there is one of ours.
///
/// Nothing is unlocked by looking. While any collection is locked the item may be in it, so that a look-up
/// that finds nothing then answers `interactionNotAllowed`. Where there is no bus or no service, or an answer
/// takes too long, it is `ioErr`.
///
/// Some services forget that a value was stored as bytes. A value that they call a text counts as one only if
/// it is valid UTF-8 without control characters, which 64 random bytes are not.
class SecretServiceKeychain final : public Keychain {
public:
    /// How long one operation may take.
    struct Patience {
        std::chrono::milliseconds answer{10'000};
        /// Where the person must first make a keyring, in a window of the service's own.
        std::chrono::milliseconds person{120'000};
    };

    explicit SecretServiceKeychain(Patience patience) : patience(patience) {}
    SecretServiceKeychain() : SecretServiceKeychain(Patience()) {}

    [[nodiscard]] GenericPasswordMatch copyMatching(GenericPasswordIdentity const& identity) const override;
    KeychainStatus deleteMatching(GenericPasswordIdentity const& identity) override;
    KeychainStatus add(GenericPasswordIdentity const& identity,
                       Foundation::SecretBytes const& value) override;
    KeychainStatus update(GenericPasswordIdentity const& identity,
                          Foundation::SecretBytes const& value) override;
    void giveUp() override { givenUp.request_stop(); }

    /// Whether the service says that it has no collection for new items yet, so that the person must make one
    /// first, in a window of the service's own if it can show one.
    [[nodiscard]] bool lacksDefaultCollection() const;

private:
    Patience patience;
    std::stop_source givenUp;
};

} // namespace Platform
