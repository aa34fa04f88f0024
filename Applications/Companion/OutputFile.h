#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace Companion {

/// Why nothing can be written at `path`: its folder is missing, or it is a folder itself. Absent when it
/// is worth trying.
std::optional<std::string> whyNotAnOutputFile(std::filesystem::path const& path);

/// Whether what is written to one would replace, or follow, what was written to the other: they name the same
/// file, however spelled and through whatever links, also one that is still to be made. Devices have room for
/// both.
bool isSameOutput(std::filesystem::path const& one, std::filesystem::path const& other);

/// Whether `path` is what standard output goes to. Of devices only a terminal counts.
bool isStandardOutput(std::filesystem::path const& path);

/// Puts `content` into the file that the person named. A regular file is replaced as a whole, so that
/// whatever shows it never reads half a picture; a device or pipe is written to. A new file gets the
/// permissions of any file of the person's. Throws CommandError with ExitCode::failed.
void writeOutputFile(std::filesystem::path const& path, std::string_view content);

} // namespace Companion
