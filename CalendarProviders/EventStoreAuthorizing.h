#pragma once

#include "Foundation/Task.h"
#include "Platform/EventStore/EKEventStore.h"

namespace CalendarProviders {

/// What asking for access needs of a calendar store. Outlives the tasks that it returns.
class EventStoreAuthorizing {
public:
    virtual ~EventStoreAuthorizing() = default;

    /// For events.
    virtual Platform::EKAuthorizationStatus authorizationStatus() = 0;

    /// Asks the person; yields whether access was granted, and throws when the request itself fails.
    virtual Foundation::Task<bool> requestFullAccessToEvents() = 0;
};

} // namespace CalendarProviders
