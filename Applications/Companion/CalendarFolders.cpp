#include "Applications/Companion/CalendarFolders.h"

#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Platform/EventStore/Folder/FolderListing.h"

#include <algorithm>
#include <unistd.h>

namespace Companion {

namespace fs = std::filesystem;

namespace {

std::vector<fs::directory_entry> entriesOf(fs::path const& folder) {
    std::vector<fs::directory_entry> entries;
    std::error_code error;
    fs::directory_iterator iterator(folder, fs::directory_options::skip_permission_denied, error);
    while (!error && iterator != fs::directory_iterator()) {
        entries.push_back(*iterator);
        iterator.increment(error);
    }
    return entries;
}

bool isCalendarFile(fs::directory_entry const& entry) {
    std::error_code error;
    auto const name = entry.path().filename().string();
    return Platform::isCalendarFileName(name) && !name.starts_with('.') && entry.is_regular_file(error);
}

bool isFolder(fs::directory_entry const& entry) {
    std::error_code error;
    return entry.is_directory(error) && !entry.path().filename().string().starts_with('.');
}

// Whether the store reads `inner` as a calendar of `outer`: hidden folders and deeper ones it does not.
bool isCalendarOf(fs::path const& inner, fs::path const& outer) {
    std::error_code error;
    auto const folder = fs::canonical(inner, error);
    return !error && !folder.filename().string().starts_with('.') && folder.has_relative_path() &&
           fs::equivalent(folder.parent_path(), outer, error);
}

} // namespace

std::optional<std::string> whyNotAFolder(fs::path const& path) {
    std::error_code error;
    auto const status = fs::status(path, error);
    if (status.type() == fs::file_type::not_found) return Texts::noSuchFolder(shownPath(path));
    if (error) return Texts::unreadableFolder(shownPath(path), error.message());
    if (!fs::is_directory(status)) return Texts::notAFolder(shownPath(path));
    if (::access(path.c_str(), R_OK | X_OK) != 0)
        return Texts::unreadableFolder(shownPath(path),
                                       std::error_code(errno, std::generic_category()).message());
    return std::nullopt;
}

Platform::CalendarRoot const* rootAt(fs::path const& path, std::vector<Platform::CalendarRoot> const& roots) {
    auto const isSame = [&](Platform::CalendarRoot const& root) {
        std::error_code error;
        // A root whose folder is gone can still be named by its path.
        return root.path == path || fs::equivalent(root.path, path, error);
    };
    auto const found = std::ranges::find_if(roots, isSame);
    return found == roots.end() ? nullptr : &*found;
}

std::optional<NestedSources> nestedSources(fs::path const& path,
                                           std::vector<Platform::CalendarRoot> const& roots) {
    for (auto const& root : roots) {
        if (isCalendarOf(path, root.path))
            return NestedSources{.known = &root, .inner = path, .outer = root.path};
        if (isCalendarOf(root.path, path))
            return NestedSources{.known = &root, .inner = root.path, .outer = path};
    }
    return std::nullopt;
}

bool holdsCalendarFiles(fs::path const& folder) {
    auto const entries = entriesOf(folder);
    if (std::ranges::any_of(entries, isCalendarFile)) return true;
    return std::ranges::any_of(entries, [](fs::directory_entry const& entry) {
        return isFolder(entry) && std::ranges::any_of(entriesOf(entry.path()), isCalendarFile);
    });
}

std::vector<fs::path> foundCalendarFolders(Foundation::Environment const& environment) {
    std::vector<fs::path> candidates;
    auto const home = fs::path(environment.value("HOME").value_or(""));
    auto dataHome = fs::path(environment.value("XDG_DATA_HOME").value_or(""));
    if (home.is_absolute()) candidates.push_back(home / ".calendars");
    if (!dataHome.is_absolute() && home.is_absolute()) dataHome = home / ".local" / "share";
    if (dataHome.is_absolute()) {
        candidates.push_back(dataHome / "calendars");
        candidates.push_back(dataHome / "khal" / "calendars");
    }
    std::erase_if(candidates, [](fs::path const& folder) { return !holdsCalendarFiles(folder); });
    return candidates;
}

} // namespace Companion
