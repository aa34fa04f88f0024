#include "Platform/EventStore/Index/StoredIndex.h"

#include "Platform/EventStore/Index/Mixing.h"

#include <cstring>

namespace Platform {

namespace {

constexpr std::int64_t secondsPerDay = 86400;

} // namespace

std::uint64_t stampOfFile(std::uint64_t inode, std::int64_t size, std::int64_t modified,
                          std::int64_t changed) {
    auto state = mixed(inode, static_cast<std::uint64_t>(size));
    state = mixed(state, static_cast<std::uint64_t>(modified));
    state = mixed(state, static_cast<std::uint64_t>(changed));
    state = mixed(state, state >> 7U);
    return state == 0 ? 1 : state;
}

std::uint64_t shareOfSum(std::uint64_t name, std::uint64_t stamp) {
    return mixed(mixed(name, stamp), stamp >> 11U);
}

template <typename Record>
Record StoredIndex::recordAt(std::uint64_t section, std::uint32_t place, std::uint32_t count) {
    if (place >= count) throw IndexDamaged();
    Record record;
    std::memcpy(&record, file.bytes(section + std::uint64_t{place} * sizeof record, sizeof record).data(),
                sizeof record);
    return record;
}

std::uint64_t StoredIndex::seriesSection() const {
    return std::uint64_t{header().fileCount} * sizeof(IndexFormat::File);
}
std::uint64_t StoredIndex::uidSection() const {
    return seriesSection() + std::uint64_t{header().seriesCount} * sizeof(IndexFormat::Series);
}
std::uint64_t StoredIndex::partSection() const {
    return uidSection() + std::uint64_t{header().seriesCount} * sizeof(IndexFormat::UID);
}
std::uint64_t StoredIndex::nameSection() const {
    return partSection() + std::uint64_t{header().partCount} * sizeof(IndexFormat::Part);
}
std::uint64_t StoredIndex::textSection() const {
    return nameSection() + header().nameBytes;
}

IndexFormat::File StoredIndex::fileAt(std::uint32_t place) {
    return recordAt<IndexFormat::File>(0, place, header().fileCount);
}

IndexFormat::Series StoredIndex::seriesAt(std::uint32_t place) {
    return recordAt<IndexFormat::Series>(seriesSection(), place, header().seriesCount);
}

std::string_view StoredIndex::nameOf(IndexFormat::File const& record) {
    auto const bytes = file.bytes(nameSection() + record.nameOffset, record.nameLength);
    return {reinterpret_cast<char const*>(bytes.data()), bytes.size()};
}

StoredIndex::CalendarText StoredIndex::textOf(IndexFormat::File const& record) {
    if (record.text == IndexFormat::none) return {};
    auto place = textSection() + record.text;
    auto name = textAt(place);
    auto color = textAt(place);
    return {.name = std::move(name), .color = std::move(color)};
}

std::optional<std::string> StoredIndex::textAt(std::uint64_t& place) {
    std::uint32_t length = 0;
    std::memcpy(&length, file.bytes(place, sizeof length).data(), sizeof length);
    place += sizeof length;
    if (length == IndexFormat::none) return std::nullopt;
    auto const bytes = file.bytes(place, length);
    place += length;
    return std::string(reinterpret_cast<char const*>(bytes.data()), bytes.size());
}

std::vector<IndexFormat::Series> StoredIndex::touching(std::int64_t from, std::int64_t to) {
    std::vector<IndexFormat::Series> found;
    std::uint32_t begin = 0;
    for (std::size_t lengthClass = 0; lengthClass < IndexFormat::lengthClasses; ++lengthClass) {
        auto const end = header().classEnds[lengthClass];
        // The first that begins late enough to reach the window.
        auto const longest = (std::int64_t{1} << lengthClass) * secondsPerDay;
        auto low = begin;
        for (auto high = end; low < high;) {
            auto const middle = low + (high - low) / 2;
            if (seriesAt(middle).first < from - longest) {
                low = middle + 1;
            } else {
                high = middle;
            }
        }
        for (; low < end; ++low) {
            auto const series = seriesAt(low);
            if (series.first > to) break;
            if (series.last >= from) found.push_back(series);
        }
        begin = end;
    }
    return found;
}

std::vector<IndexFormat::UID> StoredIndex::withUID(std::uint64_t uid) {
    auto const at = [this](std::uint32_t place) {
        return recordAt<IndexFormat::UID>(uidSection(), place, header().seriesCount);
    };
    std::uint32_t low = 0;
    for (auto high = header().seriesCount; low < high;) {
        auto const middle = low + (high - low) / 2;
        if (at(middle).uid < uid) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    std::vector<IndexFormat::UID> found;
    for (; low < header().seriesCount && at(low).uid == uid; ++low)
        found.push_back(at(low));
    return found;
}

std::vector<ICalendar::ExcerptPart> StoredIndex::partsFrom(std::uint32_t first) {
    std::vector<ICalendar::ExcerptPart> parts;
    if (first == IndexFormat::none) return parts;
    for (auto place = first;; ++place) {
        auto const part = recordAt<IndexFormat::Part>(partSection(), place, header().partCount);
        parts.push_back({.offset = part.offset, .length = part.length, .line = part.line});
        if (part.hasNext == 0) return parts;
    }
}

} // namespace Platform
