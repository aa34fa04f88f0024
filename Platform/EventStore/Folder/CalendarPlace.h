#pragma once

#include "Platform/EventStore/Folder/CalendarRoot.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

namespace Platform {

/// Where the events of a calendar are written.
struct CalendarPlace {
    enum class Kind : std::uint8_t {
        folder, ///< A new event gets a file of its own in `path`.
        file,   ///< All events are in the file `path`.
    };
    Kind kind;
    std::filesystem::path path;

    /// The folder in which files are written.
    [[nodiscard]] std::filesystem::path folder() const {
        return kind == Kind::folder ? path : path.parent_path();
    }
};

/// The place of the calendar of that identifier, found without looking into any folder's content. Absent when
/// there is no such folder or file, or when it lies outside of its root.
std::optional<CalendarPlace> findCalendarPlace(std::vector<CalendarRoot> const& roots,
                                               std::string_view calendarIdentifier);

} // namespace Platform
