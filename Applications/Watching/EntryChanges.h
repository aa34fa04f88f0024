#pragma once

#include "Foundation/Calendar.h"
#include "Foundation/Date.h"
#include "WidgetExtension/ScheduleWidgetEntry.h"

namespace Watching {

/// The first instant after `now` at which the face of `entry` has to change by itself: the end of a timed
/// meet on today's page, else the beginning of the next day.
Foundation::Date nextChange(WidgetExtension::ScheduleWidgetEntry const& entry, Foundation::Date now,
                            Foundation::Calendar const& calendar);

} // namespace Watching
