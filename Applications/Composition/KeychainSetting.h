#pragma once

#include "Foundation/RawValue.h"
#include "Platform/Files/FileManager.h"

#include <array>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace Composition {

/// Where secrets are kept.
enum class KeychainKind : std::uint8_t {
    secretService, ///< The desktop's keyring.
    file,          ///< Files that only their owner can read: for who asked for it, never by itself.
};

/// The person's choice of a keychain: keychain.json in the configuration folder, one JSON text. It is read
/// anew at each call.
class KeychainSetting final {
public:
    KeychainSetting(std::filesystem::path directory, std::shared_ptr<Platform::FileManager const> files);

    /// The desktop's keyring when there is no file. A file that cannot be read or names no keychain is an
    /// error, a sentence for the person: a key looked for in the wrong place would be made anew.
    [[nodiscard]] std::expected<KeychainKind, std::string> load() const;

    /// Whether the person's choice is on record, readable or not.
    [[nodiscard]] bool isRecorded() const;

    /// On an error the old choice stays. Keys are not moved.
    [[nodiscard]] std::error_code save(KeychainKind kind) const;

    [[nodiscard]] std::filesystem::path file() const;

private:
    std::filesystem::path directory;
    std::shared_ptr<Platform::FileManager const> files;
};

} // namespace Composition

template <>
inline constexpr auto Foundation::rawValues<Composition::KeychainKind> =
    std::to_array<std::pair<Composition::KeychainKind, std::string_view>>({
        {Composition::KeychainKind::secretService, "secret-service"},
        {Composition::KeychainKind::file, "file"},
    });
