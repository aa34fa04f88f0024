#include "Platform/EventStore/ICalendar/SeriesTimes.h"

#include "Platform/EventStore/ICalendar/CivilDays.h"
#include "Platform/EventStore/ICalendar/ValueParser.h"

#include <utility>

namespace Platform::ICalendar {

SeriesTimes::SeriesTimes(ClockedEvent const& master, EventZone const& viewer)
    : master(master),
      viewer(viewer),
      own(WritingClock::of(master.component->start, master, viewer)) {}

std::int64_t SeriesTimes::local(CalendarTime const& time, ClockedEvent const& owner) const {
    auto const midnight = time.localSeconds - floorModulo(time.localSeconds, secondsPerDay);
    if (isAllDay()) return midnight;
    auto const timeOfDay = floorModulo(master.component->start.localSeconds, secondsPerDay);
    if (time.form == TimeForm::date) return midnight + timeOfDay;
    auto const written = WritingClock::of(time, owner, viewer);
    // On the same clock the time stands as it is; through the instant one in a gap would come out moved.
    bool const isSameClock = written.form == own.form && written.zone == own.zone;
    if (isSameClock || time.form == TimeForm::floating) return time.localSeconds;
    return own.rules.local(owner.instant(time, viewer));
}

std::optional<std::int64_t> SeriesTimes::localOfKey(std::string_view key) const {
    auto const time = parseTime(key, {});
    if (!time) return std::nullopt;
    bool const isDate = time->form == TimeForm::date;
    if (isDate != isAllDay()) return std::nullopt;
    return time->localSeconds;
}

TimeMapping TimeMapping::taking(std::int64_t local, WritingClock from, std::int64_t target, WritingClock to) {
    return {.from = std::move(from), .to = std::move(to), .shift = target - local};
}

bool TimeMapping::isIdentity() const {
    return shift == 0 && from.form == to.form && from.zone == to.zone;
}

std::int64_t TimeMapping::operator()(std::int64_t local) const {
    auto const moved = local + shift;
    return to.form == TimeForm::date ? moved - floorModulo(moved, secondsPerDay) : moved;
}

WrittenTime TimeMapping::written(std::int64_t local) const {
    return {.form = to.form, .zone = to.zone, .localSeconds = (*this)(local)};
}

} // namespace Platform::ICalendar
