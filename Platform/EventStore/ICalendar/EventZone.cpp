#include "Platform/EventStore/ICalendar/EventZone.h"

#include <utility>

namespace Platform::ICalendar {

EventZone EventZone::utc() {
    return EventZone(Rules{});
}

EventZone::EventZone(Foundation::TimeZone zone) : rules(std::move(zone)) {}

EventZone::EventZone(std::shared_ptr<CustomTimeZone const> zone) : rules(std::move(zone)) {}

EventZone::EventZone(Rules rules) : rules(std::move(rules)) {}

std::int64_t EventZone::instant(std::int64_t localSeconds) const {
    if (auto const* zone = std::get_if<Foundation::TimeZone>(&rules))
        return zone->resolveLocal(localSeconds).first;
    if (auto const* zone = std::get_if<std::shared_ptr<CustomTimeZone const>>(&rules)) {
        return (*zone)->instant(localSeconds);
    }
    return localSeconds;
}

std::int64_t EventZone::local(std::int64_t utcSeconds) const {
    if (auto const* zone = std::get_if<Foundation::TimeZone>(&rules))
        return utcSeconds + zone->secondsFromUTC(utcSeconds);
    if (auto const* zone = std::get_if<std::shared_ptr<CustomTimeZone const>>(&rules)) {
        return utcSeconds + (*zone)->secondsFromUTC(utcSeconds);
    }
    return utcSeconds;
}

} // namespace Platform::ICalendar
