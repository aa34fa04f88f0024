#pragma once

#include "Applications/Composition/LiveServices.h"
#include "Platform/WidgetHost/MainLoop.h"
#include "Platform/WidgetHost/WidgetFamily.h"
#include "WidgetExtension/ScheduleWidgetView.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace Companion {

/// Which day is followed, and who is told.
struct FollowedDay {
    /// The days from today, as though that were stored; absent for the day that the widget stands on. Not
    /// beyond the reach of the widget's buttons.
    std::optional<std::int64_t> offset;
    Platform::WidgetFamily family;
    /// The day as it looks from now on. Called on the thread of `run`.
    std::function<void(WidgetExtension::ScheduleWidgetView const&)> show;
    /// Whether what is shown also changes when a meet begins, not only when one ends.
    bool changesAtStarts;
};

/// Shows a day and stays: the host of the widget drives it, so it follows the calendars, the settings,
/// presses and reload requests from elsewhere, the clock and its zone as the widget does, and sleeps in
/// between.
class DayFollower final {
public:
    /// `live` outlives this object. One at a time in a process.
    DayFollower(Composition::LiveServices& live, FollowedDay day);
    DayFollower(DayFollower const&) = delete;
    DayFollower& operator=(DayFollower const&) = delete;
    ~DayFollower();

    /// Returns after `quit`, or when the process is asked to end by SIGINT, SIGTERM or SIGHUP.
    void run();
    void quit();

    /// Shows the day once more as it is known.
    void showAgain();

    /// Asks for the day anew.
    void reload();

private:
    struct State;
    std::unique_ptr<State> state;
};

} // namespace Companion
