#pragma once

#include "Platform/EventStore/ICalendar/CalendarFile.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Platform::ICalendar {

/// A calendar file with its bytes as they stand on the disk, which its reading may have repaired in place.
struct CalendarSource {
    std::string bytes;
    std::shared_ptr<CalendarFile const> file; ///< Of the same bytes: all offsets fit both.
};

/// Reads `bytes`; `path` is for messages.
CalendarSource calendarSource(std::string bytes, std::string path = {});

/// `length` bytes at `offset` that become `text`.
struct Splice {
    std::size_t offset;
    std::size_t length;
    std::string text;

    friend bool operator==(Splice const&, Splice const&) = default;
};

/// `bytes` with all that replaced. The splices do not overlap; of two at one place the first given comes
/// first.
std::string spliced(std::string_view bytes, std::vector<Splice> const& splices);

/// Puts components into a file: before the end of its last calendar, or into a calendar of their own where
/// there is none. `components` have whole lines that end as those of the file.
Splice insertion(CalendarSource const& source, std::string components);

/// The line break that a file's first line has; CRLF without any.
std::string lineBreakOf(std::string_view bytes);

/// A whole file of these components (RFC 5545 §3.4).
std::string newCalendar(std::string_view components, std::string_view lineBreak = "\r\n");

/// The file's bytes with X-WR-CALNAME in its first calendar; as they are when there is none.
std::string withCalendarName(CalendarSource const& source, std::string_view name);

/// Whether a file holds nothing but events of that UID and the zones that they need, so that it goes when
/// they go.
bool holdsOnly(CalendarSource const& source, std::string_view uid);

} // namespace Platform::ICalendar
