#include "Applications/Companion/CalendarAccess.h"
#include "Applications/Companion/CalendarRefresh.h"
#include "Applications/Companion/Commands.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Platform/EventStore/EKEventStore.h"
#include "Platform/EventStore/Folder/CalendarStorePlaces.h"
#include "Platform/Files/PosixFileLocks.h"

#include <chrono>
#include <memory>
#include <optional>
#include <sched.h>

namespace Companion {

namespace {

// Only when nobody else wants the processor: the person has the answer already.
void yieldToAllOthers() {
    sched_param const parameters{};
    ::sched_setscheduler(0, SCHED_IDLE, &parameters);
}

// Held by whoever looks at every file, so that many who ask at once do not all look. Absent when another
// holds it for longer than `patience`. Where no lock can be had, one looks without.
struct Turn {
    std::unique_ptr<Platform::FileLocks::Held> lock;
};
std::optional<Turn> turnToLook(Composition::LiveServices& services, std::chrono::milliseconds patience) {
    auto const places = services.calendarPlaces();
    if (!places || !places->indexDirectory) return Turn();
    auto lock = Platform::PosixFileLocks().take(*places->indexDirectory / "refresh.lock", patience);
    if (lock) return Turn{.lock = *std::move(lock)};
    return lock.error() == std::errc::timed_out ? std::nullopt : std::optional(Turn());
}

ExitCode refresh(Invocation const& invocation) {
    using namespace std::chrono_literals;
    auto const services = liveServices(invocation);
    bool const isUnseen = invocation.values.has(refreshInBackground);
    if (isUnseen) yieldToAllOthers();
    requiredConfiguration(*services);
    if (services->eventStore()->authorizationStatus() != Platform::EKAuthorizationStatus::fullAccess)
        throw CommandError::failed(whyNoAccess(*services, Texts::accessIsMissing()));
    auto const turn = turnToLook(*services, isUnseen ? 0ms : 60s);
    if (!turn && isUnseen) return ExitCode::done;
    auto const count = services->refreshCalendars();
    if (!isUnseen) invocation.console.confirmLine(Texts::calendarsRefreshed(count));
    return ExitCode::done;
}

} // namespace

Command sourcesRefreshCommand() {
    return {
        .path = "sources refresh",
        .summary = Texts::text("sources-refresh-summary"),
        .description = Texts::text("sources-refresh-description"),
        .options = {{.name = refreshInBackground,
                     .help = Texts::text("sources-refresh-option-in-background")}},
        .examples = {{"quillora sources refresh", Texts::text("sources-refresh-example-1")}},
        .run = refresh,
    };
}

} // namespace Companion
