#pragma once

#include "Platform/EventStore/ICalendar/CalendarFile.h"

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Platform {

/// What tells whether a file is still the one that was read.
struct FileStamp {
    std::uint64_t device;
    std::uint64_t inode;
    std::int64_t size;
    std::int64_t modified; ///< Nanoseconds since 1970; at the end of its range for a time beyond it.
    std::int64_t changed;  ///< Nanoseconds since 1970, of the inode.

    bool operator==(FileStamp const&) const = default;

    /// Whether it is so young at `now` (nanoseconds since 1970) that a further change might not show in it:
    /// file systems and network mounts keep times as coarse as two seconds.
    [[nodiscard]] bool isYoung(std::int64_t now) const;
};

/// A file's content with the stamp that it had when reading began.
struct StampedContent {
    FileStamp stamp;
    std::string content;
};

/// The largest file that is read.
inline constexpr std::int64_t largestCalendarFile = 64 * 1024 * 1024;

/// The stamp of a regular file, links followed. The error is a reason for people ("Permission denied", "it
/// is not a regular file", …).
std::expected<FileStamp, std::string> stampOfRegularFile(std::filesystem::path const& path);

/// The same of a file in an open folder.
std::expected<FileStamp, std::string> stampOfRegularFile(int folder, char const* name);

/// The stamp of a folder itself, links followed; absent when it cannot be had.
std::optional<FileStamp> stampOfFolder(std::filesystem::path const& path);

/// The same of an open one.
std::optional<FileStamp> stampOfFolder(int folder);

/// Reads a regular file of at most `limit` bytes. Nothing else is ever waited on: a pipe or a device is
/// refused. Errors as above.
std::expected<StampedContent, std::string> readRegularFile(std::filesystem::path const& path,
                                                           std::int64_t limit = largestCalendarFile);

/// Some parts of a regular file, one after another, with the stamp that it had when reading began. Errors as
/// above, and when the file is too short for a part.
std::expected<StampedContent, std::string> readParts(std::filesystem::path const& path,
                                                     std::vector<ICalendar::ExcerptPart> const& parts);

} // namespace Platform
