#pragma once

#include "Platform/EventStore/ICalendar/FileClocks.h"

namespace Platform::ICalendar {

/// Whether two events pass for one: they have the same title and begin at the same moment. Programs that pass
/// events on write the rest in ways of their own.
bool areAlike(ClockedEvent const& left, ClockedEvent const& right);

} // namespace Platform::ICalendar
