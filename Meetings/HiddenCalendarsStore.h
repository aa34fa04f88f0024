#pragma once

#include "Platform/Files/FileManager.h"
#include "Platform/NotificationCenter/NotificationCenter.h"

#include <set>
#include <string>
#include <string_view>

/// The calendars that the person chose not to see: "hiddenCalendarIdentifiers.json" in the container of the
/// application group, a JSON array of calendar identifiers.
namespace Meetings::HiddenCalendarsStore {

/// Name of the announcement that follows each save, in the saving process only.
inline constexpr std::string_view hiddenCalendarsDidChange = "hiddenCalendarsDidChange";

/// Empty when the file is missing, unreadable or no array of texts.
std::set<std::string> load(Platform::FileManager const& files);

/// Writes the whole set, then announces the change. An identifier that is not UTF-8 stops it: nothing is
/// written or announced. A failed write leaves the old file and is not reported.
void save(Platform::FileManager const& files, Platform::NotificationCenter& notifications,
          std::set<std::string> const& identifiers);

/// Removes the file. Announces nothing, and no failure is reported.
void clear(Platform::FileManager const& files);

} // namespace Meetings::HiddenCalendarsStore
