#include "Applications/Watching/EntryChanges.h"

#include <algorithm>
#include <chrono>

namespace Watching {

Foundation::Date nextChange(WidgetExtension::ScheduleWidgetEntry const& entry, Foundation::Date now,
                            Foundation::Calendar const& calendar) {
    auto change = calendar.startOfDay(calendar.day(now) + std::chrono::days(1));
    if (!calendar.isDateInSameDay(entry.date, now)) {
        return change;
    }
    for (auto const& meeting : entry.meetings) {
        auto const end = meeting.metDate.addingTimeInterval(meeting.metDuration);
        if (!meeting.metIsAllDay && end > now && end < change) {
            change = end;
        }
    }
    return change;
}

} // namespace Watching
