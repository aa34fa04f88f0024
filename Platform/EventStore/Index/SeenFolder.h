#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace Platform {

/// What a folder was like when each of its calendar files was last looked at. A file that comes, goes or is
/// renamed since gives the folder another stamp; what is written into a file in place does not.
struct SeenFolder {
    std::uint64_t stamp = 0;    ///< The folder's own, by `stampOfFile`.
    std::uint64_t stampSum = 0; ///< Of its files, as in the index's header.
    std::uint64_t fileCount = 0;
    std::int64_t lookedAt = 0; ///< Nanoseconds since 1970.
};

/// Keeps that beside an index, for the next process. The file is written aside and renamed; one of other
/// bytes than were written, or of another folder, counts as missing.
class SeenFolderFile {
public:
    SeenFolderFile(std::filesystem::path const& indexFile, std::uint64_t folder);

    [[nodiscard]] std::optional<SeenFolder> load() const;
    /// Where it cannot be written, the next process looks at every file.
    void save(SeenFolder const& seen) const;
    void remove() const;

    static constexpr auto suffix = ".seen";

private:
    std::filesystem::path file;
    std::uint64_t folder;
};

} // namespace Platform
