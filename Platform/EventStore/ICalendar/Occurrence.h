#pragma once

#include "Foundation/Date.h"
#include "Platform/EventStore/ICalendar/CalendarFile.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Platform::ICalendar {

/// One happening of an event. Its pointers are valid as long as the `SeriesSet` that made it.
struct Occurrence {
    EventComponent const* event;  ///< Whose texts apply: the override of this occurrence, else the master.
    CalendarFile const* file;     ///< The file of `event`.
    EventComponent const* master; ///< Of the series or the single event; null for an override without one.
    Foundation::Date start;
    Foundation::Date end; ///< Exclusive; equal to `start` for a happening without length.
    bool isAllDay;        ///< Then `start` and `end` are the days' beginnings in the viewer's zone.
    std::chrono::local_days firstDay; ///< All-day only: the civil days [firstDay, endDay).
    std::chrono::local_days endDay;
    /// The start that the series gave it, before any move, in the text form of its RECURRENCE-ID
    /// (`CalendarTime::text()` in the form of the master's start). Absent for a single event.
    std::optional<std::string> key;
};

/// What `SeriesSet::occurrences` found.
struct Expansion {
    std::vector<Occurrence> occurrences; ///< By start; equal starts in the order of the files.
    std::vector<Problem> problems;       ///< Series that were cut short by a bound.
    std::int64_t steps;                  ///< Work done, in months and candidate times looked at.
};

/// Bounds that keep a hostile rule harmless. A series that meets one is cut there, with a problem.
struct ExpansionLimits {
    std::int64_t occurrencesPerSeries = 50'000;
    /// What stays of a rule's occurrences when they meet the bound above: nobody reads more of them, and many
    /// such rules together must not use up what is there for all.
    std::int64_t occurrencesOfCutRule = 1'000;
    std::int64_t occurrences = 1'000'000;
    std::int64_t stepsPerSeries = 250'000;
};

} // namespace Platform::ICalendar
