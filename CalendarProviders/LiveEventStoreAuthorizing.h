#pragma once

#include "CalendarProviders/EventStoreAuthorizing.h"

#include <memory>

namespace CalendarProviders {

/// The calendar store itself. A value; copies share the store.
class LiveEventStoreAuthorizing final : public EventStoreAuthorizing {
public:
    explicit LiveEventStoreAuthorizing(std::shared_ptr<Platform::EKEventStore> eventStore);

    Platform::EKAuthorizationStatus authorizationStatus() override;
    Foundation::Task<bool> requestFullAccessToEvents() override;

private:
    std::shared_ptr<Platform::EKEventStore> eventStore;
};

} // namespace CalendarProviders
