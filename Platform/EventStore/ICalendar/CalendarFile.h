#pragma once

#include "Platform/EventStore/ICalendar/EventComponent.h"
#include "Platform/EventStore/ICalendar/Problem.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Platform::ICalendar {

/// A VTIMEZONE as it stands in its file; `ZoneCatalog` makes sense of it where it is needed.
struct TimeZoneComponent {
    std::string identifier; ///< Its TZID.
    std::string_view bytes; ///< From BEGIN to END.
    std::int64_t line;      ///< Of BEGIN:VTIMEZONE, from 1.
};

/// What one iCalendar file holds: the events that could be read whole, and why the others could not.
/// Several VCALENDARs in a file are taken as one.
struct CalendarFile {
    std::string path; ///< As given to `read`; for messages.
    std::shared_ptr<std::string const>
        bytes;                          ///< What all texts point into. As read, but for bare CRs made LFs.
    std::optional<std::string> name;    ///< X-WR-CALNAME, else NAME (RFC 7986).
    std::optional<std::string> color;   ///< X-APPLE-CALENDAR-COLOR, else COLOR, as written.
    std::vector<EventComponent> events; ///< In the order of the file.
    std::vector<TimeZoneComponent> timeZones;
    std::vector<std::string> zoneNames; ///< The TZIDs that times name, each once.
    std::vector<Problem> problems;      ///< In the order of the file; at most `maximumProblems`.
    bool isForeign = false;             ///< It holds something else than a calendar, as its one problem says.

    static constexpr std::size_t maximumProblems = 1000;
};

/// Reads an iCalendar stream (RFC 5545). Never fails as a whole: an event that cannot be read is left out
/// with a problem and costs none of its neighbours, and of EXDATE and RDATE only a bad value is. Time and
/// memory are linear in the size of `bytes`.
std::shared_ptr<CalendarFile const> read(std::string bytes, std::string path = {});

/// Where in a file a component stands.
struct ExcerptPart {
    std::uint32_t offset; ///< Of the first byte of its BEGIN line.
    std::uint32_t length; ///< Bytes to the end of its END line.
    std::uint32_t line;   ///< Of BEGIN, from 1.

    friend bool operator==(ExcerptPart const&, ExcerptPart const&) = default;
};

/// Reads components that were cut out of a file as `read` finds them in the whole of it: `parts` in the order
/// of the file, `bytes` what stands there, one after another. What else the file says, its name and its
/// problems, is not known here.
std::shared_ptr<CalendarFile const> readExcerpt(std::vector<ExcerptPart> const& parts, std::string_view bytes,
                                                std::string path);

} // namespace Platform::ICalendar
