#include "Platform/EventStore/Folder/EventMove.h"

#include "Foundation/UUID.h"
#include "Platform/EventStore/Folder/CalendarRootReader.h"
#include "Platform/EventStore/ICalendar/ComponentText.h"
#include "Platform/EventStore/ICalendar/EventZone.h"
#include "Platform/EventStore/ICalendar/TimeZoneWriter.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

namespace Platform {

namespace {

using ICalendar::CalendarFile;
using ICalendar::CalendarSource;

// The text with that break after each line.
std::string withLineBreaks(std::string_view text, std::string_view lineBreak) {
    std::string result;
    while (!text.empty()) {
        auto const end = text.find_first_of("\r\n");
        result += text.substr(0, end);
        if (end == std::string_view::npos) break;
        result += lineBreak;
        bool const isPair = text.substr(end).starts_with("\r\n");
        text.remove_prefix(end + (isPair ? 2 : 1));
    }
    return result;
}

// The event's components in a file, in whole lines.
std::string componentsIn(CalendarSource const& source, std::string const& uid) {
    std::string text;
    for (auto const& event : source.file->events) {
        if (event.uid != uid) continue;
        text += std::string_view(source.bytes).substr(event.offset, event.length);
        if (!text.ends_with('\n') && !text.ends_with('\r')) text += ICalendar::lineBreakOf(source.bytes);
    }
    return text;
}

// The zones of that name in a file, to be compared. Empty without any.
std::string explanationIn(CalendarFile const& file, std::string const& zone) {
    auto const found = std::ranges::find(file.timeZones, zone, &ICalendar::TimeZoneComponent::identifier);
    return found == file.timeZones.end() ? std::string() : withLineBreaks(found->bytes, "\n");
}

// A zone that means one clock here and another there.
std::optional<std::string> zoneExplainedOtherwise(std::string const& components, CalendarFile const& origin,
                                                  CalendarFile const& target, ICalendar::ZoneCatalog& zones) {
    CalendarFile const nothing{};
    auto const moved = ICalendar::read(ICalendar::newCalendar(components));
    for (auto const& zone : moved->zoneNames) {
        ICalendar::FileZones none(nothing);
        if (zones.zone(zone, none)) continue;
        bool const isKnown = std::ranges::find(target.zoneNames, zone) != target.zoneNames.end() ||
                             !explanationIn(target, zone).empty();
        if (isKnown && explanationIn(target, zone) != explanationIn(origin, zone)) return zone;
    }
    return std::nullopt;
}

// What the event says, apart from when that was written.
std::multiset<std::string> versionsIn(std::vector<CalendarSource> const& sources, std::string const& uid) {
    std::multiset<std::string> versions;
    for (auto const& source : sources) {
        for (auto const& event : source.file->events) {
            if (event.uid != uid) continue;
            ICalendar::ComponentText text(std::string_view(source.bytes).substr(event.offset, event.length));
            for (auto const* const name : {"DTSTAMP", "LAST-MODIFIED"})
                text.remove(name);
            auto lines = withLineBreaks(text.text(), "\n");
            if (!lines.ends_with('\n')) lines += '\n';
            versions.insert(std::move(lines));
        }
    }
    return versions;
}

// A file with two names is one file.
bool shareAFile(std::vector<CalendarSource> const& some, std::vector<CalendarSource> const& others) {
    return std::ranges::any_of(some, [&](CalendarSource const& one) {
        return std::ranges::any_of(others, [&](CalendarSource const& other) {
            std::error_code failure;
            return std::filesystem::equivalent(one.file->path, other.file->path, failure);
        });
    });
}

// The event's components with the zones that they name and `target` does not have.
std::string itemOf(std::string const& uid, std::vector<CalendarSource> const& sources,
                   CalendarFile const* target) {
    std::string zones;
    std::string components;
    std::set<std::string> added;
    for (auto const& source : sources) {
        auto const own = componentsIn(source, uid);
        auto const missing = ICalendar::missingTimeZones(own, {.target = target, .origin = source.file.get()},
                                                         ICalendar::lineBreakOf(source.bytes));
        auto const lacking = ICalendar::read(ICalendar::newCalendar(missing));
        for (auto const& zone : lacking->timeZones) {
            if (added.insert(zone.identifier).second) zones += zone.bytes;
        }
        components += own;
    }
    return zones + components;
}

// A UID may be any text.
bool isFileName(std::string_view uid) {
    constexpr std::size_t longest = 200;
    constexpr std::string_view letters =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789@._+-";
    return !uid.empty() && uid.size() <= longest && !uid.starts_with('.') &&
           uid.find_first_not_of(letters) == std::string_view::npos;
}

std::filesystem::path freePath(std::filesystem::path const& folder, std::string const& name) {
    std::error_code failure;
    auto const wanted = folder / name;
    bool const isFree =
        std::filesystem::symlink_status(wanted, failure).type() == std::filesystem::file_type::not_found;
    return isFree ? wanted : folder / (Foundation::UUID::random().uuidString() + ".ics");
}

MovedEvent intoFolder(std::string const& uid, std::vector<CalendarSource> const& sources,
                      std::filesystem::path const& folder) {
    auto const& first = sources.front();
    bool const goesWhole =
        sources.size() == 1 && ICalendar::holdsOnly(first, uid) && !isCalendarOfItsOwn(*first.file);
    auto const ownName = isFileName(uid) ? uid : Foundation::UUID::random().uuidString();
    auto const name =
        goesWhole ? std::filesystem::path(first.file->path).filename().string() : ownName + ".ics";
    auto const path = freePath(folder, name);
    auto const lineBreak = ICalendar::lineBreakOf(first.bytes);
    auto content =
        goesWhole
            ? first.bytes
            : ICalendar::newCalendar(withLineBreaks(itemOf(uid, sources, nullptr), lineBreak), lineBreak);
    std::vector<CalendarSource> files;
    files.push_back(ICalendar::calendarSource(content, path.string()));
    return {.change = EditedFiles::Change{.path = path, .before = std::nullopt, .after = std::move(content)},
            .files = std::move(files)};
}

MovedEvent intoFile(std::string const& uid, std::vector<CalendarSource> const& sources,
                    CalendarSource const& target) {
    auto item = withLineBreaks(itemOf(uid, sources, target.file.get()), ICalendar::lineBreakOf(target.bytes));
    auto content = ICalendar::spliced(target.bytes, {ICalendar::insertion(target, std::move(item))});
    std::vector<CalendarSource> files;
    files.push_back(ICalendar::calendarSource(content, target.file->path));
    return {.change = EditedFiles::Change{.path = target.file->path,
                                          .before = target.bytes,
                                          .after = std::move(content)},
            .files = std::move(files)};
}

} // namespace

std::expected<MovedEvent, std::string> movedEvent(std::string const& uid,
                                                  std::vector<CalendarSource> const& sources,
                                                  MoveTarget const& target, ICalendar::ZoneCatalog& zones) {
    // What is one file under two names would be there before the move, and nowhere after it.
    if (shareAFile(sources, target.files)) {
        return std::unexpected(
            fmt::format("The calendar \"{}\" lies in the files that the event is in", target.title));
    }
    for (auto const& source : sources) {
        for (auto const& file : target.files) {
            auto const zone =
                zoneExplainedOtherwise(componentsIn(source, uid), *source.file, *file.file, zones);
            if (!zone) continue;
            return std::unexpected(fmt::format(
                "The calendar \"{}\" explains the time zone \"{}\" in another way", target.title, *zone));
        }
    }
    auto const present = versionsIn(target.files, uid);
    if (!present.empty()) {
        if (present == versionsIn(sources, uid)) return MovedEvent{.change = {}, .files = target.files};
        return std::unexpected(
            fmt::format("The calendar \"{}\" holds another version of the event already", target.title));
    }
    if (target.place.kind == CalendarPlace::Kind::file) return intoFile(uid, sources, target.files.front());
    return intoFolder(uid, sources, target.place.path);
}

} // namespace Platform
