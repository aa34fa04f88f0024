#include "Platform/EventStore/ICalendar/WritingClock.h"

#include "Platform/EventStore/ICalendar/CivilDays.h"
#include "Platform/EventStore/ICalendar/ZoneCatalog.h"

namespace Platform::ICalendar {

WritingClock WritingClock::ofViewer(Foundation::TimeZone const& viewer) {
    // A rule text or an offset is no name that another program would know.
    if (!ZoneCatalog::systemZone(viewer.identifier()))
        return {.form = TimeForm::utc, .zone = {}, .rules = EventZone::utc()};
    return ofViewersDays(viewer);
}

WritingClock WritingClock::ofViewersDays(Foundation::TimeZone const& viewer) {
    auto const& name = viewer.identifier();
    bool const isPlainUTC = name == "UTC" || name == "Etc/UTC" || name == "GMT";
    if (isPlainUTC) return {.form = TimeForm::utc, .zone = {}, .rules = EventZone::utc()};
    return {.form = TimeForm::zoned, .zone = name, .rules = EventZone(viewer)};
}

WritingClock WritingClock::of(CalendarTime const& time, ClockedEvent const& event, EventZone const& viewer) {
    return {.form = time.form,
            .zone = time.form == TimeForm::zoned ? event.clocks->file->zoneNames[time.zone] : std::string(),
            .rules = event.clocks->clock(time, viewer)};
}

bool WritingClock::countsDaysAs(WritingClock const& other, std::int64_t utcSeconds) const {
    // Their own days are on no clock, or on the viewer's.
    if (form == TimeForm::date || form == TimeForm::floating) return true;
    auto const start = rules.local(utcSeconds);
    // No two summer times begin or end less than a week apart, but at once.
    constexpr std::int64_t daysOfAYear = 366;
    for (std::int64_t day = 0; day <= daysOfAYear; day += 7) {
        auto const local = start + day * secondsPerDay;
        auto const otherLocal = other.rules.local(rules.instant(local));
        if (floorDivide(local, secondsPerDay) != floorDivide(otherLocal, secondsPerDay)) return false;
    }
    return true;
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
