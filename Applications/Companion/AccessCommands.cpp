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
    invocation.console.writeLine(Texts::accessStatus(consent->status()));
    return ExitCode::done;
}

ExitCode status(Invocation const& invocation) {
    auto const services = liveServices(invocation);
    invocation.console.writeLine(Texts::accessStatus(requiredConsent(*services)->status()));
    return ExitCode::done;
}

ExitCode request(Invocation const& invocation) {
    auto const services = liveServices(invocation);
    auto const consent = requiredConsent(*services);
    CalendarProviders::EventKitPermissionRepositoryImpl permission(services->eventStore());
    auto const answered =
        Foundation::runTask(permission.requestAccess(CalendarProviders::AccountProviderEnum::eventKit));
    services->widgetCenter()->reloadAllTimelines();
    require(answered, Texts::accessNotGranted());
    invocation.console.writeLine(Texts::accessStatus(consent->status()));
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
    invocation.console.writeLine(Texts::accessStatus(consent->status()));
    return ExitCode::done;
}

} // namespace

Command accessGroup() {
    return {
        .path = "access",
        .summary = "whether Quillora may read your calendars",
        .description =
            "Quillora reads your calendars only after you agreed. The answer is kept for you alone, "
            "and the widget and this program share it.",
    };
}

Command accessStatusCommand() {
    return {
        .path = "access status",
        .summary = "say whether Quillora may read your calendars",
        .description = "Says what you answered: granted, denied, or not asked yet.",
        .examples = {{"quillora access status", "prints for example \"Calendar access: granted\""}},
        .run = status,
    };
}

Command accessRequestCommand() {
    return {
        .path = "access request",
        .summary = "ask for your calendars as the widget would",
        .description = "Asks on the terminal whether Quillora may read your calendars, unless you have "
                       "answered already.",
        .examples = {{"quillora access request", "asks, and ends with 1 when access is not granted"}},
        .run = request,
    };
}

Command accessGrantCommand() {
    return {
        .path = "access grant",
        .summary = "allow Quillora to read your calendars",
        .description = "Records that Quillora may read and change your calendars, without a question. "
                       "The widget shows your day at once.",
        .run = grant,
    };
}

Command accessDenyCommand() {
    return {
        .path = "access deny",
        .summary = "forbid Quillora to read your calendars",
        .description = "Records that Quillora must not read your calendars. The widget says so in place of "
                       "your day. Your calendars themselves stay as they are.",
        .run = deny,
    };
}

Command accessResetCommand() {
    return {
        .path = "access reset",
        .summary = "forget the answer, so that you are asked again",
        .description = "Forgets what you answered. The next program that wants to read your calendars asks.",
        .run = reset,
    };
}

} // namespace Companion
