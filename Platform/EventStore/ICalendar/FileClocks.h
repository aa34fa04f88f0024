#pragma once

#include "Platform/EventStore/ICalendar/CalendarFile.h"
#include "Platform/EventStore/ICalendar/EventZone.h"
#include "Platform/EventStore/ICalendar/ZoneCatalog.h"

#include <optional>
#include <vector>

namespace Platform::ICalendar {

/// A file with the clocks that its TZIDs mean.
struct FileClocks {
    CalendarFile const* file;
    std::vector<std::optional<EventZone>> zones; ///< As `CalendarFile::zoneNames`; absent: the viewer's.

    FileClocks(CalendarFile const& calendarFile, ZoneCatalog& catalog);

    /// The clock that a time of this file is read on; dates and floating times are on the viewer's.
    [[nodiscard]] EventZone const& clock(CalendarTime const& time, EventZone const& viewer) const;
};

/// An event with the file that explains its times.
struct ClockedEvent {
    EventComponent const* component;
    FileClocks const* clocks;

    [[nodiscard]] EventZone const& clock(EventZone const& viewer) const {
        return clocks->clock(component->start, viewer);
    }

    /// UTC seconds of one of the event's times.
    [[nodiscard]] std::int64_t instant(CalendarTime const& time, EventZone const& viewer) const {
        return clocks->clock(time, viewer).instant(time.localSeconds);
    }

    /// How long it lasts: whole days for an all-day event, and at least one.
    [[nodiscard]] CalendarDuration length(EventZone const& viewer) const;
};

/// The end of something of that length, in UTC seconds.
std::int64_t endInstant(std::int64_t startLocal, std::int64_t startInstant, CalendarDuration length,
                        EventZone const& clock);

} // namespace Platform::ICalendar
