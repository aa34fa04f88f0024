#pragma once

#include "Applications/Companion/Invocation.h"
#include "Applications/Composition/LiveServices.h"
#include "Platform/WidgetHost/WidgetFamily.h"
#include "WidgetExtension/ScheduleWidgetView.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace Companion {

/// What is printed of a day.
struct FollowedPage {
    std::string text;
    std::string essence; ///< While it stays the same, nothing has changed that is worth a new page.
};

/// Prints what `write` makes of a day, and again at each change of that, until a signal ends it or the reader
/// goes away. Throws CommandError with ExitCode::failed when standard output cannot be written otherwise.
void printFollowing(Invocation const& invocation, Composition::LiveServices& live,
                    std::optional<std::int64_t> offset, Platform::WidgetFamily family,
                    std::function<FollowedPage(WidgetExtension::ScheduleWidgetView const&)> const& write);

} // namespace Companion
