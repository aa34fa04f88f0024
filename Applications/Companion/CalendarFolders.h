#pragma once

#include "Foundation/Environment.h"
#include "Platform/EventStore/Folder/CalendarRoot.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Companion {

/// Why `path` cannot be a source: it is missing, no folder, or may not be read. Absent when it can.
std::optional<std::string> whyNotAFolder(std::filesystem::path const& path);

/// The root that is the same folder as `path`, also by way of links; nullptr when there is none.
Platform::CalendarRoot const* rootAt(std::filesystem::path const& path,
                                     std::vector<Platform::CalendarRoot> const& roots);

/// Two sources of which one holds the other as one of its calendars.
struct NestedSources {
    Platform::CalendarRoot const* known;
    std::filesystem::path inner;
    std::filesystem::path outer;
};

/// The first root that lies directly in `path`, or that `path` lies directly in, links followed. The store
/// reads the folders directly in a root, so the events of the inner one show twice.
std::optional<NestedSources> nestedSources(std::filesystem::path const& path,
                                           std::vector<Platform::CalendarRoot> const& roots);

/// Whether `folder` or a folder directly in it holds an .ics file.
bool holdsCalendarFiles(std::filesystem::path const& folder);

/// The folders where calendar programs commonly keep their files, of those the ones that hold any.
std::vector<std::filesystem::path> foundCalendarFolders(Foundation::Environment const& environment);

} // namespace Companion
