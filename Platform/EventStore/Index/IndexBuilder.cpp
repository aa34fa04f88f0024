#include "Platform/EventStore/Index/IndexBuilder.h"

#include "Platform/EventStore/Index/Mixing.h"

#include <algorithm>
#include <cstring>
#include <tuple>
#include <utility>

namespace Platform {

using namespace IndexFormat;

namespace {

template <typename Values>
std::span<std::byte const> bytesOf(Values const& values) {
    return std::as_bytes(std::span(values));
}

} // namespace

void IndexBuilder::addFile(std::string_view name, std::uint64_t stamp, FileFacts const& facts) {
    auto const place = static_cast<std::uint32_t>(files.size());
    addRecord(name, stamp, facts.isCalendarOfItsOwn, {.name = facts.name, .color = facts.color},
              addParts(facts.zones));
    for (auto const& one : facts.series) {
        series.push_back({.first = one.bounds.first,
                          .last = one.bounds.last,
                          .uid = one.uid,
                          .file = place & INT32_MAX,
                          .isShared = 0,
                          .parts = addParts(one.parts)});
    }
}

void IndexBuilder::adoptFile(StoredIndex& index, std::uint32_t place) {
    adopted.resize(index.fileCount(), none);
    adopted[place] = static_cast<std::uint32_t>(files.size());
    auto const record = index.fileAt(place);
    addRecord(index.nameOf(record), record.stamp, record.isCalendarOfItsOwn != 0, index.textOf(record),
              addParts(index.partsFrom(record.zones)));
}

void IndexBuilder::adoptSeries(StoredIndex& index) {
    adopted.resize(index.fileCount(), none);
    for (std::uint32_t place = 0; place < index.header().seriesCount; ++place) {
        auto one = index.seriesAt(place);
        if (one.file >= adopted.size()) throw IndexDamaged();
        if (adopted[one.file] == none) continue;
        one.file = adopted[one.file] & 0x7FFF'FFFFU;
        one.isShared = 0;
        one.parts = addParts(index.partsFrom(one.parts));
        series.push_back(one);
    }
    adopted.clear();
}

void IndexBuilder::addRecord(std::string_view name, std::uint64_t stamp, bool isCalendarOfItsOwn,
                             StoredIndex::CalendarText const& text, std::uint32_t zones) {
    bool const hasText = text.name || text.color;
    files.push_back({.name = hashOf(name),
                     .stamp = stamp,
                     .nameOffset = static_cast<std::uint32_t>(names.size()),
                     .nameLength = static_cast<std::uint16_t>(name.size()),
                     .isCalendarOfItsOwn = isCalendarOfItsOwn ? std::uint16_t{1} : std::uint16_t{0},
                     .text = hasText ? static_cast<std::uint32_t>(texts.size()) : none,
                     .zones = zones});
    names += name;
    if (!hasText) return;
    addText(text.name);
    addText(text.color);
}

void IndexBuilder::addText(std::optional<std::string> const& text) {
    auto const length = text ? static_cast<std::uint32_t>(text->size()) : none;
    texts.append(reinterpret_cast<char const*>(&length), sizeof length);
    if (text) texts += *text;
}

std::uint32_t IndexBuilder::addParts(std::span<ICalendar::ExcerptPart const> added) {
    if (added.empty()) return none;
    auto const first = static_cast<std::uint32_t>(parts.size());
    for (auto const& part : added)
        parts.push_back({.offset = part.offset, .length = part.length, .line = part.line, .hasNext = 1});
    parts.back().hasNext = 0;
    return first;
}

std::vector<std::byte> IndexBuilder::build(std::uint64_t folder, std::int64_t now) {
    std::ranges::sort(series, {}, [](Series const& one) {
        return std::tuple(lengthClass(one.last - one.first), one.first, one.file);
    });
    std::vector<UID> uids;
    markShared(uids);

    Header header{.magic = magic,
                  .checksum = 0,
                  .folder = folder,
                  .bodySize = 0,
                  .writtenAt = now,
                  .stampSum = 0,
                  .untrusted = 0,
                  .fileCount = static_cast<std::uint32_t>(files.size()),
                  .seriesCount = static_cast<std::uint32_t>(series.size()),
                  .partCount = static_cast<std::uint32_t>(parts.size()),
                  .nameBytes = static_cast<std::uint32_t>(names.size()),
                  .textBytes = static_cast<std::uint32_t>(texts.size()),
                  .classEnds = {}};
    for (auto const& file : files) {
        if (file.stamp == 0) ++header.untrusted;
        header.stampSum += shareOfSum(file.name, file.stamp);
    }
    for (auto const& one : series)
        ++header.classEnds[lengthClass(one.last - one.first)];
    for (std::size_t next = 1; next < lengthClasses; ++next)
        header.classEnds[next] += header.classEnds[next - 1];

    auto const sections = {bytesOf(files), bytesOf(series), bytesOf(uids),
                           bytesOf(parts), bytesOf(names),  bytesOf(texts)};
    for (auto const& section : sections)
        header.bodySize += section.size();
    auto const blocks = (header.bodySize + blockSize - 1) / blockSize;
    auto const bodyOffset = sizeof header + blocks * sizeof(std::uint64_t);
    std::vector<std::byte> image;
    image.reserve(bodyOffset + header.bodySize);
    image.resize(bodyOffset);
    for (auto const& section : sections)
        image.insert(image.end(), section.begin(), section.end());

    std::vector<std::uint64_t> sums;
    sums.reserve(blocks);
    auto const body = std::span<std::byte const>(image).subspan(bodyOffset);
    for (std::size_t block = 0; block < blocks; ++block) {
        auto const begin = block * blockSize;
        sums.push_back(hashOf(body.subspan(begin, std::min(blockSize, body.size() - begin)), block));
    }
    header.checksum = checksumOf(header, sums);
    std::memcpy(image.data(), &header, sizeof header);
    if (!sums.empty()) std::memcpy(image.data() + sizeof header, sums.data(), sums.size() * sizeof sums[0]);
    *this = {};
    return image;
}

// Lists the UIDs in their order, and marks the series whose UID stands in several files.
void IndexBuilder::markShared(std::vector<UID>& uids) {
    std::vector<std::uint32_t> order(series.size());
    for (std::uint32_t place = 0; place < order.size(); ++place)
        order[place] = place;
    std::ranges::sort(order, {}, [this](std::uint32_t place) {
        return std::tuple(series[place].uid, std::uint32_t{series[place].file});
    });
    uids.reserve(order.size());
    for (std::size_t next = 0; next < order.size(); ++next) {
        auto& one = series[order[next]];
        uids.push_back({.uid = one.uid, .file = one.file, .parts = one.parts});
        if (next == 0) continue;
        auto& previous = series[order[next - 1]];
        if (previous.uid != one.uid) continue;
        previous.isShared = 1;
        one.isShared = 1;
    }
}

} // namespace Platform
