#include "Meetings/Alarms/AlarmEnabledCalendarsStore.h"

#include "Meetings/Alarms/IdentifierSet.h"

#include <string_view>

namespace Meetings::AlarmEnabledCalendarsStore {
namespace {

constexpr std::string_view key = "alarmEnabledCalendarIdentifiers";

} // namespace

std::set<std::string> load(Platform::UserDefaults const& defaults) {
    return IdentifierSet::load(defaults, key);
}

std::error_code save(std::set<std::string> const& identifiers, Platform::UserDefaults& defaults) {
    return IdentifierSet::save(defaults, key, identifiers);
}

std::error_code insert(std::set<std::string> const& identifiers, Platform::UserDefaults& defaults) {
    return IdentifierSet::update(defaults, key, [&](std::set<std::string>& enabled) {
        enabled.insert(identifiers.begin(), identifiers.end());
    });
}

std::error_code remove(std::set<std::string> const& identifiers, Platform::UserDefaults& defaults) {
    return IdentifierSet::update(defaults, key, [&](std::set<std::string>& enabled) {
        for (auto const& identifier : identifiers)
            enabled.erase(identifier);
    });
}

std::error_code clear(Platform::UserDefaults& defaults) {
    return defaults.removeObject(key);
}

} // namespace Meetings::AlarmEnabledCalendarsStore
