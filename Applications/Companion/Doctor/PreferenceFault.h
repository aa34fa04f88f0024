#pragma once

#include "Platform/Files/PreferenceGuard.h"

#include <filesystem>
#include <optional>
#include <string>

namespace Companion::Doctor {

/// Why what is in a preference file does not count, and what to do.
struct PreferenceFault {
    std::string reason;
    std::string mend;
};

/// Absent when the file is whole or there is none. `files` may be those that tell of damaged ones themselves.
std::optional<PreferenceFault> preferenceFault(Platform::FileManager const& files,
                                               std::filesystem::path const& file,
                                               Platform::GuardedPreference::Form form);

} // namespace Companion::Doctor
