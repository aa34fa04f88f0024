#pragma once

#include "Applications/Companion/BackendRun.h"
#include "Applications/Companion/ShownDay.h"

namespace Companion {

/// `day` with the meets of the calendars and of the backend together, earliest first. A source that fails is
/// left out, and standard error says so: a backend that cannot be reached hides no calendar. Throws
/// CommandError when a signal ended it.
ShownDay withBackend(Invocation const& invocation, Composition::LiveServices& live,
                     WidgetExtension::ScheduleWidgetServices const& services, ShownDay day,
                     OutputReader reader);

} // namespace Companion
