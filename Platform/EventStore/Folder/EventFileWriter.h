#pragma once

#include "Foundation/Date.h"
#include "Foundation/TimeZone.h"
#include "Platform/EventStore/EKEventStore.h"
#include "Platform/EventStore/Folder/CalendarFileWriter.h"
#include "Platform/EventStore/Folder/CalendarPlace.h"
#include "Platform/EventStore/Folder/CalendarRoot.h"
#include "Platform/EventStore/ICalendar/CalendarEdit.h"
#include "Platform/EventStore/ICalendar/ZoneCatalog.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

/// What an edit needs to know of the store as it stands.
struct EditSurroundings {
    std::vector<CalendarRoot> roots;
    Foundation::TimeZone viewer;
    Foundation::Date now;
    /// The files that hold something of a UID in a calendar; some of them may have gone by now.
    std::function<std::vector<std::filesystem::path>(std::string_view calendarIdentifier,
                                                     std::string_view uid)>
        filesOfEvent;
};

/// Saves and removes events in the files of their calendars. Every change is made from the files as they
/// stand at that moment; when another program changes one of them meanwhile, it is made anew from what that
/// left. All changes of one call happen, or none. Not safe for use from two threads at once.
class EventFileWriter {
public:
    explicit EventFileWriter(std::shared_ptr<ICalendar::ZoneCatalog> zones,
                             CalendarFileWriter files = CalendarFileWriter());

    /// As EKEventStore::save. The record becomes what a later query will yield.
    void save(EKEvent& event, EKSpan span, EditSurroundings const& surroundings);

    /// As EKEventStore::remove.
    void remove(EKEvent const& event, EKSpan span, EditSurroundings const& surroundings);

private:
    void create(EKEvent& event, CalendarPlace const& place, EditSurroundings const& surroundings);
    [[nodiscard]] bool createOnce(EKEvent& event, CalendarPlace const& place,
                                  EditSurroundings const& surroundings);
    [[nodiscard]] bool changeOnce(EKEvent& event, EKSpan span, CalendarPlace const& place,
                                  EditSurroundings const& surroundings);
    [[nodiscard]] bool moveOnce(EKEvent& event, EKSpan span, CalendarPlace const& place,
                                EditSurroundings const& surroundings);
    [[nodiscard]] bool removeOnce(EKEvent const& event, EKSpan span, CalendarPlace const& place,
                                  EditSurroundings const& surroundings);
    void clearLeftovers(CalendarPlace const& place, Foundation::Date now);

    std::shared_ptr<ICalendar::ZoneCatalog> zones;
    CalendarFileWriter files;
    std::set<std::filesystem::path> clearedFolders;
};

} // namespace Platform
