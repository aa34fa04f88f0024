#pragma once

#include "Foundation/TimeZone.h"
#include "Platform/EventStore/ICalendar/CalendarFile.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Platform::ICalendar {

/// A VTIMEZONE (RFC 5545 §3.6.5) that tells programs without the system's zones how the clock of `zone` runs
/// from `firstYear` on. Yearly changes are given as rules, all others one by one for forty years.
std::string timeZoneComponent(Foundation::TimeZone const& zone, std::int32_t firstYear,
                              std::string_view lineBreak);

/// What explains the zones that events name. Those of the system need nobody.
struct ZoneSources {
    CalendarFile const* target =
        nullptr; ///< Where the events go; what that has or gets by without is not added.
    CalendarFile const* origin = nullptr;                      ///< Where they come from.
    std::optional<Foundation::TimeZone> viewer = std::nullopt; ///< May have a name that is known here alone.
};

/// The VTIMEZONEs that `components` name and the target does not have: those of the origin as they stand
/// there, else made from the system's zones or the viewer's; nothing for a name that none of them explains.
std::string missingTimeZones(std::string_view components, ZoneSources const& sources,
                             std::string_view lineBreak);

} // namespace Platform::ICalendar
