#pragma once

#include "Foundation/TimeZone.h"
#include "Platform/EventStore/ICalendar/CalendarFile.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace Platform::ICalendar {

/// A VTIMEZONE (RFC 5545 §3.6.5) that tells programs without the system's zones how the clock of `zone` runs
/// from `firstYear` on. Yearly changes are given as rules, all others one by one for forty years.
std::string timeZoneComponent(Foundation::TimeZone const& zone, std::int32_t firstYear,
                              std::string_view lineBreak);

/// The VTIMEZONEs that `components` name and `target` does not have: those of `origin` as they stand there,
/// else made from the system's zones; nothing for a name that neither explains.
std::string missingTimeZones(std::string_view components, CalendarFile const* target,
                             CalendarFile const* origin, std::string_view lineBreak);

} // namespace Platform::ICalendar
