#pragma once

#include "Foundation/TimeZone.h"
#include "Platform/EventStore/EKEvent.h"
#include "Platform/EventStore/ICalendar/EventChange.h"
#include "Platform/EventStore/ICalendar/Occurrence.h"
#include "Platform/EventStore/ICalendar/RuleText.h"

#include <optional>
#include <string>
#include <vector>

namespace Platform {

/// Why a record cannot be written at all, as the end of a sentence; absent when it can.
std::optional<std::string> whyNotWritable(EKEvent const& event);

/// What a record says otherwise than the occurrence that it stands for says now. What nobody changed is not
/// in it, so that it stays as it was written. `rules` are those of the series, as they are written.
ICalendar::EventChange differenceBetween(EKEvent const& event, ICalendar::Occurrence const& stored,
                                         std::vector<ICalendar::RuleText> const& rules,
                                         Foundation::TimeZone const& viewer);

/// All that a record of a new event says.
ICalendar::EventChange contentOf(EKEvent const& event, Foundation::TimeZone const& viewer);

} // namespace Platform
