#pragma once

#include "Foundation/JSON.h"
#include "WidgetExtension/ScheduleWidgetView.h"

namespace Companion {

/// A day for a status bar, in the form that Waybar reads from a custom module: `text` is the meet that runs
/// or comes next, or what the face says in its place, `tooltip` the whole face, both escaped as Pango markup,
/// and `class` a word to style them by: "now" while a meet runs, "next" before one, "free" when the page has
/// no card left, "day" on another day's page, "denied" without access. There is no percentage.
Foundation::JSON::Object statusBarLine(WidgetExtension::ScheduleWidgetView const& view);

} // namespace Companion
