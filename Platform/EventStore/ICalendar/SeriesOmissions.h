#pragma once

#include "Foundation/Date.h"
#include "Foundation/TimeZone.h"
#include "Platform/EventStore/ICalendar/CalendarFile.h"
#include "Platform/EventStore/ICalendar/Omission.h"
#include "Platform/EventStore/ICalendar/ZoneCatalog.h"

#include <memory>
#include <vector>

namespace Platform::ICalendar {

/// What would happen in one calendar, whose files these are, between `from` and `to`, were it not excluded,
/// cancelled or moved; series by series. The answer points into the files.
std::vector<Omission> omissions(std::vector<std::shared_ptr<CalendarFile const>> const& files,
                                ZoneCatalog& zones, Foundation::Date from, Foundation::Date to,
                                Foundation::TimeZone const& viewer, ExpansionLimits const& limits = {});

} // namespace Platform::ICalendar
