#include "Platform/EventStore/Index/FileFacts.h"

#include "Platform/EventStore/Index/Mixing.h"

#include <unordered_map>
#include <utility>

namespace Platform {
namespace {

using ICalendar::ExcerptPart;

ExcerptPart partOf(std::size_t offset, std::size_t length, std::int64_t line) {
    return {.offset = static_cast<std::uint32_t>(offset),
            .length = static_cast<std::uint32_t>(length),
            .line = static_cast<std::uint32_t>(line)};
}

// A file's zones are worked out within a common bound, which so many could meet; then all of it is read, lest
// the bound fall elsewhere than it does for the whole.
constexpr std::size_t mostZonesInParts = 64;

bool isReadInParts(ICalendar::CalendarFile const& file) {
    auto const size = file.bytes->size();
    return size >= smallestFileInParts && size <= UINT32_MAX && file.timeZones.size() <= mostZonesInParts;
}

} // namespace

std::uint64_t uidHash(std::string_view uid) {
    return hashOf(uid);
}

FileFacts factsOf(ICalendar::CalendarFile const& file) {
    FileFacts facts{.isCalendarOfItsOwn = file.name.has_value(),
                    .name = file.name,
                    .color = file.color,
                    .series = {},
                    .zones = {}};
    bool const inParts = isReadInParts(file);
    std::unordered_map<std::string_view, std::size_t> indices;
    for (auto const& event : file.events) {
        auto const bounds = ICalendar::roughBounds(event, ICalendar::CountReach::workedOut);
        auto const [entry, isNew] = indices.try_emplace(event.uid, facts.series.size());
        if (isNew) {
            facts.series.push_back({.uid = uidHash(event.uid), .bounds = bounds, .parts = {}});
        } else {
            facts.series[entry->second].bounds.include(bounds);
        }
        if (inParts)
            facts.series[entry->second].parts.push_back(partOf(event.offset, event.length, event.line));
    }
    facts.isCalendarOfItsOwn = facts.isCalendarOfItsOwn || facts.series.size() > 1;
    if (inParts) {
        for (auto const& zone : file.timeZones) {
            auto const offset = static_cast<std::size_t>(zone.bytes.data() - file.bytes->data());
            facts.zones.push_back(partOf(offset, zone.bytes.size(), zone.line));
        }
    }
    return facts;
}

} // namespace Platform
