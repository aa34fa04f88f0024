#include "Platform/EventStore/ICalendar/OccurrenceTimes.h"

#include "Platform/EventStore/ICalendar/CivilDays.h"

#include <cmath>

namespace Platform::ICalendar {
namespace {

std::int64_t wholeSeconds(Foundation::Date date) {
    return static_cast<std::int64_t>(std::floor(date.secondsSince1970));
}

std::string textIn(TimeForm form, std::int64_t seconds) {
    return CalendarTime{.form = form, .zone = 0, .localSeconds = seconds}.text();
}

} // namespace

EventTimes timesOf(Occurrence const& occurrence) {
    if (!occurrence.isAllDay) {
        return {
            .isAllDay = false, .start = wholeSeconds(occurrence.start), .end = wholeSeconds(occurrence.end)};
    }
    return {.isAllDay = true,
            .start = occurrence.firstDay.time_since_epoch().count() * secondsPerDay,
            .end = occurrence.endDay.time_since_epoch().count() * secondsPerDay};
}

std::string untilAt(std::int64_t local, WritingClock const& clock) {
    bool const isLocal = clock.form == TimeForm::date || clock.form == TimeForm::floating;
    if (isLocal) return textIn(clock.form, local);
    return textIn(TimeForm::utc, clock.rules.instant(local));
}

std::string untilBefore(std::int64_t local, WritingClock const& clock) {
    if (clock.form == TimeForm::date) return textIn(clock.form, local - secondsPerDay);
    if (clock.form == TimeForm::floating) return textIn(clock.form, local - 1);
    return textIn(TimeForm::utc, clock.rules.instant(local) - 1);
}

} // namespace Platform::ICalendar
