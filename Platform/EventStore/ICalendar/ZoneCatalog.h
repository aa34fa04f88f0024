#pragma once

#include "Foundation/TimeZone.h"
#include "Platform/EventStore/ICalendar/CalendarFile.h"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace Platform::ICalendar {

class CustomTimeZone;
class EventZone;

/// The zones that a file itself describes, and the work that may still go into them.
struct FileZones {
    explicit FileZones(CalendarFile const& file);

    std::unordered_map<std::string_view, TimeZoneComponent const*>
        components;                 ///< By TZID, the first of each.
    std::int64_t steps = 2'000'000; ///< For all together, in months and times looked at; much more than all
                                    ///< zones of the earth need.
};

/// Finds the clock that a TZID means, and keeps what it found: the system's tzdata for an IANA name, for the
/// Windows name of a zone and for a name with a vendor's prefix ("/example.org/Europe/Berlin"); else the
/// file's own VTIMEZONE. May be shared by any number of calendars and threads.
class ZoneCatalog {
public:
    /// The clock of `identifier` in `file`; absent when nothing explains it, and then its times are read on
    /// the viewer's clock.
    std::optional<EventZone> zone(std::string_view identifier, FileZones& file);

    /// The zone of that very name in the system's tzdata. A text that only looks like a POSIX rule is none.
    static std::optional<Foundation::TimeZone> systemZone(std::string_view name);

private:
    std::shared_ptr<CustomTimeZone const> customZone(std::string_view identifier, FileZones& file);

    std::mutex mutex;
    std::map<std::string, std::shared_ptr<CustomTimeZone const>, std::less<>> customZones; ///< By content.
};

} // namespace Platform::ICalendar
