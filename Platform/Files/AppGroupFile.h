#pragma once

#include "Platform/Files/FileManager.h"

#include <filesystem>
#include <string_view>

namespace Platform {

/// Where a small preference file of an application group lies: directly in the group's container, else in the
/// temporary folder, whose files no other process is meant to see. Nothing is created, and the place is
/// worked out at each call.
inline std::filesystem::path appGroupFile(FileManager const& files, std::string_view group,
                                          std::string_view fileName) {
    auto const container = files.containerURLForSecurityApplicationGroupIdentifier(group);
    return (container ? *container : files.temporaryDirectory()) / fileName;
}

} // namespace Platform
