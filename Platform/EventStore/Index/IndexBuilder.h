#pragma once

#include "Platform/EventStore/Index/FileFacts.h"
#include "Platform/EventStore/Index/IndexFormat.h"
#include "Platform/EventStore/Index/StoredIndex.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

/// Gathers the facts about a folder's files, which are added in the order of their names, into the image of
/// an index.
class IndexBuilder {
public:
    /// `stamp` is 0 for a file that may have changed since without showing it.
    void addFile(std::string_view name, std::uint64_t stamp, FileFacts const& facts);

    /// The same with what `index` knows of the file at `place`; its series follow by `adoptSeries`.
    void adoptFile(StoredIndex& index, std::uint32_t place);

    /// The series of all files that were adopted from `index`.
    void adoptSeries(StoredIndex& index);

    /// Leaves the builder empty.
    std::vector<std::byte> build(std::uint64_t folder, std::int64_t now);

private:
    void addRecord(std::string_view name, std::uint64_t stamp, bool isCalendarOfItsOwn,
                   StoredIndex::CalendarText const& text, std::uint32_t zones);
    std::uint32_t addParts(std::span<ICalendar::ExcerptPart const> parts);
    void addText(std::optional<std::string> const& text);
    void markShared(std::vector<IndexFormat::UID>& uids);

    std::vector<IndexFormat::File> files;
    std::vector<IndexFormat::Series> series;
    std::vector<IndexFormat::Part> parts;
    std::string names;
    std::string texts;
    std::vector<std::uint32_t>
        adopted; // Where the files of the other index are now; `none` for those left out.
};

} // namespace Platform
