#pragma once

#include "Foundation/TimeZone.h"
#include "Platform/EventStore/ICalendar/CustomTimeZone.h"

#include <cstdint>
#include <memory>
#include <variant>

namespace Platform::ICalendar {

/// The clock that an event's times are read on. A value; copies share the rules.
class EventZone {
public:
    static EventZone utc();
    explicit EventZone(Foundation::TimeZone zone);
    explicit EventZone(std::shared_ptr<CustomTimeZone const> zone);

    /// UTC seconds of a wall-clock time: the first pass of a repeated one, a skipped one moved forward by
    /// the gap.
    [[nodiscard]] std::int64_t instant(std::int64_t localSeconds) const;

    /// What the clock shows at an instant.
    [[nodiscard]] std::int64_t local(std::int64_t utcSeconds) const;

private:
    using Rules = std::variant<std::monostate, Foundation::TimeZone, std::shared_ptr<CustomTimeZone const>>;
    explicit EventZone(Rules rules);
    Rules rules; // Without an alternative it is UTC.
};

} // namespace Platform::ICalendar
