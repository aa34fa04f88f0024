#include "Applications/Composition/BackendTokens.h"

#include <algorithm>

namespace Composition {

using Foundation::SecretBytes;
using Platform::KeychainStatus;

namespace {

// Before the token stands a byte that no text holds: some keyrings forget that a value was stored as bytes,
// and hand out what looks like a text as one.
constexpr auto mark = std::byte{1};

SecretBytes itemOf(std::string_view token) {
    return SecretBytes::filledBy(token.size() + 1, [&](std::span<std::byte> bytes) {
        bytes.front() = mark;
        std::ranges::copy(std::as_bytes(std::span(token)), bytes.begin() + 1);
    });
}

} // namespace

Platform::GenericPasswordIdentity BackendTokens::identity(Foundation::URL const& backend) {
    return {.service = std::string(keychainService), .account = backend.absoluteString};
}

std::expected<std::string, KeychainStatus> BackendTokens::find(Foundation::URL const& backend) const {
    auto const match = keychain->copyMatching(identity(backend));
    if (match.status != KeychainStatus::success) return std::unexpected(match.status);
    bool const isToken = match.data && match.data->size() > 1 && match.data->bytes().front() == mark;
    // Something else stands where the token should: made by another program, and no token of ours.
    if (!isToken) return std::unexpected(KeychainStatus::itemNotFound);
    auto const bytes = match.data->bytes().subspan(1);
    return std::string(reinterpret_cast<char const*>(bytes.data()), bytes.size());
}

KeychainStatus BackendTokens::save(Foundation::URL const& backend, std::string_view token) {
    auto const name = identity(backend);
    auto const item = itemOf(token);
    auto const present = keychain->copyMatching(name);
    if (present.status == KeychainStatus::itemNotFound) return keychain->add(name, item);
    if (present.status != KeychainStatus::success) return present.status;
    if (present.data == item) return KeychainStatus::success;
    return keychain->update(name, item);
}

void BackendTokens::giveUp() const {
    keychain->giveUp();
}

KeychainStatus BackendTokens::remove(Foundation::URL const& backend) {
    return keychain->deleteMatching(identity(backend));
}

} // namespace Composition
