#pragma once

#include "CalendarProviders/AccountProviderEnum.h"
#include "Platform/Files/FileManager.h"

#include <filesystem>
#include <set>

/// A file that holds a JSON array of the raw values of account kinds.
namespace CalendarProviders::AccountProviderSetFile {

/// Empty when the file is missing, unreadable or no array of texts; texts that name no kind are left out.
std::set<AccountProviderEnum> load(Platform::FileManager const& files, std::filesystem::path const& path);

/// Written atomically; no failure is reported.
void save(Platform::FileManager const& files, std::filesystem::path const& path,
          std::set<AccountProviderEnum> const& providers);

} // namespace CalendarProviders::AccountProviderSetFile
