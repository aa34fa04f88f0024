#pragma once

#include "CalendarProviders/AccountProviderEnum.h"
#include "Platform/Files/FileManager.h"

#include <filesystem>
#include <set>

/// The kinds of account that are enabled, as the widget reads them: "enabledCalendarAccounts.json" in the
/// container of the application group, a JSON array of raw values.
namespace CalendarProviders::EnabledCalendarAccountsStore {

/// Where the file lies, worked out at each call.
std::filesystem::path fileURL(Platform::FileManager const& files);

/// Empty when the file is missing, unreadable or no array of texts; texts that name no kind are left out.
std::set<AccountProviderEnum> load(Platform::FileManager const& files);

/// Writes the whole set. A failed write leaves the old file and is not reported.
void save(Platform::FileManager const& files, std::set<AccountProviderEnum> const& providers);

/// Removes the file; no failure is reported.
void clear(Platform::FileManager const& files);

} // namespace CalendarProviders::EnabledCalendarAccountsStore
