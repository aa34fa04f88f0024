#pragma once

#include "Applications/Composition/BackendTokens.h"
#include "Networking/AuthTokenProvider.h"

#include <memory>
#include <mutex>
#include <optional>

namespace Composition {

/// Takes the token from the keychain, anew for each request. A keychain blocks whoever asks it, so it is
/// asked on a thread of its own: the task goes on as soon as it is cancelled, whatever the keychain does.
/// The destructor gives the keychain up, so that it need not wait for one that hangs.
class KeychainTokenProvider final : public Networking::AuthTokenProvider {
public:
    KeychainTokenProvider(BackendTokens tokens, Foundation::URL backend);
    ~KeychainTokenProvider() override;

    KeychainTokenProvider(KeychainTokenProvider const&) = delete;
    KeychainTokenProvider& operator=(KeychainTokenProvider const&) = delete;

    /// Throws std::system_error where the keychain gives no token, and when it is cancelled.
    Foundation::Task<std::string> token() override;

    /// What the keychain answered last, if that was no token.
    [[nodiscard]] std::optional<Platform::KeychainStatus> failure() const;

private:
    class Asking;

    std::shared_ptr<Asking> asking;
};

/// Hands out a token that was given for this run only.
class GivenTokenProvider final : public Networking::AuthTokenProvider {
public:
    explicit GivenTokenProvider(std::string value) : value(std::move(value)) {}

    Foundation::Task<std::string> token() override { co_return value; }

private:
    std::string value;
};

} // namespace Composition
