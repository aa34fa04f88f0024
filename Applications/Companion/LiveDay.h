#pragma once

#include "Applications/Companion/Invocation.h"
#include "Platform/WidgetHost/WidgetFamily.h"

namespace Companion {

/// Shows the day that the widget stands on in the whole terminal and follows it, until a key or a signal ends
/// it. The keys move the widget, as `next`, `previous` and `today` do. Throws CommandError with
/// ExitCode::wrongUse where standard input and output are no terminal.
ExitCode showLiveDay(Invocation const& invocation, Platform::WidgetFamily family);

} // namespace Companion
