#pragma once

#include "Platform/EventStore/ICalendar/FileClocks.h"

namespace Platform::ICalendar {

/// Whether two events are one as far as a person could see, whenever and in whichever order they were
/// written: they happen at the same times, and their texts stand in the same bytes.
bool sayTheSame(ClockedEvent const& left, ClockedEvent const& right);

} // namespace Platform::ICalendar
