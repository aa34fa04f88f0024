#include "CalendarProviders/LiveEventStoreAuthorizing.h"

#include <utility>

namespace CalendarProviders {

LiveEventStoreAuthorizing::LiveEventStoreAuthorizing(std::shared_ptr<Platform::EKEventStore> eventStore)
    : eventStore(std::move(eventStore)) {}

Platform::EKAuthorizationStatus LiveEventStoreAuthorizing::authorizationStatus() {
    return eventStore->authorizationStatus();
}

Foundation::Task<bool> LiveEventStoreAuthorizing::requestFullAccessToEvents() {
    return eventStore->requestFullAccessToEvents();
}

} // namespace CalendarProviders
