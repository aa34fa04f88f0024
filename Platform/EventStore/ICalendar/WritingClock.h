#pragma once

#include "Foundation/TimeZone.h"
#include "Platform/EventStore/ICalendar/EventZone.h"
#include "Platform/EventStore/ICalendar/FileClocks.h"
#include "Platform/EventStore/ICalendar/WrittenTime.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace Platform::ICalendar {

/// A clock that times are written on: its form, its name in the file and its rules.
struct WritingClock {
    TimeForm form;
    std::string zone; ///< Its TZID; empty unless `zoned`.
    EventZone rules;

    /// For events of the viewer's own: by the name of the zone if other programs can know it, else in UTC.
    static WritingClock ofViewer(Foundation::TimeZone const& viewer);

    /// For events that repeat on days of the viewer's: by the name of the zone, which a VTIMEZONE of ours
    /// explains where no other program can know it.
    static WritingClock ofViewersDays(Foundation::TimeZone const& viewer);

    /// The one that a time of `event` is written on.
    static WritingClock of(CalendarTime const& time, ClockedEvent const& event, EventZone const& viewer);

    /// Whether an event that begins at `utcSeconds` and goes on at the same time of this clock has the same
    /// days on the other one, all the year round.
    [[nodiscard]] bool countsDaysAs(WritingClock const& other, std::int64_t utcSeconds) const;

    /// What the clock shows at an instant.
    [[nodiscard]] WrittenTime at(std::int64_t utcSeconds) const;

    /// The same, but in UTC where the clock shows that time twice and means the other pass.
    [[nodiscard]] WrittenTime exactlyAt(std::int64_t utcSeconds) const;
};

} // namespace Platform::ICalendar
