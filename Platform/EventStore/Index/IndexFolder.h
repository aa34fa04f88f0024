#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <system_error>

/// The folder that holds one index for each folder of calendar files.
namespace Platform::IndexFolder {

/// Where in `directory` the index of `folder` lies.
std::filesystem::path fileFor(std::filesystem::path const& directory, std::filesystem::path const& folder);

/// Writes an index, making its folder and those above it as need be, and removes what `sweep` says.
std::error_code write(std::filesystem::path const& file, std::span<std::byte const> image, std::int64_t now);

/// Shows `sweep` that the index is in use. To be called now and then, a month apart at most.
void touch(std::filesystem::path const& file);

/// Removes indexes that nobody has used for two months, `spared` excepted, and what writers left behind that
/// were killed. `now` in nanoseconds since 1970.
void sweep(std::filesystem::path const& directory, std::int64_t now,
           std::filesystem::path const& spared = {});

} // namespace Platform::IndexFolder
