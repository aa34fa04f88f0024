#pragma once

#include "Applications/Companion/CommandLine.h"
#include "Foundation/TaskLoop.h"
#include "Platform/Appearance/ColorScheme.h"
#include "Platform/Face/FaceLayout.h"
#include "Platform/WidgetHost/Timeline.h"
#include "WidgetExtension/ScheduleWidgetEntry.h"
#include "WidgetExtension/ScheduleWidgetServices.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

namespace Companion {

/// The day that the options `--offset` and `--day` name; without them the one that the widget stands on.
struct DayChoice {
    std::optional<std::int64_t> offset;
    std::optional<std::chrono::local_days> day;
};

/// Those two options, then the others.
std::vector<CommandOption> withDayChoice(std::vector<CommandOption> others);

/// Throws CommandError with ExitCode::wrongUse for a value that names no day.
DayChoice dayChoice(ArgumentValues const& values);

/// The days from today; absent when nothing was chosen.
std::optional<std::int64_t> offsetOf(DayChoice const& choice,
                                     WidgetExtension::ScheduleWidgetServices const& services);

/// A day as the widget would show it.
struct ShownDay {
    WidgetExtension::ScheduleWidgetEntry entry;
    Platform::TimelineReloadPolicy policy;
};

/// Asks the widget's own provider, so that a command shows what the widget shows. With an `offset` it is
/// asked as though that were stored; nothing is. An offset beyond the reach of the widget's buttons is
/// asked about from the day itself, since the provider fetches no further than they reach. The provider's
/// tasks run on `loop`, which the services' executor belongs to.
/// Throws CommandError with ExitCode::wrongUse when the calendar has no such day.
ShownDay shownDay(WidgetExtension::ScheduleWidgetServices const& services, Foundation::TaskLoop& loop,
                  std::optional<std::int64_t> offset);

/// The same day with every meet that starts on it. The widget itself reads as far as its buttons lead, to the
/// second of this moment, so that on its outermost days a part is missing.
ShownDay completeDay(WidgetExtension::ScheduleWidgetServices const& services, Foundation::TaskLoop& loop,
                     std::optional<std::int64_t> offset);

/// The face of a day, as the widget's own view lays it out.
Platform::FaceLayout faceOf(WidgetExtension::ScheduleWidgetServices const& services, ShownDay const& day,
                            Platform::WidgetFamily family, Platform::ColorScheme scheme);

} // namespace Companion
