#pragma once

#include "Platform/EventStore/Index/IndexFormat.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

namespace Platform {

/// An index whose bytes are not those that were written.
class IndexDamaged final : public std::runtime_error {
public:
    IndexDamaged() : std::runtime_error("the index is damaged") {}
};

/// The bytes of one index, each block checked when it is first read, so that what it yields is what was
/// written whatever has become of the file since. It is read, not mapped: a file that another program cuts
/// short must not end this one.
class IndexFile {
public:
    /// Absent when there is no file, or none that is whole and stands for `folder`.
    static std::optional<IndexFile> open(std::filesystem::path const& path, std::uint64_t folder);

    /// One that was just built and is kept in memory.
    static IndexFile inMemory(std::vector<std::byte> image);

    IndexFile(IndexFile&&) noexcept = default;
    IndexFile& operator=(IndexFile&&) noexcept = default;
    ~IndexFile() = default;

    [[nodiscard]] IndexFormat::Header const& header() const { return start; }

    /// Bytes of the body; valid until `forget`. Throws IndexDamaged.
    [[nodiscard]] std::span<std::byte const> bytes(std::uint64_t offset, std::uint64_t length);

    /// Gives the memory back of what was read so far. What is kept in memory alone stays.
    void forget();

private:
    class Descriptor {
    public:
        explicit Descriptor(int number) : number(number) {}
        Descriptor(Descriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}
        Descriptor& operator=(Descriptor&& other) noexcept {
            std::swap(number, other.number);
            return *this;
        }
        ~Descriptor();

        int number;
    };

    explicit IndexFile(Descriptor descriptor) : descriptor(std::move(descriptor)) {}
    bool readHeader(std::uint64_t fileSize);
    void readBlocks(std::size_t first, std::size_t end);

    Descriptor descriptor;
    IndexFormat::Header start = {};
    std::uint64_t bodyOffset = 0;
    std::vector<std::uint64_t> sums; // One a block; empty in memory.
    std::vector<bool> isChecked;     // One a block; empty in memory.

    struct Freeing {
        void operator()(std::byte* bytes) const { std::free(bytes); }
    };
    using Body = std::unique_ptr<std::byte, Freeing>;
    static Body bodyOf(std::uint64_t size);
    Body body; // As long as the body, on a page's boundary: only the blocks that were read take memory.
};

/// Writes the image aside and renames it, readable by its owner alone. Not synced: what a loss of power tears
/// is found out and made anew.
std::error_code writeIndex(std::filesystem::path const& path, std::span<std::byte const> image);

} // namespace Platform
