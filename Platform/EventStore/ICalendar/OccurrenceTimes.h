#pragma once

#include "Platform/EventStore/ICalendar/EventChange.h"
#include "Platform/EventStore/ICalendar/Occurrence.h"
#include "Platform/EventStore/ICalendar/WritingClock.h"

#include <cstdint>
#include <string>

namespace Platform::ICalendar {

/// When an occurrence is, in whole seconds.
EventTimes timesOf(Occurrence const& occurrence);

/// The UNTIL of a rule whose last time on `clock` is `local`: a DATE for days, local for a floating start,
/// else in UTC (RFC 5545 §3.3.10).
std::string untilAt(std::int64_t local, WritingClock const& clock);

/// The UNTIL of a rule that ends before `local`.
std::string untilBefore(std::int64_t local, WritingClock const& clock);

} // namespace Platform::ICalendar
