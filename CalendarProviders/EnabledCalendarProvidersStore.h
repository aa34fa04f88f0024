#pragma once

#include "CalendarProviders/AccountProviderEnum.h"
#include "Platform/Files/FileManager.h"

#include <set>

/// The kinds of provider that are enabled in this process: "enabledCalendarProviders.json" in the folder
/// "Quillora" of the data home, a JSON array of raw values. The folder is made at each look-up, for a load
/// too; without a data home there is nothing to read or write.
namespace CalendarProviders::EnabledCalendarProvidersStore {

/// Empty when the file is missing, unreadable or no array of texts; texts that name no kind are left out.
std::set<AccountProviderEnum> load(Platform::FileManager const& files);

/// Writes the whole set and clears the file's quarantine marks. No failure is reported.
void save(Platform::FileManager const& files, std::set<AccountProviderEnum> const& providers);

} // namespace CalendarProviders::EnabledCalendarProvidersStore
