#pragma once

#include "Platform/EventStore/ICalendar/RecurrenceRule.h"

#include <cstdint>
#include <vector>

namespace Platform::ICalendar {

/// The same question answered the slow way: every unit from DTSTART on is looked at, one after another, with
/// the rule's definition in hand. Shares no code with the expander.
///
/// All times of `rule` on the wall clock, from `start` to `last`, DTSTART among them, COUNT and a local UNTIL
/// applied.
std::vector<std::int64_t> walk(RecurrenceRule const& rule, std::int64_t start, std::int64_t last);

} // namespace Platform::ICalendar
