#pragma once

#include "CalendarProviders/AccountProviderEnum.h"
#include "Foundation/Date.h"

#include <string>

namespace CalendarProviders {

/// One registered calendar provider.
struct CalendarProviderEntity {
    std::string capId; ///< Also the primary key in the database.
    AccountProviderEnum capProvider;
    std::string capDisplayName;
    std::string capDescription;
    std::string capEmail;
    bool capIsEnabled;
    Foundation::Date capRegisteredAt;
};

} // namespace CalendarProviders
