#pragma once

#include "Foundation/Date.h"
#include "Platform/ObjectDatabase/DatabaseFile.h"

#include <filesystem>
#include <system_error>
#include <vector>

/// Where a database's files go instead of being destroyed: copies beside them, named for the moment, of which
/// the newest three are kept.
namespace Platform::Quarantine {

inline constexpr std::size_t keptCopies = 3;

/// Renames the database's file and everything that belongs to it, the lock last. Fails when one of them
/// cannot be renamed. Only under the lock.
std::error_code moveAside(DatabaseFile const& database, Foundation::Date now);

/// The database files in quarantine, newest first; none when the folder cannot be read.
std::vector<std::filesystem::path> copies(std::filesystem::path const& database);

} // namespace Platform::Quarantine
