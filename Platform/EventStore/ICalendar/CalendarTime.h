#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace Platform::ICalendar {

/// On which clock a DATE or DATE-TIME value is read (RFC 5545 §3.3.4, §3.3.5).
enum class TimeForm : std::uint8_t {
    date,     ///< A civil day, the same everywhere.
    floating, ///< The viewer's clock, wherever the viewer is.
    utc,
    zoned, ///< The clock of a TZID.
};

/// A DATE or DATE-TIME value as it was written.
struct CalendarTime {
    TimeForm form;
    std::uint32_t zone;        ///< Index into `CalendarFile::zoneNames`; 0 and not read unless `zoned`.
    std::int64_t localSeconds; ///< From 1970-01-01 00:00 on that clock; a date's midnight.

    /// The civil day on its own clock.
    [[nodiscard]] std::chrono::local_days day() const;

    /// "20260311", "20260311T080000" or, in UTC, "20260311T080000Z".
    [[nodiscard]] std::string text() const;

    friend bool operator==(CalendarTime const&, CalendarTime const&) = default;
};

/// A DURATION value (RFC 5545 §3.3.6). Weeks and days are nominal: they move the date and keep the
/// wall-clock time; the rest is exact.
struct CalendarDuration {
    std::int64_t days;
    std::int64_t seconds;

    friend bool operator==(CalendarDuration const&, CalendarDuration const&) = default;
};

} // namespace Platform::ICalendar
