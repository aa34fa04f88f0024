#pragma once

#include "Foundation/Date.h"
#include "Meetings/MeetEntity.h"

#include <cstdint>
#include <vector>

namespace WidgetExtension {

/// What the widget shows at one time.
struct ScheduleWidgetEntry {
    /// Lies on the day shown, with the time of day of the request; on purpose not when the entry was made.
    Foundation::Date date;
    std::vector<Meetings::MeetEntity> meetings; ///< Of that day, earliest first.
    bool hasAccessError;                        ///< Only when the calendar store refused access.
    std::int64_t dayOffset;                     ///< Days from today; 0 is today.

    bool operator==(ScheduleWidgetEntry const&) const = default;
};

} // namespace WidgetExtension
