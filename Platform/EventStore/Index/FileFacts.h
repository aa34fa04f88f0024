#pragma once

#include "Platform/EventStore/ICalendar/CalendarFile.h"
#include "Platform/EventStore/ICalendar/RoughBounds.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

/// What of one UID a file holds.
struct SeriesFacts {
    std::uint64_t uid; ///< By `uidHash`.
    ICalendar::RoughBounds bounds;
    std::vector<ICalendar::ExcerptPart> parts; ///< Its components, in a file that is read in parts.

    friend bool operator==(SeriesFacts const&, SeriesFacts const&) = default;
};

/// What an index needs to know of a calendar file. No time zone bears on any of it.
struct FileFacts {
    bool isCalendarOfItsOwn;                   ///< It names itself or holds events of several UIDs.
    std::optional<std::string> name;           ///< As `CalendarFile::name`.
    std::optional<std::string> color;          ///< As `CalendarFile::color`.
    std::vector<SeriesFacts> series;           ///< In the order in which the file first names them.
    std::vector<ICalendar::ExcerptPart> zones; ///< Its VTIMEZONEs, in a file that is read in parts.

    friend bool operator==(FileFacts const&, FileFacts const&) = default;
};

/// A file of that many bytes and of several UIDs is read in parts: of the events that may matter only.
inline constexpr std::size_t smallestFileInParts = 64 * 1024;

FileFacts factsOf(ICalendar::CalendarFile const& file);

/// The number that stands for a UID.
std::uint64_t uidHash(std::string_view uid);

} // namespace Platform
