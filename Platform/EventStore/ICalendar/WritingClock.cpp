#include "Platform/EventStore/ICalendar/WritingClock.h"

#include "Platform/EventStore/ICalendar/ZoneCatalog.h"

namespace Platform::ICalendar {

WritingClock WritingClock::ofViewer(Foundation::TimeZone const& viewer) {
    auto const& name = viewer.identifier();
    bool const isPlainUTC = name == "UTC" || name == "Etc/UTC" || name == "GMT";
    // A rule text or an offset is no name that another program would know.
    if (isPlainUTC || !ZoneCatalog::systemZone(name))
        return {.form = TimeForm::utc, .zone = {}, .rules = EventZone::utc()};
    return {.form = TimeForm::zoned, .zone = name, .rules = EventZone(viewer)};
}

WritingClock WritingClock::of(CalendarTime const& time, ClockedEvent const& event, EventZone const& viewer) {
    return {.form = time.form,
            .zone = time.form == TimeForm::zoned ? event.clocks->file->zoneNames[time.zone] : std::string(),
            .rules = event.clocks->clock(time, viewer)};
}

WrittenTime WritingClock::at(std::int64_t utcSeconds) const {
    return {.form = form, .zone = zone, .localSeconds = rules.local(utcSeconds)};
}

WrittenTime WritingClock::exactlyAt(std::int64_t utcSeconds) const {
    auto time = at(utcSeconds);
    if (rules.instant(time.localSeconds) == utcSeconds) return time;
    return {.form = TimeForm::utc, .zone = {}, .localSeconds = utcSeconds};
}

} // namespace Platform::ICalendar
