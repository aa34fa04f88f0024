#pragma once

#include "Platform/EventStore/ICalendar/RecurrenceRule.h"
#include "Platform/EventStore/ICalendar/RuleText.h"

#include <cstdint>

namespace Platform::ICalendar {

/// Rewrites a rule so that what it yields from one start on moves along with that start, whose local seconds
/// are given before and after: the weekdays of a weekly rule by as many days, the third Monday of a month to
/// the third Tuesday. `rule` is what `text` says. COUNT and UNTIL are the caller's. False when the rule has
/// no such shape; `text` is then of no use.
bool moveRule(RuleText& text, RecurrenceRule const& rule, std::int64_t before, std::int64_t after,
              bool becomesAllDay);

} // namespace Platform::ICalendar
