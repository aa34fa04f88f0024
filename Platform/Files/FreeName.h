#pragma once

#include "Platform/Files/FileManager.h"

#include <filesystem>
#include <string>
#include <system_error>

namespace Platform {

/// `wanted`, or with a number ("-2", "-3" and so on) when something has that name already. In a folder where
/// nothing can be looked at some name comes back all the same: the write that follows tells why.
inline std::filesystem::path freeName(FileManager const& files, std::filesystem::path const& wanted) {
    constexpr int mostTries = 1000;
    auto const isFree = [&](std::filesystem::path const& path) {
        auto const content = files.contents(path, 0); // Nothing of it is wanted.
        return !content && content.error() == std::errc::no_such_file_or_directory;
    };
    auto path = wanted;
    for (int number = 2; !isFree(path) && number < mostTries; ++number)
        path = wanted.string() + "-" + std::to_string(number);
    return path;
}

} // namespace Platform
