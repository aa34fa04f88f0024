#include "Meetings/Remote/EventRequestFields.h"

#include "Foundation/DateFormatting.h"
#include "Foundation/Numbers.h"
#include "Meetings/Remote/MeetRecurrenceRemoteMapper.h"

namespace Meetings {

EventRequestFields EventRequestFields::of(MeetEntity const& meet) {
    return {
        .evtTitle = meet.metName,
        .evtSchedule = meet.metDate,
        .evtDurationMinutes = Foundation::truncatedInteger(meet.metDuration / 60.0),
        .evtHasAlarm = false,
        .evtDescription = meet.metDescription,
        .evtRepeat = std::string(MeetRecurrenceRemoteMapper::toRemoteRepeat(meet.metRecurrenceFrequency)),
        .evtCustomRepeat = MeetRecurrenceRemoteMapper::toRemoteCustomRepeat(meet.metRecurringWeekdays),
    };
}

Foundation::JSON::Value EventRequestFields::encode() const {
    return Foundation::JSON::Object{
        {"evtTitle", evtTitle},
        {"evtSchedule", Foundation::iso8601(evtSchedule)},
        {"evtDurationMinutes", evtDurationMinutes},
        {"evtHasAlarm", evtHasAlarm},
        {"evtDescription", evtDescription},
        {"evtRepeat", evtRepeat},
        {"evtCustomRepeat", evtCustomRepeat},
    };
}

} // namespace Meetings
