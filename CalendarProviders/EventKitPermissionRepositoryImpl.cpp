#include "CalendarProviders/EventKitPermissionRepositoryImpl.h"

#include "CalendarProviders/LiveEventStoreAuthorizing.h"

#include <exception>
#include <optional>
#include <string>
#include <utility>

namespace CalendarProviders {
namespace {

ResultEntity accessFailure(std::string message) {
    return failed({.infrastructureMessage = std::move(message)});
}

} // namespace

EventKitPermissionRepositoryImpl::EventKitPermissionRepositoryImpl(
    std::shared_ptr<Platform::EKEventStore> eventStore)
    : eventStore(std::make_shared<LiveEventStoreAuthorizing>(std::move(eventStore))) {}

EventKitPermissionRepositoryImpl::EventKitPermissionRepositoryImpl(
    std::shared_ptr<EventStoreAuthorizing> eventStore)
    : eventStore(std::move(eventStore)) {}

Foundation::Task<ResultEntity> EventKitPermissionRepositoryImpl::requestAccess(AccountProviderEnum) {
    // What the store throws, of whatever type, becomes a failure: nothing leaves here but a result.
    std::string failure(accessDeniedMessage);
    try {
        auto const status = eventStore->authorizationStatus();
        if (status == Platform::EKAuthorizationStatus::fullAccess) co_return succeeded();
        // Write-only access counts as denied, on purpose and without asking: a meet must be read to be shown.
        if (status != Platform::EKAuthorizationStatus::notDetermined)
            co_return accessFailure(std::move(failure));
        bool const isGranted = co_await eventStore->requestFullAccessToEvents();
        if (isGranted) co_return succeeded();
    } catch (std::exception const& error) {
        failure = error.what();
    } catch (...) {
        // Without a text of its own it stays a denial.
    }
    co_return accessFailure(std::move(failure));
}

} // namespace CalendarProviders
