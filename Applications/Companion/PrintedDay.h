#pragma once

#include "Applications/Companion/CalendarRefresh.h"
#include "Applications/Companion/DayRequest.h"
#include "Applications/Companion/Invocation.h"
#include "Applications/Companion/ShownDay.h"
#include "Applications/Composition/LiveServices.h"
#include "Foundation/TaskLoop.h"
#include "WidgetExtension/ScheduleWidgetServices.h"

#include <memory>

/// A day as text, as JSON, or for a status bar.
namespace Companion {

/// A day that was asked for, with what it was asked of.
struct AskedDay {
    std::unique_ptr<Composition::LiveServices> live;
    std::unique_ptr<Foundation::TaskLoop> loop;
    WidgetExtension::ScheduleWidgetServices services;
    ShownDay day;
    Platform::ColorScheme scheme; ///< The one asked for, otherwise light.
    /// Has the calendar files looked at that the day was answered without.
    std::shared_ptr<CalendarRefresh const> refresh;
};

/// Asks for the day once. Throws as `shownDay` does.
AskedDay askedDay(Invocation const& invocation, DayRequest const& request);

/// Writes what was asked for in words to standard output, and to standard error why the day is empty where it
/// cannot tell itself.
void printDay(Invocation const& invocation, DayRequest const& request, AskedDay& asked);

/// Shows a day once, or follows it, in all the ways that need no large library: those for which
/// `needsWholeDay` is false.
ExitCode showDay(Invocation const& invocation);

} // namespace Companion
