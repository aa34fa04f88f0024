#include "Platform/EventStore/Folder/OmittedEvents.h"

#include "Foundation/Text.h"
#include "Platform/EventStore/Folder/CalendarPlace.h"
#include "Platform/EventStore/Folder/CalendarRootReader.h"
#include "Platform/EventStore/Folder/FolderEventStore.h"
#include "Platform/EventStore/Folder/FolderListing.h"
#include "Platform/EventStore/Folder/OccurrenceMapping.h"
#include "Platform/EventStore/Folder/RefusedFolder.h"
#include "Platform/EventStore/Folder/RegularFile.h"
#include "Platform/EventStore/ICalendar/SeriesOmissions.h"
#include "Platform/EventStore/ICalendar/ZoneCatalog.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <string_view>
#include <system_error>
#include <utility>

namespace Platform {

namespace {

using CalendarFiles = std::vector<std::shared_ptr<ICalendar::CalendarFile const>>;

std::vector<std::filesystem::path> pathsOf(CalendarPlace const& place) {
    if (place.kind == CalendarPlace::Kind::file) return {place.path};
    std::error_code failure;
    auto const canonical = std::filesystem::canonical(place.path, failure);
    if (failure) return {};
    std::vector<std::filesystem::path> paths;
    for (auto const& name : listFolder(canonical, canonical).calendarFiles)
        paths.push_back(place.path / name);
    return paths;
}

CalendarFiles filesOf(CalendarPlace const& place, bool holdsLooseFiles) {
    CalendarFiles files;
    for (auto const& path : pathsOf(place)) {
        auto content = readRegularFile(path);
        if (!content) continue;
        auto file = ICalendar::read(std::move(content->content), path.string());
        if (holdsLooseFiles && isCalendarOfItsOwn(*file)) continue;
        files.push_back(std::move(file));
    }
    return files;
}

OmittedEvent recordOf(ICalendar::Omission const& omission, std::shared_ptr<EKCalendar const> calendar,
                      Foundation::TimeZone const& viewer) {
    return {.reason = omission.reason,
            .event = eventOfOccurrence(omission.occurrence, std::move(calendar), viewer),
            .movedTo = omission.movedTo,
            .causeFile = Foundation::Text::sanitizedUTF8(omission.file->path),
            .causeLine = omission.cause->line};
}

} // namespace

std::vector<OmittedEvent> omittedEvents(std::vector<CalendarRoot> const& roots,
                                        std::vector<EKCalendar> const& calendars, Foundation::Date start,
                                        Foundation::Date end, Foundation::TimeZone const& viewer) {
    std::vector<OmittedEvent> found;
    ICalendar::ZoneCatalog zones;
    for (auto const& calendar : calendars) {
        auto const place = findCalendarPlace(roots, calendar.calendarIdentifier);
        if (!place) continue;
        // The identifier of a root's loose files together.
        bool const holdsLooseFiles = calendar.calendarIdentifier.ends_with("/.");
        auto const files = filesOf(*place, holdsLooseFiles);
        auto const record = std::make_shared<EKCalendar const>(calendar);
        for (auto const& omission : ICalendar::omissions(files, zones, start, end, viewer))
            found.push_back(recordOf(omission, record, viewer));
    }
    return found;
}

std::vector<CalendarRoot> rootsOfStore(CalendarStorePlaces const& places, std::vector<CalendarRoot> listed) {
    std::vector<CalendarRoot> roots;
    if (hasNativeCalendar(places)) {
        roots.push_back({.kind = folderRootKind,
                         .id = std::string(nativeCalendarIdentifier),
                         .path = places.nativeCalendar,
                         .title = std::string(nativeCalendarTitle)});
    }
    std::ranges::move(listed, std::back_inserter(roots));
    return roots;
}

} // namespace Platform
