#pragma once

#include "Platform/EventStore/ICalendar/Series.h"
#include "Platform/EventStore/ICalendar/WritingClock.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace Platform::ICalendar {

/// What the times of a series' exceptions mean on the clock of its master.
class SeriesTimes {
public:
    /// Both must outlive this.
    SeriesTimes(ClockedEvent const& master, EventZone const& viewer);

    /// A time of `owner` on the master's clock; a bare day of a timed series at the series' own time.
    [[nodiscard]] std::int64_t local(CalendarTime const& time, ClockedEvent const& owner) const;

    /// The time that an occurrence key names on the master's clock.
    [[nodiscard]] std::optional<std::int64_t> localOfKey(std::string_view key) const;

    /// The master's clock.
    [[nodiscard]] WritingClock const& clock() const { return own; }
    [[nodiscard]] bool isAllDay() const { return master.component->isAllDay(); }

private:
    ClockedEvent const& master;
    EventZone const& viewer;
    WritingClock own;
};

/// How the times of a series become those of a series that starts at another time, on whatever clock. All of
/// them move alike on the clock's face, as what a rule yields does, also where summer time begins on one
/// clock alone.
struct TimeMapping {
    WritingClock from;
    WritingClock to;
    std::int64_t shift; ///< Seconds from what the one clock shows to what the other does.

    /// The mapping that takes `local` on the clock `from` to `target` on the clock `to`.
    static TimeMapping taking(std::int64_t local, WritingClock from, std::int64_t target, WritingClock to);

    [[nodiscard]] bool isIdentity() const;

    /// On the new clock; a day's midnight when that knows only days.
    [[nodiscard]] std::int64_t operator()(std::int64_t local) const;
    [[nodiscard]] WrittenTime written(std::int64_t local) const;
};

} // namespace Platform::ICalendar
