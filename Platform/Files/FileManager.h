#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace Platform {

/// Bytes of the largest preference file that is read: far above what any of them holds, and little enough to
/// be read whatever wrote it.
inline constexpr std::size_t largestPreferenceFile = std::size_t{1} << 20;

/// The user's files, as the preference stores need them. No operation throws.
class FileManager {
public:
    virtual ~FileManager() = default;

    /// The folder that the application and the widget share. Absent when the group has none here. Worked out
    /// at each call.
    [[nodiscard]] virtual std::optional<std::filesystem::path>
    containerURLForSecurityApplicationGroupIdentifier(std::string_view group) const = 0;

    /// The process's temporary folder.
    [[nodiscard]] virtual std::filesystem::path temporaryDirectory() const = 0;

    /// The user's data home (XDG Base Directory). Absent when neither XDG_DATA_HOME nor HOME tells it.
    [[nodiscard]] virtual std::optional<std::filesystem::path> applicationSupportDirectory() const = 0;

    /// Makes the folder and those above it, each with mode 0700. A folder that exists is no error.
    virtual std::error_code createDirectory(std::filesystem::path const& path) const = 0;

    /// The whole content of a regular file of at most so many bytes; of a larger one nothing is kept, and the
    /// error is `std::errc::file_too_large`.
    [[nodiscard]] virtual std::expected<std::string, std::error_code>
    contents(std::filesystem::path const& path, std::size_t mostBytes) const = 0;

    /// Writes aside in the same folder, then renames: a reader sees the old content or the new one, never a
    /// part. A new file has mode 0600, an existing one keeps its mode. On failure the old file stays.
    virtual std::error_code writeAtomically(std::filesystem::path const& path,
                                            std::string_view content) const = 0;

    /// Adds to the end of a file in one write; a new file has mode 0600. Not atomic, and not synced.
    virtual std::error_code appendToItem(std::filesystem::path const& path,
                                         std::string_view content) const = 0;

    /// Unlinks a file. A folder stays and is an error.
    virtual std::error_code removeItem(std::filesystem::path const& path) const = 0;

    /// Clears the marks that a system puts on files from elsewhere.
    virtual std::error_code clearQuarantineProperties(std::filesystem::path const& path) const = 0;
};

} // namespace Platform
