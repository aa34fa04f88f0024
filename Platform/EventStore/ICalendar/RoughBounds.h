#pragma once

#include "Platform/EventStore/ICalendar/EventComponent.h"

#include <cstdint>

namespace Platform::ICalendar {

/// Between which instants an event can happen at all, in UTC seconds. Two days too wide at each end, so that
/// it holds whatever clocks its times are read on: no time zone, neither the file's nor the viewer's, bears
/// on it.
struct RoughBounds {
    std::int64_t first;
    std::int64_t last; ///< The end of time for an endless rule.

    /// False when the event certainly has nothing within [from, to].
    [[nodiscard]] bool touch(std::int64_t from, std::int64_t to) const { return first <= to && last >= from; }
    void include(RoughBounds const& other);

    friend bool operator==(RoughBounds const&, RoughBounds const&) = default;
};

/// How far a rule with a COUNT is taken to reach.
enum class CountReach : std::uint8_t {
    unknown,   ///< To the end of time, which costs nothing to say.
    workedOut, ///< To where its count ends, as far as the expander follows it.
};

/// What one component adds to its series: all occurrences of a master, of an override its own, and with
/// RANGE=THISANDFUTURE all that it moves.
RoughBounds roughBounds(EventComponent const& event, CountReach reach);

/// How long an event lasts, in seconds, give or take the difference of two clocks.
std::int64_t roughLength(EventComponent const& event);

/// The same of a recurrence date; `otherwise` when it brings no end of its own.
std::int64_t roughLength(RecurrenceDate const& date, std::int64_t otherwise);

/// What following one rule's COUNT may cost.
inline constexpr std::int64_t mostCountSteps = 250'000;

} // namespace Platform::ICalendar
