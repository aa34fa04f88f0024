#include "Applications/Companion/MeetJSON.h"

#include "Applications/Companion/PlainJSON.h"
#include "Foundation/DateFormatting.h"

#include <utility>

namespace Companion {

namespace JSON = Foundation::JSON;

JSON::Object meetJSON(Meetings::MeetEntity const& meet) {
    JSON::Object object;
    object.emplace_back("metId", meet.metId.uuidString());
    object.emplace_back("metName", meet.metName);
    object.emplace_back("metDate", Foundation::iso8601(meet.metDate));
    object.emplace_back("metDescription", meet.metDescription);
    object.emplace_back("metDuration", numberValue(meet.metDuration));
    object.emplace_back("metColor", meet.metColor.hexValue);
    object.emplace_back("metIsAllDay", meet.metIsAllDay);
    if (meet.metLocation) object.emplace_back("metLocation", *meet.metLocation);
    if (meet.metUrl) object.emplace_back("metUrl", meet.metUrl->absoluteString);
    object.emplace_back("metCalendarName", meet.metCalendarName);
    object.emplace_back("metCalendarIdentifier", meet.metCalendarIdentifier);
    object.emplace_back("metRecurrenceFrequency", Foundation::rawValue(meet.metRecurrenceFrequency));
    JSON::Array weekdays;
    for (auto const weekday : meet.metRecurringWeekdays)
        weekdays.emplace_back(weekday);
    object.emplace_back("metRecurringWeekdays", std::move(weekdays));
    object.emplace_back("metOriginalIdentifier", meet.metOriginalIdentifier);
    object.emplace_back("metSource", Foundation::rawValue(meet.metSource));
    return object;
}

} // namespace Companion
