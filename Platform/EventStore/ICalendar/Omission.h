#pragma once

#include "Foundation/Date.h"
#include "Platform/EventStore/ICalendar/Occurrence.h"

#include <cstdint>
#include <optional>

namespace Platform::ICalendar {

/// Something that would happen, were it not for what a file says about it. Its pointers are valid as long as
/// the `SeriesSet` that made it.
struct Omission {
    enum class Reason : std::uint8_t {
        excludedDate,        ///< An EXDATE of the series names it.
        excludedByRule,      ///< An EXRULE of the series yields it.
        cancelledOccurrence, ///< The override that stands for it is cancelled.
        cancelledEvent,      ///< The event itself is cancelled, with all its occurrences.
        movedOccurrence,     ///< The override that stands for it starts at another time.
    };
    Reason reason;
    Occurrence occurrence;                   ///< As it would have been, with the texts of the series.
    EventComponent const* cause;             ///< What says so: the series' own event, or the override.
    CalendarFile const* file;                ///< The file of `cause`.
    std::optional<Foundation::Date> movedTo; ///< The start of what was moved.
};

} // namespace Platform::ICalendar
