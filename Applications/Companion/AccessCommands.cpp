#include "Applications/Companion/CalendarAccess.h"
#include "Applications/Companion/Commands.h"
#include "Applications/Companion/ProviderRegistry.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "CalendarProviders/EventKitPermissionRepositoryImpl.h"
#include "Platform/WidgetHost/WidgetCenter.h"

namespace Companion {

namespace {

ExitCode record(Invocation const& invocation, Platform::EKAuthorizationStatus status) {
    auto const services = liveServices(invocation);
    auto const consent = requiredConsent(*services);
    if (auto const error = consent->record(status))
        throw CommandError::failed(Texts::cannotWrite(shownPath(consent->file()), error.message()));
    services->widgetCenter()->reloadAllTimelines();
    confirmAccess(invocation, *services);
    return ExitCode::done;
}

ExitCode status(Invocation const& invocation) {
    auto const services = liveServices(invocation);
    sayAccess(invocation, *services);
    return ExitCode::done;
}

ExitCode request(Invocation const& invocation) {
    auto const services = liveServices(invocation);
    bool const isToBeAsked =
        requiredConsent(*services)->status() == Platform::EKAuthorizationStatus::notDetermined;
    if (isToBeAsked && !invocation.console.canAsk())
        throw CommandError::wrongUse(Texts::accessHasNobodyToAsk());
    CalendarProviders::EventKitPermissionRepositoryImpl permission(services->eventStore());
    auto const answered =
        Foundation::runTask(permission.requestAccess(CalendarProviders::AccountProviderEnum::eventKit));
    services->widgetCenter()->reloadAllTimelines();
    // What the store answers is the same for a no and for no answer; only a no is on record.
    bool const isAnswered =
        requiredConsent(*services)->status() != Platform::EKAuthorizationStatus::notDetermined;
    require(answered,
            whyNoAccess(*services, isAnswered ? Texts::accessNotGranted() : Texts::accessNotAnswered()));
    sayAccess(invocation, *services);
    return ExitCode::done;
}

ExitCode grant(Invocation const& invocation) {
    return record(invocation, Platform::EKAuthorizationStatus::fullAccess);
}

ExitCode deny(Invocation const& invocation) {
    return record(invocation, Platform::EKAuthorizationStatus::denied);
}

ExitCode reset(Invocation const& invocation) {
    auto const services = liveServices(invocation);
    auto const consent = requiredConsent(*services);
    if (auto const error = consent->reset())
        throw CommandError::failed(Texts::cannotWrite(shownPath(consent->file()), error.message()));
    services->widgetCenter()->reloadAllTimelines();
    confirmAccess(invocation, *services);
    return ExitCode::done;
}

} // namespace

Command accessGroup() {
    return {
        .path = "access",
        .summary = Texts::text("access-summary"),
        .description = Texts::text("access-description"),
    };
}

Command accessStatusCommand() {
    return {
        .path = "access status",
        .summary = Texts::text("access-status-summary"),
        .description = Texts::text("access-status-description"),
        .examples = {{"quillora access status", Texts::text("access-status-example-1")}},
        .run = status,
    };
}

Command accessRequestCommand() {
    return {
        .path = "access request",
        .summary = Texts::text("access-request-summary"),
        .description = Texts::text("access-request-description"),
        .examples = {{"quillora access request", Texts::text("access-request-example-1")}},
        .run = request,
    };
}

Command accessGrantCommand() {
    return {
        .path = "access grant",
        .summary = Texts::text("access-grant-summary"),
        .description = Texts::text("access-grant-description"),
        .run = grant,
    };
}

Command accessDenyCommand() {
    return {
        .path = "access deny",
        .summary = Texts::text("access-deny-summary"),
        .description = Texts::text("access-deny-description"),
        .run = deny,
    };
}

Command accessResetCommand() {
    return {
        .path = "access reset",
        .summary = Texts::text("access-reset-summary"),
        .description = Texts::text("access-reset-description"),
        .run = reset,
    };
}

} // namespace Companion
