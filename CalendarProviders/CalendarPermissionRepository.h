#pragma once

#include "CalendarProviders/AccountProviderEnum.h"
#include "CalendarProviders/ResultEntity.h"
#include "Foundation/Task.h"

namespace CalendarProviders {

/// Access to the user's calendars. Outlives the tasks that it returns.
class CalendarPermissionRepository {
public:
    virtual ~CalendarPermissionRepository() = default;

    /// Asks for access on behalf of a kind of provider; may last until the person has answered. Yields
    /// nothing. Never throws: a refusal or failure is told in `infrastructureMessage`.
    virtual Foundation::Task<ResultEntity> requestAccess(AccountProviderEnum provider) = 0;
};

} // namespace CalendarProviders
