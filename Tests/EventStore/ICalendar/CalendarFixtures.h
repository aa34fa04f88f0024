#pragma once

#include "Platform/EventStore/ICalendar/SeriesSet.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Platform::ICalendar {

/// The bytes of Events/`name`.
std::string sampleBytes(std::string const& name);

/// Events/`name`, read.
std::shared_ptr<CalendarFile const> sampleFile(std::string const& name);

/// The series of Events/`name`.
SeriesSet sampleSeries(std::string const& name);

/// The series of a VCALENDAR around `components`, whose lines end by LF.
SeriesSet seriesOf(std::string const& components);

/// A VEVENT with the UID "event" and the title "Event" whose other lines are `properties`.
std::string eventWith(std::string const& properties);

/// An instant: "2026-03-11T08:00:00Z".
Foundation::Date instant(std::string_view text);

Foundation::TimeZone zone(std::string_view name);

/// What happens from `from` to `to` for a viewer, a line each: "2026-03-11T08:00:00Z/2026-03-11T09:00:00Z
/// Title", an all-day one with its days: "2026-03-11/2026-03-12 Title".
std::vector<std::string> happenings(SeriesSet const& series, std::string_view from, std::string_view to,
                                    std::string_view viewer = "UTC");

/// The keys of what happens, in order; "-" for a single event.
std::vector<std::string> keys(SeriesSet const& series, std::string_view from, std::string_view to,
                              std::string_view viewer = "UTC");

/// "line 3: reason" for each problem.
std::vector<std::string> reasons(std::vector<Problem> const& problems);

} // namespace Platform::ICalendar
