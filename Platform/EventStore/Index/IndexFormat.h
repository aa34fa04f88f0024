#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

/// How an index lies in its file: a header, a checksum for each block of the body, and the body, whose
/// sections stand in the order of these records. Numbers are in the machine's own form; a file from elsewhere
/// has another `magic`.
namespace Platform::IndexFormat {

/// Changes with the records, and with whatever makes the same calendar file yield other facts.
inline constexpr std::uint64_t version = 1;
inline constexpr std::uint64_t magic = 0x7864'6E49'6C69'7551U ^ version;

inline constexpr std::size_t blockSize = 4096;

/// Series are kept by the length of the time that they span, in powers of two of days.
inline constexpr std::size_t lengthClasses = 24;

/// The class of a span of seconds; whatever is in class n is no longer than 2ⁿ days.
constexpr std::size_t lengthClass(std::int64_t seconds) {
    constexpr std::uint64_t secondsPerDay = 86400;
    auto const days = seconds <= 0 ? 0U : (static_cast<std::uint64_t>(seconds) - 1) / secondsPerDay;
    auto const width = static_cast<std::size_t>(std::bit_width(days));
    return width < lengthClasses ? width : lengthClasses - 1;
}

inline constexpr std::uint32_t none = UINT32_MAX;

struct Header {
    std::uint64_t magic;
    std::uint64_t checksum;  ///< Of the header from here on and the checksums of the blocks.
    std::uint64_t folder;    ///< Stands for the folder's path.
    std::uint64_t bodySize;  ///< Bytes.
    std::int64_t writtenAt;  ///< Nanoseconds since 1970.
    std::uint64_t stampSum;  ///< Of all files, by `stampOfFile`.
    std::uint32_t untrusted; ///< How many files have no stamp.
    std::uint32_t fileCount;
    std::uint32_t seriesCount;
    std::uint32_t partCount;
    std::uint32_t nameBytes;
    std::uint32_t textBytes;
    std::array<std::uint32_t, lengthClasses> classEnds; ///< Where among the series each class ends.
};

/// By name.
struct File {
    std::uint64_t name;  ///< Hash.
    std::uint64_t stamp; ///< Hash; 0 for one that was too young to be trusted.
    std::uint32_t nameOffset;
    std::uint16_t nameLength;
    std::uint16_t isCalendarOfItsOwn;
    std::uint32_t text;  ///< Of its calendar's name and colour; `none` without.
    std::uint32_t zones; ///< Its first part with a VTIMEZONE; `none` without.
};

/// By class, then by `first`.
struct Series {
    std::int64_t first;
    std::int64_t last;
    std::uint64_t uid;
    std::uint32_t file : 31;
    std::uint32_t isShared : 1; ///< Other files have the same UID.
    std::uint32_t parts;        ///< Its first part; `none` where the file is read as a whole.
};

/// By UID, then by file.
struct UID {
    std::uint64_t uid;
    std::uint32_t file;
    std::uint32_t parts; ///< As in the series.
};

struct Part {
    std::uint32_t offset;
    std::uint32_t length;
    std::uint32_t line;
    std::uint32_t hasNext; ///< The next part belongs to the same.
};

static_assert(sizeof(File) == 32 && sizeof(Series) == 32 && sizeof(UID) == 16 && sizeof(Part) == 16);

/// What `Header::checksum` holds.
std::uint64_t checksumOf(Header const& header, std::span<std::uint64_t const> blockSums);

} // namespace Platform::IndexFormat
