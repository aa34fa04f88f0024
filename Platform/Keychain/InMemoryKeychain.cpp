#include "Platform/Keychain/InMemoryKeychain.h"

#include <utility>

namespace Platform {

void InMemoryKeychain::answersLookupsWith(std::optional<KeychainStatus> status) {
    lookupAnswer = status;
}

void InMemoryKeychain::answersDeletesWith(std::optional<KeychainStatus> status) {
    deleteAnswer = status;
}

void InMemoryKeychain::answersAddsWith(std::optional<KeychainStatus> status) {
    addAnswer = status;
}

void InMemoryKeychain::answersUpdatesWith(std::optional<KeychainStatus> status) {
    updateAnswer = status;
}

void InMemoryKeychain::setLocked(bool locked) {
    isLocked = locked;
}

void InMemoryKeychain::place(GenericPasswordIdentity const& identity, Foundation::SecretBytes value) {
    items.insert_or_assign(identity, std::move(value));
}

void InMemoryKeychain::placeText(GenericPasswordIdentity const& identity, std::string text) {
    items.insert_or_assign(identity, std::move(text));
}

std::optional<Foundation::SecretBytes>
InMemoryKeychain::value(GenericPasswordIdentity const& identity) const {
    auto const item = items.find(identity);
    if (item == items.end()) return std::nullopt;
    auto const* bytes = std::get_if<Foundation::SecretBytes>(&item->second);
    if (bytes == nullptr) return std::nullopt;
    return *bytes;
}

GenericPasswordMatch InMemoryKeychain::copyMatching(GenericPasswordIdentity const& identity) const {
    auto status = KeychainStatus::success;
    if (auto const refused = refusal(lookupAnswer))
        status = *refused;
    else if (!items.contains(identity))
        status = KeychainStatus::itemNotFound;
    recording(Operation::Kind::copyMatching, identity, status);
    // An item that answers without its value is what a script of `success` over no item means.
    if (status != KeychainStatus::success) return {.status = status, .data = std::nullopt};
    return {.status = status, .data = value(identity)};
}

KeychainStatus InMemoryKeychain::deleteMatching(GenericPasswordIdentity const& identity) {
    auto status = KeychainStatus::success;
    if (auto const refused = refusal(deleteAnswer))
        status = *refused;
    else if (items.erase(identity) == 0)
        status = KeychainStatus::itemNotFound;
    return recording(Operation::Kind::deleteMatching, identity, status);
}

KeychainStatus InMemoryKeychain::add(GenericPasswordIdentity const& identity,
                                     Foundation::SecretBytes const& value) {
    auto status = KeychainStatus::success;
    if (auto const refused = refusal(addAnswer))
        status = *refused;
    else if (!items.try_emplace(identity, value).second)
        status = KeychainStatus::ioErr;
    return recording(Operation::Kind::add, identity, status);
}

KeychainStatus InMemoryKeychain::update(GenericPasswordIdentity const& identity,
                                        Foundation::SecretBytes const& value) {
    auto status = KeychainStatus::success;
    auto const item = items.find(identity);
    if (auto const refused = refusal(updateAnswer))
        status = *refused;
    else if (item == items.end())
        status = KeychainStatus::itemNotFound;
    else
        item->second = value;
    return recording(Operation::Kind::update, identity, status);
}

std::optional<KeychainStatus> InMemoryKeychain::refusal(std::optional<KeychainStatus> answer) const {
    if (answer) return answer;
    if (isLocked) return KeychainStatus::interactionNotAllowed;
    return std::nullopt;
}

KeychainStatus InMemoryKeychain::recording(Operation::Kind kind, GenericPasswordIdentity const& identity,
                                           KeychainStatus status) const {
    operations.push_back({.kind = kind, .identity = identity, .status = status});
    return status;
}

} // namespace Platform
