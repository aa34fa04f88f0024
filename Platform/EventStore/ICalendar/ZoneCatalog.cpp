#include "Platform/EventStore/ICalendar/ZoneCatalog.h"

#include "Foundation/TimeZone.h"
#include "Platform/EventStore/ICalendar/EventZone.h"
#include "Platform/EventStore/ICalendar/WindowsZones.h"

#include <algorithm>
#include <array>

namespace Platform::ICalendar {
namespace {

// The names of the zone database that hold a digit or sign without a folder before them.
constexpr auto singleNamesWithDigits =
    std::to_array<std::string_view>({"EST5EDT", "CST6CDT", "MST7MDT", "PST8PDT", "GMT0", "GMT+0", "GMT-0"});

bool isZoneLetter(char byte) {
    char const lower = static_cast<char>(byte | 0x20);
    return (lower >= 'a' && lower <= 'z') || byte == '_' || byte == '/';
}

bool isZoneDigit(char byte) {
    return (byte >= '0' && byte <= '9') || byte == '+' || byte == '-';
}

// Links in the zone folder that lead out of it, to what this machine was set to: no zones of their own.
bool isNameOfThisMachine(std::string_view name) {
    auto const last = name.substr(name.rfind('/') + 1);
    return last == "localtime" || last == "posixrules";
}

// Whether the name could be one of the zone database. It must not be taken for a POSIX rule text, which a
// file's own name ("Zone1") may well look like.
bool mayBeSystemName(std::string_view name) {
    constexpr std::size_t longest = 64;
    if (name.empty() || name.size() > longest || name.front() == '/') return false;
    if (isNameOfThisMachine(name)) return false;
    auto const isPart = [](char byte) { return isZoneLetter(byte) || isZoneDigit(byte); };
    if (!std::ranges::all_of(name, isPart)) return false;
    bool const hasFolder = name.find('/') != std::string_view::npos;
    return hasFolder || std::ranges::none_of(name, isZoneDigit) ||
           std::ranges::find(singleNamesWithDigits, name) != singleNamesWithDigits.end();
}

// "/example.org/2005/Europe/Berlin": the longest ending that the system knows. Without the leading slash an
// ending of one word could be anything.
std::optional<Foundation::TimeZone> zoneOfSuffix(std::string_view name) {
    // A way through folders is no vendor's prefix.
    if (name.find("..") != std::string_view::npos) return std::nullopt;
    bool const isMarked = name.starts_with('/');
    constexpr int deepest = 8;
    for (int depth = 0; depth < deepest; ++depth) {
        auto const slash = name.find('/');
        if (slash == std::string_view::npos) return std::nullopt;
        name.remove_prefix(slash + 1);
        bool const isCandidate = isMarked || name.find('/') != std::string_view::npos;
        if (!isCandidate) return std::nullopt;
        if (auto zone = ZoneCatalog::systemZone(name)) return zone;
    }
    return std::nullopt;
}

// "EUROPE/BERLIN" as the zone database writes nearly all its names: "Europe/Berlin". Empty without a folder.
std::string capitalized(std::string_view name) {
    constexpr std::size_t longest = 64;
    std::string result;
    if (name.size() > longest || name.find('/') == std::string_view::npos) return result;
    bool isFirst = true;
    for (char const byte : name) {
        bool const isLetter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
        if (isLetter) {
            result += static_cast<char>(isFirst ? byte & ~0x20 : byte | 0x20);
        } else {
            result += byte;
        }
        isFirst = !isLetter;
    }
    return result;
}

} // namespace

FileZones::FileZones(CalendarFile const& file) {
    components.reserve(file.timeZones.size());
    for (auto const& component : file.timeZones)
        components.try_emplace(component.identifier, &component);
}

std::optional<Foundation::TimeZone> ZoneCatalog::systemZone(std::string_view name) {
    if (!mayBeSystemName(name)) return std::nullopt;
    return Foundation::TimeZone::named(name);
}

std::optional<EventZone> ZoneCatalog::zone(std::string_view identifier, FileZones& file) {
    if (identifier == "UTC" || identifier == "Etc/UTC" || identifier == "GMT") return EventZone::utc();
    if (auto zone = systemZone(identifier)) return EventZone(*zone);
    if (auto const name = ianaNameOfWindowsZone(identifier)) {
        if (auto zone = Foundation::TimeZone::named(*name)) return EventZone(*zone);
    }
    if (auto zone = zoneOfSuffix(identifier)) return EventZone(*zone);
    if (auto zone = systemZone(capitalized(identifier))) return EventZone(*zone);
    if (auto zone = customZone(identifier, file)) return EventZone(std::move(zone));
    return std::nullopt;
}

std::shared_ptr<CustomTimeZone const> ZoneCatalog::customZone(std::string_view identifier, FileZones& file) {
    auto const component = file.components.find(identifier);
    if (component == file.components.end()) return nullptr;
    auto const bytes = component->second->bytes;
    std::lock_guard const lock(mutex);
    auto const known = customZones.find(bytes);
    if (known != customZones.end()) return known->second;
    constexpr std::int64_t stepsPerZone = 200'000;
    auto const allowed = std::min(stepsPerZone, std::max<std::int64_t>(file.steps, 0));
    auto steps = allowed;
    auto zone = CustomTimeZone::fromComponent(bytes, steps);
    file.steps -= allowed - steps;
    // Foreign data must not make the catalog grow without end, nor one file's greed spoil another's zone.
    constexpr std::size_t mostKept = 256;
    if (steps > 0 && customZones.size() < mostKept) customZones.emplace(bytes, zone);
    return zone;
}

} // namespace Platform::ICalendar
