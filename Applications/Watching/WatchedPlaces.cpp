#include "Applications/Watching/WatchedPlaces.h"

#include <algorithm>
#include <set>
#include <system_error>

namespace Watching {

namespace {

namespace fs = std::filesystem;

/// Past this many places the rest is followed by the host's ordinary reload: watches are a scarce resource
/// that the whole session shares.
constexpr std::size_t mostPlaces = 512;

/// Places in the order in which they were found, each once.
class Places {
public:
    [[nodiscard]] bool isFull() const { return found.size() >= mostPlaces; }

    void add(WatchedPlace::Kind kind, fs::path folder, std::string name = {}) {
        WatchedPlace place{.kind = kind, .folder = std::move(folder), .name = std::move(name)};
        if (!isFull() && known.insert(place).second) {
            found.push_back(std::move(place));
        }
    }

    std::vector<WatchedPlace> found;

private:
    std::set<WatchedPlace> known;
};

bool isHidden(fs::path const& path) {
    return path.filename().native().starts_with('.');
}

/// Without links: a link that leads elsewhere later is then another place.
void addFolder(Places& places, fs::path const& folder) {
    std::error_code failure;
    auto canonical = fs::canonical(folder, failure);
    if (!failure) {
        places.add(WatchedPlace::Kind::calendars, std::move(canonical));
    }
}

void addCalendars(Places& places, fs::path const& root) {
    std::error_code failure;
    fs::directory_iterator entries(root, failure);
    if (failure) {
        return;
    }
    addFolder(places, root);
    for (; !places.isFull() && entries != fs::directory_iterator(); entries.increment(failure)) {
        if (failure) {
            return;
        }
        std::error_code unknown;
        if (!isHidden(entries->path()) && entries->is_directory(unknown)) {
            addFolder(places, entries->path());
        }
    }
}

/// The folders that `path` leads through, as far as they are there, and what is missing next. A folder that
/// moves says so to who watches it, and not to who watches a folder in it.
void addWay(Places& places, fs::path const& path, int linksFollowed = 0) {
    constexpr int mostLinks = 40; // As many as the kernel follows.
    auto reached = path.root_path();
    auto const rest = path.relative_path();
    for (auto part = rest.begin(); part != rest.end() && !part->empty(); ++part) {
        auto const next = reached / *part;
        std::error_code unknown;
        auto const type = fs::symlink_status(next, unknown).type();
        if (type == fs::file_type::directory) {
            reached = next;
            places.add(WatchedPlace::Kind::itself, reached);
            continue;
        }
        places.add(WatchedPlace::Kind::entry, reached, part->native());
        auto const target = fs::read_symlink(next, unknown);
        if (type != fs::file_type::symlink || unknown || linksFollowed == mostLinks) {
            return;
        }
        auto way = reached / target;
        for (++part; part != rest.end(); ++part) {
            way /= *part;
        }
        // What was reached bears no link, so that ".." in the target is the folder above it.
        addWay(places, way.lexically_normal(), linksFollowed + 1);
        return;
    }
}

} // namespace

std::vector<WatchedPlace> watchedPlaces(Platform::CalendarStorePlaces const& places,
                                        Platform::CalendarStoreConfiguration const& configuration) {
    std::vector<fs::path> roots{places.nativeCalendar};
    for (auto const& root : configuration.load().roots) {
        roots.push_back(root.path);
    }
    // The store reads no relative root either: it would lie wherever the program was started.
    std::erase_if(roots, [](fs::path const& root) { return !root.is_absolute(); });

    Places calendars;
    Places ways;
    for (auto const& root : roots) {
        addCalendars(calendars, root);
        addWay(ways, root.lexically_normal());
    }
    auto all = std::move(calendars.found);
    std::ranges::move(ways.found, std::back_inserter(all));
    return all;
}

} // namespace Watching
