#include "Meetings/Alarms/ArmedAlarmsStore.h"

#include "Meetings/Alarms/IdentifierSet.h"

#include <string_view>

namespace Meetings::ArmedAlarmsStore {
namespace {

constexpr std::string_view key = "armedAlarmIdentifiers";

} // namespace

std::set<std::string> load(Platform::UserDefaults const& defaults) {
    return IdentifierSet::load(defaults, key);
}

std::error_code save(std::set<std::string> const& identifiers, Platform::UserDefaults& defaults) {
    return IdentifierSet::save(defaults, key, identifiers);
}

std::error_code insert(std::string const& identifier, Platform::UserDefaults& defaults) {
    return IdentifierSet::update(defaults, key,
                                 [&](std::set<std::string>& armed) { armed.insert(identifier); });
}

std::error_code remove(std::string const& identifier, Platform::UserDefaults& defaults) {
    return IdentifierSet::update(defaults, key,
                                 [&](std::set<std::string>& armed) { armed.erase(identifier); });
}

std::error_code removeAll(Platform::UserDefaults& defaults) {
    return save({}, defaults);
}

bool contains(std::string const& identifier, Platform::UserDefaults const& defaults) {
    return load(defaults).contains(identifier);
}

} // namespace Meetings::ArmedAlarmsStore
