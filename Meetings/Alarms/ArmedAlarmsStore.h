#pragma once

#include "Platform/Defaults/UserDefaults.h"

#include <set>
#include <string>
#include <system_error>

/// The alarms that are armed, by their identifiers, under the key "armedAlarmIdentifiers". A change that
/// fails leaves the former set and yields why.
namespace Meetings::ArmedAlarmsStore {

/// Empty when nothing is stored.
std::set<std::string> load(Platform::UserDefaults const& defaults);

/// Puts the set in the place of the former one.
[[nodiscard]] std::error_code save(std::set<std::string> const& identifiers,
                                   Platform::UserDefaults& defaults);

/// Loads, changes and saves the whole set as one step. One that is there already, or not there, is no error.
[[nodiscard]] std::error_code insert(std::string const& identifier, Platform::UserDefaults& defaults);
[[nodiscard]] std::error_code remove(std::string const& identifier, Platform::UserDefaults& defaults);

/// Saves the empty set: the key stays.
[[nodiscard]] std::error_code removeAll(Platform::UserDefaults& defaults);

bool contains(std::string const& identifier, Platform::UserDefaults const& defaults);

} // namespace Meetings::ArmedAlarmsStore
