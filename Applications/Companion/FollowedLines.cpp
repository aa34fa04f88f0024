#include "Applications/Companion/FollowedLines.h"

#include "Applications/Companion/DayFollower.h"
#include "Platform/WidgetHost/GLibSource.h"

#include <exception>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace Companion {

namespace {

bool isReaderGone() {
    pollfd output{.fd = STDOUT_FILENO, .events = 0, .revents = 0};
    return ::poll(&output, 1, 0) > 0 && (output.revents & (POLLERR | POLLHUP)) != 0;
}

} // namespace

void printFollowing(Invocation const& invocation, Composition::LiveServices& live,
                    std::optional<std::int64_t> offset, Platform::WidgetFamily family,
                    std::function<FollowedPage(WidgetExtension::ScheduleWidgetView const&)> const& write) {
    std::optional<std::string> printed;
    std::exception_ptr failure;
    DayFollower* following = nullptr;
    auto const print = [&](WidgetExtension::ScheduleWidgetView const& view) {
        try {
            auto page = write(view);
            if (page.essence == printed) return;
            printed = std::move(page.essence);
            invocation.console.write(page.text);
        } catch (...) {
            // The loop's frames are no place to pass through. Without a reader there is nothing left to do,
            // and that is no failure.
            if (!isReaderGone()) failure = std::current_exception();
            following->quit();
        }
    };
    DayFollower follower(live, {.offset = offset, .family = family, .show = print, .changesAtStarts = true});
    following = &follower;
    // A reader that goes away while nothing is printed would be noticed only at the next change.
    auto const readerGone = Platform::GLibSource::whenHungUp(STDOUT_FILENO, [&follower] { follower.quit(); });
    follower.run();
    if (failure) std::rethrow_exception(failure);
}

} // namespace Companion
