#pragma once

#include "Platform/EventStore/Folder/CalendarPlace.h"
#include "Platform/EventStore/Folder/EditedFiles.h"
#include "Platform/EventStore/ICalendar/CalendarSplice.h"
#include "Platform/EventStore/ICalendar/ZoneCatalog.h"

#include <expected>
#include <optional>
#include <string>
#include <vector>

namespace Platform {

/// The calendar that an event goes into.
struct MoveTarget {
    std::string title;
    CalendarPlace place;
    /// What it holds of the same UID; of a calendar of one file, that file in any case.
    std::vector<ICalendar::CalendarSource> files;
};

/// What a move writes where the event goes.
struct MovedEvent {
    /// Absent when it is all there already: an earlier move that was cut short came so far.
    std::optional<EditedFiles::Change> change;
    std::vector<ICalendar::CalendarSource> files; ///< Those that hold the event there afterwards.
};

/// All of the event `uid`, byte for byte: its file, where nothing else is in it and the target is a folder;
/// else its components, with the zones that they need. `sources` are the files that it is taken from, and
/// `zones` tells which zones a file need not explain. The error is a reason for people.
std::expected<MovedEvent, std::string> movedEvent(std::string const& uid,
                                                  std::vector<ICalendar::CalendarSource> const& sources,
                                                  MoveTarget const& target, ICalendar::ZoneCatalog& zones);

} // namespace Platform
