#pragma once

#include "Platform/EventStore/Index/FileFacts.h"
#include "Platform/EventStore/Index/IndexFile.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

/// What a file's stamp comes to. Never 0. The device is left out: its number may be another after a restart.
std::uint64_t stampOfFile(std::uint64_t inode, std::int64_t size, std::int64_t modified,
                          std::int64_t changed);

/// What one file adds to `Header::stampSum`, which so tells whether any file of a folder has changed,
/// whatever order they are looked at in.
std::uint64_t shareOfSum(std::uint64_t name, std::uint64_t stamp);

/// The facts about a folder's calendar files, as an index holds them. A file is named by its place in the
/// order of names. All but the counts may throw IndexDamaged.
class StoredIndex {
public:
    explicit StoredIndex(IndexFile file) : file(std::move(file)) {}

    [[nodiscard]] IndexFormat::Header const& header() const { return file.header(); }
    [[nodiscard]] std::uint32_t fileCount() const { return header().fileCount; }

    /// Gives memory back; names that it yielded are gone.
    void forget() { file.forget(); }

    [[nodiscard]] IndexFormat::File fileAt(std::uint32_t place);
    [[nodiscard]] std::string_view nameOf(IndexFormat::File const& record);

    struct CalendarText {
        std::optional<std::string> name;
        std::optional<std::string> color;
    };
    [[nodiscard]] CalendarText textOf(IndexFormat::File const& record);

    [[nodiscard]] IndexFormat::Series seriesAt(std::uint32_t place);

    /// All series that may have something within [from, to] of UTC seconds.
    [[nodiscard]] std::vector<IndexFormat::Series> touching(std::int64_t from, std::int64_t to);

    /// Every file with that UID, by name.
    [[nodiscard]] std::vector<IndexFormat::UID> withUID(std::uint64_t uid);

    /// The parts from `first` on that belong together; none for `none`.
    [[nodiscard]] std::vector<ICalendar::ExcerptPart> partsFrom(std::uint32_t first);

private:
    template <typename Record>
    Record recordAt(std::uint64_t section, std::uint32_t place, std::uint32_t count);
    [[nodiscard]] std::uint64_t seriesSection() const;
    [[nodiscard]] std::uint64_t uidSection() const;
    [[nodiscard]] std::uint64_t partSection() const;
    [[nodiscard]] std::uint64_t nameSection() const;
    [[nodiscard]] std::uint64_t textSection() const;
    std::optional<std::string> textAt(std::uint64_t& place);

    IndexFile file;
};

} // namespace Platform
