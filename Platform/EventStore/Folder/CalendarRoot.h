#pragma once

#include <filesystem>
#include <string>

namespace Platform {

/// One place that the person added as a source of calendars.
struct CalendarRoot {
    std::string kind; ///< "folder"; a newer version may know more kinds.
    std::string id;   ///< Short, unique among the roots; the first part of its calendars' identifiers.
    std::filesystem::path path;
    std::string title;

    bool operator==(CalendarRoot const&) const = default;
};

/// The kind of a root that is a folder of iCalendar files.
inline constexpr auto folderRootKind = "folder";

} // namespace Platform
