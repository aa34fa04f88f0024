#pragma once

#include "Samples/SampleCalendars.h"
#include "Samples/SampleEvent.h"

#include <optional>
#include <string>
#include <vector>

namespace Samples {

/// An event with the calendar folder and the file (without its ending) that it goes into.
struct SampleDayEvent {
    std::string calendar;
    std::string file;
    SampleEvent event;
};

/// The request's zone as an event names it; absent, so that times float, when it has no name that a calendar
/// file could bear (a rule text in TZ, for example).
std::optional<Foundation::TimeZone> namedZone(Foundation::TimeZone const& zone);

/// Two all-day events and ten timed ones on the day itself. The eleventh, the stand-up, is a series.
std::vector<SampleDayEvent> eventsOfTheDay(SampleRequest const& request);

/// Two to four events on each day from two weeks before to two weeks after, the day itself excluded.
std::vector<SampleDayEvent> eventsAroundTheDay(SampleRequest const& request);

} // namespace Samples
