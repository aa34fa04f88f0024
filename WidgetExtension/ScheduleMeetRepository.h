#pragma once

#include "Foundation/Calendar.h"
#include "Meetings/MeetRepository.h"
#include "WidgetExtension/ScheduleWidgetServices.h"

#include <memory>

namespace WidgetExtension {

/// The widget's source of meets: the calendar store as far as the day buttons reach, without the hidden
/// calendars. Throws what opening the store throws.
std::shared_ptr<Meetings::MeetRepository> scheduleMeetRepository(ScheduleWidgetServices const& services,
                                                                 Foundation::Calendar const& calendar);

} // namespace WidgetExtension
