#pragma once

#include "Platform/Files/FileDescriptor.h"

#include <cstddef>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <system_error>
#include <vector>

namespace Platform {

/// Which file it is, and in which state: a replaced or rewritten one has another stamp.
struct DatabaseFileStamp {
    std::uint64_t device;
    std::uint64_t inode;
    std::int64_t size;
    std::int64_t changed; ///< Nanoseconds since 1970.

    bool operator==(DatabaseFileStamp const&) const = default;
};

/// What a database's file holds.
struct DatabaseFileContent {
    DatabaseFileStamp stamp;
    std::vector<std::byte> bytes;
};

/// The right to replace or move a database's files, which one process or thread at a time has. Ends with this
/// object, or with the process.
class DatabaseLock {
public:
    /// One try. `resource_unavailable_try_again` when somebody else holds it. A lock file that was moved away
    /// meanwhile is not the lock any more: that counts as held too.
    static std::expected<DatabaseLock, std::error_code> take(std::filesystem::path const& lockFile);

    /// Whether the lock file is still the one at this path.
    [[nodiscard]] bool isStillAt(std::filesystem::path const& lockFile) const;

private:
    explicit DatabaseLock(FileDescriptor file) : file(std::move(file)) {}

    FileDescriptor file;
};

/// The file of a sealed database and those beside it. No operation throws or waits, but for memory.
class DatabaseFile {
public:
    explicit DatabaseFile(std::filesystem::path path) : main(std::move(path)) {}

    [[nodiscard]] std::filesystem::path const& path() const { return main; }
    [[nodiscard]] std::filesystem::path lockPath() const;

    /// Absent when there is no such file. A link, or anything else that is no regular file, is
    /// `not_supported`, and so is a file that is larger than any database can be.
    [[nodiscard]] std::expected<std::optional<DatabaseFileContent>, std::error_code> read() const;

    /// Absent when nothing is there.
    [[nodiscard]] std::optional<DatabaseFileStamp> stamp() const;

    /// Makes the file's folder and those above it, each with mode 0700.
    [[nodiscard]] std::error_code makeFolder() const;

    /// Replaces the file, durably: a reader sees the old content or the new one, and so does the next start
    /// after a power cut. A new file has mode 0600, an existing one keeps its mode. Only under the lock.
    [[nodiscard]] std::error_code replace(std::span<std::byte const> content) const;

    /// Makes the renaming of the folder's files durable.
    [[nodiscard]] std::error_code syncFolder() const;

private:
    [[nodiscard]] std::filesystem::path asidePath() const;

    std::filesystem::path main;
};

} // namespace Platform
