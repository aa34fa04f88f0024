#pragma once

#include "Platform/EventStore/Folder/CalendarRoot.h"
#include "Platform/EventStore/Folder/CalendarStorePlaces.h"

#include <filesystem>
#include <vector>

namespace Platform {

/// A folder of calendars that the file system does not let this user open.
struct RefusedFolder {
    std::filesystem::path folder;
    /// What stands in the way: the folder itself, or the first one above it that may not be entered.
    std::filesystem::path closed;
    bool isClosedByOther; ///< Whether `closed` belongs to another user, who alone can open it.

    bool operator==(RefusedFolder const&) const = default;
};

/// Whether the folder may not be opened. One that is not there refuses nothing.
bool isRefused(std::filesystem::path const& folder);

/// Whether the product's own calendar was made, as far as one may look.
bool hasNativeCalendar(CalendarStorePlaces const& places);

/// Those of the product's own calendar and the roots that may not be opened, in this order.
std::vector<RefusedFolder> refusedFolders(CalendarStorePlaces const& places,
                                          std::vector<CalendarRoot> const& roots);

} // namespace Platform
