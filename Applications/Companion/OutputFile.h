#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace Companion {

/// Why nothing can be written at `path`: its folder is missing, or it is a folder itself. Absent when it
/// is worth trying.
std::optional<std::string> whyNotAnOutputFile(std::filesystem::path const& path);

/// Puts `content` into the file that the person named. A regular file is replaced as a whole, so that
/// whatever shows it never reads half a picture; a device or pipe is written to. A new file gets the
/// permissions of any file of the person's. Throws CommandError with ExitCode::failed.
void writeOutputFile(std::filesystem::path const& path, std::string_view content);

} // namespace Companion
