#pragma once

#include "Platform/Keychain/Keychain.h"

#include <cstdint>
#include <map>
#include <variant>
#include <vector>

namespace Platform {

/// A keychain that lives in this object: for tests, and for previews that must leave nothing behind. It keeps
/// the history of what was asked of it, and may be told what to answer.
class InMemoryKeychain final : public Keychain {
public:
    /// One operation and how it went.
    struct Operation {
        enum class Kind : std::uint8_t { copyMatching, deleteMatching, add, update };
        Kind kind;
        GenericPasswordIdentity identity;
        KeychainStatus status;

        bool operator==(Operation const&) const = default;
    };

    /// From now on every look-up answers with this status; an absent one ends that.
    void answersLookupsWith(std::optional<KeychainStatus> status);
    /// From now on every removal answers with this status and removes nothing.
    void answersDeletesWith(std::optional<KeychainStatus> status);
    /// From now on every addition answers with this status and keeps nothing.
    void answersAddsWith(std::optional<KeychainStatus> status);
    /// From now on every update answers with this status and changes nothing.
    void answersUpdatesWith(std::optional<KeychainStatus> status);
    /// From now on every operation finds the keychain locked, or again unlocked.
    void setLocked(bool isLocked);

    /// Puts bytes there, without a trace in the history.
    void place(GenericPasswordIdentity const& identity, Foundation::SecretBytes value);
    /// Puts a text there, as a person does with a keychain's own window.
    void placeText(GenericPasswordIdentity const& identity, std::string text);

    [[nodiscard]] std::vector<Operation> const& history() const { return operations; }
    [[nodiscard]] std::size_t itemCount() const { return items.size(); }
    /// The bytes as they stand; absent when there is no such item, or a text in its place.
    [[nodiscard]] std::optional<Foundation::SecretBytes> value(GenericPasswordIdentity const& identity) const;

    [[nodiscard]] GenericPasswordMatch copyMatching(GenericPasswordIdentity const& identity) const override;
    KeychainStatus deleteMatching(GenericPasswordIdentity const& identity) override;
    KeychainStatus add(GenericPasswordIdentity const& identity,
                       Foundation::SecretBytes const& value) override;
    KeychainStatus update(GenericPasswordIdentity const& identity,
                          Foundation::SecretBytes const& value) override;
    void giveUp() override {} ///< Nothing here hangs.

private:
    using Value = std::variant<Foundation::SecretBytes, std::string>;

    [[nodiscard]] std::optional<KeychainStatus> refusal(std::optional<KeychainStatus> answer) const;
    KeychainStatus recording(Operation::Kind kind, GenericPasswordIdentity const& identity,
                             KeychainStatus status) const;

    std::map<GenericPasswordIdentity, Value> items;
    std::optional<KeychainStatus> lookupAnswer;
    std::optional<KeychainStatus> deleteAnswer;
    std::optional<KeychainStatus> addAnswer;
    std::optional<KeychainStatus> updateAnswer;
    bool isLocked = false;
    mutable std::vector<Operation>
        operations; // Looking up leaves the items as they are, but not the history.
};

} // namespace Platform
