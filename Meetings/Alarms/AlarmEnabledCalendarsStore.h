#pragma once

#include "Platform/Defaults/UserDefaults.h"

#include <set>
#include <string>
#include <system_error>

/// The calendars whose meets are announced, by their identifiers, under the key
/// "alarmEnabledCalendarIdentifiers". A change that fails leaves the former set and yields why.
namespace Meetings::AlarmEnabledCalendarsStore {

/// Empty when nothing is stored.
std::set<std::string> load(Platform::UserDefaults const& defaults);

/// Puts the set in the place of the former one.
[[nodiscard]] std::error_code save(std::set<std::string> const& identifiers,
                                   Platform::UserDefaults& defaults);

/// Take some in or out as one step, so that what another program changes meanwhile is not lost.
[[nodiscard]] std::error_code insert(std::set<std::string> const& identifiers,
                                     Platform::UserDefaults& defaults);
[[nodiscard]] std::error_code remove(std::set<std::string> const& identifiers,
                                     Platform::UserDefaults& defaults);

/// Takes the key out.
[[nodiscard]] std::error_code clear(Platform::UserDefaults& defaults);

} // namespace Meetings::AlarmEnabledCalendarsStore
