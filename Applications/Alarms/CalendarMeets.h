#pragma once

#include "Applications/Alarms/AlarmService.h"
#include "WidgetExtension/ScheduleWidgetServices.h"

namespace Alarms {

/// Asks for the meets of the days that lie within the service's horizon of now, before and after it, also
/// those of calendars that the widget hides. None while the calendars of this computer are switched off. The
/// tasks run on the services' executor.
std::function<void(MeetsAnswer)> askingCalendars(WidgetExtension::ScheduleWidgetServices services);

} // namespace Alarms
