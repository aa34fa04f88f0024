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

/// Whether `folder` or a folder directly in it holds an .ics file.
bool holdsCalendarFiles(std::filesystem::path const& folder);

/// The folders where calendar programs commonly keep their files, of those the ones that hold any.
std::vector<std::filesystem::path> foundCalendarFolders(Foundation::Environment const& environment);

} // namespace Companion
