#pragma once

#include "Foundation/Date.h"

#include <string>

namespace CalendarProviders {

/// A provider as the database keeps it; the one persisted type of the provider database. Made empty, then
/// filled.
struct CalendarProviderRealmModel {
    std::string capId = {};       ///< Primary key.
    std::string capProvider = {}; ///< The raw value of an AccountProviderEnum.
    std::string capDisplayName = {};
    std::string capDescription = {};
    std::string capEmail = {};
    bool capIsEnabled = false;
    Foundation::Date capRegisteredAt = {.secondsSince1970 = 0};
};

} // namespace CalendarProviders
