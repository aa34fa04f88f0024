#pragma once

#include "Foundation/Calendar.h"
#include "Meetings/MeetEntity.h"
#include "Platform/HTMLReader/HTMLReader.h"
#include "Platform/WidgetHost/MainExecutor.h"

#include <string>
#include <vector>

namespace WidgetExtension {

/// What one wants to know of a meet at a glance, a line each: its whole title, its times on the calendar's
/// clocks unless it lasts whole days, its place, and the first meaningful line of its description, cut where
/// it is overlong. Lines that would be blank are left out. The texts are the calendar's own: whoever shows
/// them makes them harmless.
std::vector<std::string> meetSummaryLines(Meetings::MeetEntity const& meeting,
                                          Foundation::Calendar const& calendar,
                                          Platform::HTMLReader const& reader,
                                          Platform::MainExecutor& mainExecutor);

} // namespace WidgetExtension
