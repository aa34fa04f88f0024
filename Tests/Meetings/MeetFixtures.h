#pragma once

#include "Foundation/Calendar.h"
#include "Foundation/TimeZone.h"
#include "Meetings/MeetEntity.h"

#include <string>
#include <utility>

namespace Meetings {

/// A valid meet of half an hour at 2023-11-14T22:13:20Z; a test changes what it is about.
inline MeetEntity someMeet(std::string name = "Stand-up") {
    return {
        .metId = {.bytes = {1, 2, 3, 4}},
        .metName = std::move(name),
        .metDate = {.secondsSince1970 = 1700000000},
        .metDescription = "Notes",
        .metDuration = 1800,
        .metColor = {.hexValue = "#D1495B"},
        .metIsAllDay = false,
        .metLocation = "Room 1",
        .metUrl = Foundation::URL{.absoluteString = "https://example.com/1"},
        .metCalendarName = "Work",
        .metCalendarIdentifier = "a1/work",
        .metRecurrenceFrequency = MeetRecurrenceFrequency::weekly,
        .metRecurringWeekdays = {2, 4},
        .metOriginalIdentifier = "a1/work:u1",
        .metSource = MeetSource::eventKit,
    };
}

/// The same, at another time.
inline MeetEntity meetAt(double secondsSince1970, std::string name = "Stand-up") {
    auto meet = someMeet(std::move(name));
    meet.metDate = {.secondsSince1970 = secondsSince1970};
    return meet;
}

inline Foundation::Calendar utcCalendar() {
    return Foundation::Calendar(Foundation::TimeZone::utc());
}

inline Foundation::Calendar calendarIn(char const* zone) {
    return Foundation::Calendar(Foundation::TimeZone::named(zone).value());
}

} // namespace Meetings
