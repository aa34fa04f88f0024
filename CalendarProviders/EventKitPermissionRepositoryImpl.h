#pragma once

#include "CalendarProviders/CalendarPermissionRepository.h"
#include "CalendarProviders/EventStoreAuthorizing.h"
#include "Platform/EventStore/EKEventStore.h"

#include <memory>
#include <string_view>

namespace CalendarProviders {

/// Access to the calendar store, whatever the kind of provider.
class EventKitPermissionRepositoryImpl final : public CalendarPermissionRepository {
public:
    static constexpr std::string_view accessDeniedMessage = "Calendar access was denied";

    /// Over the calendar store itself.
    explicit EventKitPermissionRepositoryImpl(std::shared_ptr<Platform::EKEventStore> eventStore);
    explicit EventKitPermissionRepositoryImpl(std::shared_ptr<EventStoreAuthorizing> eventStore);

    /// Asks the person only while nothing is decided.
    Foundation::Task<ResultEntity> requestAccess(AccountProviderEnum provider) override;

private:
    std::shared_ptr<EventStoreAuthorizing> eventStore;
};

} // namespace CalendarProviders
