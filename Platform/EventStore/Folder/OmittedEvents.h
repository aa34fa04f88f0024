#pragma once

#include "Foundation/Date.h"
#include "Foundation/TimeZone.h"
#include "Platform/EventStore/EKEventStore.h"
#include "Platform/EventStore/Folder/CalendarRoot.h"
#include "Platform/EventStore/Folder/CalendarStorePlaces.h"
#include "Platform/EventStore/ICalendar/Omission.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Platform {

/// An event that a calendar's files name and that does not happen.
struct OmittedEvent {
    ICalendar::Omission::Reason reason;
    EKEvent event; ///< As it would have been.
    std::optional<Foundation::Date> movedTo;
    /// What says so, for people: the file's path and the line of its BEGIN:VEVENT.
    std::string causeFile;
    std::int64_t causeLine;
};

/// Reads the files of those calendars from end to end, so it takes its time; for a person who misses
/// something between `start` and `end`. `roots` are those of the store, the product's own included.
/// What cannot be read is left out: FolderEventStore::problems() tells of it.
std::vector<OmittedEvent> omittedEvents(std::vector<CalendarRoot> const& roots,
                                        std::vector<EKCalendar> const& calendars, Foundation::Date start,
                                        Foundation::Date end, Foundation::TimeZone const& viewer);

/// The root of the product's own calendar, where it has been made, then those of the person's list.
std::vector<CalendarRoot> rootsOfStore(CalendarStorePlaces const& places, std::vector<CalendarRoot> listed);

} // namespace Platform
