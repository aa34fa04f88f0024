#include "Applications/Companion/CalendarAccess.h"
#include "Applications/Companion/CalendarRefresh.h"
#include "Applications/Companion/Commands.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Platform/EventStore/Folder/CalendarStorePlaces.h"
#include "Platform/EventStore/Folder/FolderEventStore.h"
#include "Platform/Files/PosixFileLocks.h"

#include <chrono>
#include <expected>
#include <memory>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Companion {

namespace {

// The person has the answer already. Not so far down that one who does wait for the turn waits for ever.
void giveWayToOthers() {
    constexpr int lower = 10;
    [[maybe_unused]] auto const now = ::nice(lower);
}

// One at a time looks at every file, so that many who ask at once do not all look, and none writes down what
// was true before another looked. Where no lock can be had, one looks without.
std::expected<std::unique_ptr<Platform::FileLocks::Held>, std::error_code>
takeTurn(Composition::LiveServices& services, std::chrono::milliseconds patience) {
    auto const places = services.calendarPlaces();
    if (!places || !places->indexDirectory) return nullptr;
    return Platform::PosixFileLocks().take(*places->indexDirectory / "refresh.lock", patience);
}

ExitCode refresh(Invocation const& invocation) {
    using namespace std::chrono_literals;
    auto const services = liveServices(invocation);
    bool const isUnseen = invocation.values.has(refreshInBackground);
    requiredConfiguration(*services);
    auto const store = services->calendarFolders();
    if (store->authorizationStatus() != Platform::EKAuthorizationStatus::fullAccess)
        throw CommandError::failed(whyNoAccess(*services, Texts::accessIsMissing()));
    auto const turn = takeTurn(*services, isUnseen ? 0ms : 60s);
    bool const isAnotherAtIt = !turn && turn.error() == std::errc::timed_out;
    if (isAnotherAtIt && isUnseen) return ExitCode::done;
    if (isUnseen) giveWayToOthers();
    auto const result = store->refresh();
    if (!result.isWhole) throw CommandError::failed(Texts::calendarsNotWhollyRefreshed());
    if (!isUnseen) invocation.console.confirmLine(Texts::calendarsRefreshed(result.filesRead));
    return ExitCode::done;
}

} // namespace

// Here, where the quick program has it too.
Command sourcesGroup() {
    return {
        .path = "sources",
        .summary = Texts::text("sources-summary"),
        .description = Texts::text("sources-description"),
    };
}

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
