#pragma once

#include "Platform/Keychain/Keychain.h"

#include <filesystem>
#include <optional>

namespace Platform {

/// A keychain of plain files, for a computer without a keyring: one file an item, readable only by its owner,
/// and protected from nobody who can read that owner's files. Only for a person who asked for it.
///
/// A file or folder of another owner, or that others may open, is `ioErr`; so is a damaged item. A file that
/// someone put there by hand is an item with a text for its value. `itemNotFound` means that the folder in
/// which the item or this keychain would be was there to look into. Changes wait for each other, ten seconds
/// at most, in whatever process they are.
class FileKeychain final : public Keychain {
public:
    /// `dataHome` is the user's data home; absent where none is known, and every operation is `ioErr` then.
    explicit FileKeychain(std::optional<std::filesystem::path> dataHome) : dataHome(std::move(dataHome)) {}

    /// Where the items lie: `Quillora/Keychain` in the data home.
    [[nodiscard]] std::optional<std::filesystem::path> folder() const;

    /// The file of one item, whether it is there or not.
    [[nodiscard]] std::optional<std::filesystem::path> file(GenericPasswordIdentity const& identity) const;

    [[nodiscard]] GenericPasswordMatch copyMatching(GenericPasswordIdentity const& identity) const override;
    KeychainStatus deleteMatching(GenericPasswordIdentity const& identity) override;
    KeychainStatus add(GenericPasswordIdentity const& identity,
                       Foundation::SecretBytes const& value) override;
    KeychainStatus update(GenericPasswordIdentity const& identity,
                          Foundation::SecretBytes const& value) override;
    void giveUp() override {} ///< Nothing here hangs.

private:
    std::optional<std::filesystem::path> dataHome;
};

} // namespace Platform
