#pragma once

#include "Platform/EventStore/EKEvent.h"
#include "Platform/EventStore/EKSource.h"

#include <memory>
#include <string>
#include <utility>

namespace Meetings {

inline Platform::EKCalendar someCalendar(std::string identifier = "a1/work", std::string title = "Work") {
    return {
        .calendarIdentifier = std::move(identifier),
        .title = std::move(title),
        .cgColor = {.components = std::vector{0.2, 0.4, 0.6, 1.0}},
        .sourceIdentifier = "a1",
        .allowsContentModifications = true,
    };
}

inline Platform::EKSource someSource(std::vector<Platform::EKCalendar> calendars = {someCalendar()}) {
    return {
        .sourceIdentifier = "a1",
        .title = "This computer",
        .sourceType = Platform::EKSourceType::local,
        .calendars = std::move(calendars),
    };
}

/// An event of an hour and a half in the calendar "a1/work".
inline Platform::EKEvent eventAt(double secondsSince1970, std::string uid = "u1") {
    return {
        .eventIdentifier = "a1/work:" + uid,
        .calendarItemIdentifier = uid,
        .title = "Planning",
        .startDate = Foundation::Date{.secondsSince1970 = secondsSince1970},
        .endDate = Foundation::Date{.secondsSince1970 = secondsSince1970 + 5400},
        .calendar = std::make_shared<Platform::EKCalendar const>(someCalendar()),
    };
}

} // namespace Meetings
