#pragma once

#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <sys/types.h>

namespace Platform {

/// Who may do what with a file, and what programs have noted on it: what a file that takes another's place
/// must have as well.
struct FileRights {
    mode_t mode;
    std::optional<uid_t> owner = std::nullopt; ///< Absent: whoever makes the file.
    std::optional<gid_t> group = std::nullopt;
    /// Of the kinds "user." and POSIX access list, each with its bytes.
    std::vector<std::pair<std::string, std::string>> attributes = {};

    /// Those of a file that is there.
    static std::expected<FileRights, std::error_code> of(std::filesystem::path const& file);

    /// The owner's alone.
    static FileRights ofNewFile() { return {.mode = 0600}; }

    /// Gives them to an open file that this process has made and nobody else knows. Nobody may do more than
    /// before: where the group or the access list cannot be kept, the rights that depend on it go. An owner
    /// that cannot be kept is no failure.
    [[nodiscard]] std::error_code giveTo(int descriptor) const;

    /// Why the file that has them is not to be changed, though its folder may be: it is marked as read-only,
    /// or this process may not write to it. The superuser heeds the mark as well.
    [[nodiscard]] std::error_code whyNotToBeChanged(std::filesystem::path const& file) const;
};

} // namespace Platform
