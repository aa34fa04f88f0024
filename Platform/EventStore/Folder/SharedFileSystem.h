#pragma once

#include <filesystem>

namespace Platform {

/// Whether other computers, or programs behind the kernel's back, may change what lies in the folder, so that
/// neither the system's events nor the folder's own time tell of every change. True where it cannot be known.
bool isSharedWithOthers(std::filesystem::path const& folder);

} // namespace Platform
