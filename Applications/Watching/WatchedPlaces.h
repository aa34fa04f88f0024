#pragma once

#include "Platform/EventStore/Folder/CalendarStoreConfiguration.h"
#include "Platform/EventStore/Folder/CalendarStorePlaces.h"

#include <compare>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace Watching {

/// A folder to watch, and what matters in it.
struct WatchedPlace {
    enum class Kind : std::uint8_t {
        calendars, ///< Its files and folders: it holds calendars.
        entry,     ///< One entry, which has to come or may be replaced before a root is reached.
        itself     ///< That it stays where it is: a root is reached through it.
    };
    Kind kind;
    std::filesystem::path folder;
    std::string name; ///< Of the entry.

    auto operator<=>(WatchedPlace const&) const = default;
};

/// Where changes of the person's calendars show, each place once: first the folders whose files are calendars
/// (the product's own, each root of the list, and the folders directly in a root), then the ways to them,
/// also to those that are not there yet; links are followed. At most 512 of both sorts. Relative roots are
/// left out.
std::vector<WatchedPlace> watchedPlaces(Platform::CalendarStorePlaces const& places,
                                        Platform::CalendarStoreConfiguration const& configuration);

} // namespace Watching
