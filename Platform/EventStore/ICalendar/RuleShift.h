#pragma once

#include "Platform/EventStore/ICalendar/RecurrenceRule.h"
#include "Platform/EventStore/ICalendar/RuleText.h"

#include <cstdint>

namespace Platform::ICalendar {

/// A time of a series, in local seconds, and what it becomes.
struct MovedTime {
    std::int64_t before;
    std::int64_t after;
};

/// Rewrites a rule so that what it yields moves along with the start of its series, and with `occurrence`,
/// which is one that it yields: the weekdays of a weekly rule by as many days, the third Monday of a month to
/// the third Tuesday. `rule` is what `text` says. COUNT and UNTIL are the caller's. False when the rule has
/// no such shape; `text` is then of no use.
bool moveRule(RuleText& text, RecurrenceRule const& rule, MovedTime start, MovedTime occurrence,
              bool becomesAllDay);

} // namespace Platform::ICalendar
