#pragma once

#include "Foundation/Date.h"
#include "Foundation/URL.h"
#include "Foundation/UUID.h"
#include "Meetings/MeetColor.h"
#include "Meetings/MeetRecurrenceFrequency.h"
#include "Meetings/MeetSource.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>

namespace Meetings {

/// One event of a calendar, or one occurrence of a repeating event, as all layers pass it. Nothing is
/// checked or normalised when it is made; the rules are `MeetDomain::validate`.
struct MeetEntity {
    Foundation::UUID metId; ///< The same for the same occurrence at every fetch.
    std::string metName;
    Foundation::Date metDate;   ///< Start.
    std::string metDescription; ///< Notes, possibly HTML; empty when there are none.
    double metDuration;         ///< Seconds.
    MeetColor metColor;
    bool metIsAllDay = false;
    std::optional<std::string> metLocation;
    std::optional<Foundation::URL> metUrl;
    std::string metCalendarName;
    std::string metCalendarIdentifier;
    MeetRecurrenceFrequency metRecurrenceFrequency;
    std::set<std::int64_t> metRecurringWeekdays; ///< 1 = Sunday … 7 = Saturday; empty unless weekly.
    std::string metOriginalIdentifier;           ///< The source's own identifier of the event.
    MeetSource metSource;

    /// The identity that lists of meets use.
    [[nodiscard]] Foundation::UUID id() const { return metId; }

    /// Field by field, in declaration order.
    bool operator==(MeetEntity const&) const = default;
};

} // namespace Meetings
