#include "Platform/EventStore/ICalendar/FileClocks.h"

#include "Platform/EventStore/ICalendar/CivilDays.h"

#include <algorithm>

namespace Platform::ICalendar {

FileClocks::FileClocks(CalendarFile const& calendarFile, ZoneCatalog& catalog) : file(&calendarFile) {
    zones.reserve(calendarFile.zoneNames.size());
    FileZones own(calendarFile);
    for (auto const& name : calendarFile.zoneNames)
        zones.push_back(catalog.zone(name, own));
}

EventZone const& FileClocks::clock(CalendarTime const& time, EventZone const& viewer) const {
    static EventZone const utc = EventZone::utc();
    switch (time.form) {
    case TimeForm::utc: return utc;
    case TimeForm::zoned: return zones[time.zone] ? *zones[time.zone] : viewer;
    case TimeForm::date:
    case TimeForm::floating: break;
    }
    return viewer;
}

CalendarDuration ClockedEvent::length(EventZone const& viewer) const {
    auto const& event = *component;
    if (event.isAllDay()) {
        std::int64_t days = 0;
        if (event.end) days = (event.end->localSeconds - event.start.localSeconds) / secondsPerDay;
        if (event.duration) days = event.duration->days + event.duration->seconds / secondsPerDay;
        return {.days = std::max<std::int64_t>(days, 1), .seconds = 0};
    }
    if (event.duration) return *event.duration;
    if (!event.end) return {.days = 0, .seconds = 0};
    // Exact, whatever the clocks do on the days of later occurrences.
    auto const seconds = instant(*event.end, viewer) - instant(event.start, viewer);
    return {.days = 0, .seconds = std::max<std::int64_t>(seconds, 0)};
}

std::int64_t endInstant(std::int64_t startLocal, std::int64_t startInstant, CalendarDuration length,
                        EventZone const& clock) {
    auto const afterDays =
        length.days == 0 ? startInstant : clock.instant(startLocal + length.days * secondsPerDay);
    return afterDays + length.seconds;
}

} // namespace Platform::ICalendar
