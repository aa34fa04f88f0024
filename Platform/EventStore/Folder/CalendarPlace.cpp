#include "Platform/EventStore/Folder/CalendarPlace.h"

#include "Foundation/Text.h"
#include "Platform/EventStore/Folder/FolderEventStore.h"
#include "Platform/EventStore/Folder/FolderListing.h"

#include <algorithm>
#include <string>
#include <system_error>

namespace Platform {

namespace {

using std::filesystem::path;

std::optional<CalendarPlace> placeAt(path const& root, path const& entry) {
    std::error_code failure;
    auto const canonicalRoot = std::filesystem::canonical(root, failure);
    if (failure) return std::nullopt;
    auto const canonical = std::filesystem::canonical(entry, failure);
    if (failure) return std::nullopt;
    auto const [rootEnd, rest] = std::ranges::mismatch(canonicalRoot, canonical);
    bool const liesBelow = rootEnd == canonicalRoot.end() && rest != canonical.end();
    if (!liesBelow) return std::nullopt;
    if (std::filesystem::is_directory(canonical, failure))
        return CalendarPlace{.kind = CalendarPlace::Kind::folder, .path = entry};
    if (std::filesystem::is_regular_file(canonical, failure))
        return CalendarPlace{.kind = CalendarPlace::Kind::file, .path = entry};
    return std::nullopt;
}

// A name that is no UTF-8 appears in the identifier with replacement characters.
std::optional<path> entryShownAs(path const& root, std::string_view name) {
    std::error_code failure;
    for (std::filesystem::directory_iterator entry(root, failure), end; !failure && entry != end;
         entry.increment(failure)) {
        auto const own = entry->path().filename().string();
        if (own != name && Foundation::Text::sanitizedUTF8(own) == name) return entry->path();
    }
    return std::nullopt;
}

std::optional<CalendarPlace> placeInRoot(CalendarRoot const& root, std::string_view name) {
    std::error_code failure;
    if (name == ".") {
        if (!std::filesystem::is_directory(root.path, failure)) return std::nullopt;
        return CalendarPlace{.kind = CalendarPlace::Kind::folder, .path = root.path};
    }
    bool const isEntry = !name.empty() && !name.starts_with('.') && name.find('/') == std::string_view::npos;
    if (!isEntry) return std::nullopt;
    if (auto place = placeAt(root.path, root.path / name)) return place;
    constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";
    if (name.find(replacementCharacter) == std::string_view::npos) return std::nullopt;
    auto const entry = entryShownAs(root.path, name);
    if (!entry) return std::nullopt;
    return placeAt(root.path, *entry);
}

} // namespace

std::optional<CalendarPlace> findCalendarPlace(std::vector<CalendarRoot> const& roots,
                                               std::string_view calendarIdentifier) {
    for (auto const& root : roots) {
        std::error_code failure;
        if (root.id == nativeCalendarIdentifier) {
            bool const isMeant = calendarIdentifier == root.id;
            if (isMeant && std::filesystem::is_directory(root.path, failure))
                return CalendarPlace{.kind = CalendarPlace::Kind::folder, .path = root.path};
            continue;
        }
        auto const prefix = root.id + "/";
        if (!calendarIdentifier.starts_with(prefix)) continue;
        if (auto place = placeInRoot(root, calendarIdentifier.substr(prefix.size()))) return place;
    }
    return std::nullopt;
}

} // namespace Platform
