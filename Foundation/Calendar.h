#pragma once

#include "Foundation/Date.h"
#include "Foundation/TimeZone.h"

#include <chrono>
#include <cstdint>
#include <optional>

namespace Foundation {

/// A moment as a clock and a calendar on the wall show it.
struct DateComponents {
    std::int64_t year;
    std::int32_t month;   ///< 1…12
    std::int32_t day;     ///< 1…31
    std::int32_t hour;    ///< 0…23
    std::int32_t minute;  ///< 0…59
    std::int32_t second;  ///< 0…59
    std::int32_t weekday; ///< 1 = Sunday … 7 = Saturday; not read when a date is made from components

    friend bool operator==(DateComponents const&, DateComponents const&) = default;
};

/// The Gregorian calendar in one time zone. A value; it never reads the process's own zone.
class Calendar {
public:
    explicit Calendar(TimeZone timeZone);

    [[nodiscard]] TimeZone const& timeZone() const;

    /// `date` moved by whole days with the wall-clock time kept. A skipped time moves forward by the gap, a
    /// repeated one keeps the side it came from, the fraction of a second is kept exactly.
    /// Absent when the result's year lies outside 1…9999.
    [[nodiscard]] std::optional<Date> dateByAddingDays(std::int64_t days, Date date) const;

    /// `date` moved by minutes of absolute time. Absent as above.
    [[nodiscard]] std::optional<Date> dateByAddingMinutes(std::int64_t minutes, Date date) const;

    /// Whether both lie on the same year, month and day of this calendar.
    [[nodiscard]] bool isDateInSameDay(Date left, Date right) const;

    /// Whether both lie in the same minute of this calendar.
    [[nodiscard]] bool isDateInSameMinute(Date left, Date right) const;

    /// The wall-clock view of `date`. Its year must lie in 1…9999; anything else is a fatal error.
    [[nodiscard]] DateComponents components(Date date) const;

    /// The civil day that `date` lies on.
    [[nodiscard]] std::chrono::local_days day(Date date) const;

    /// The instant of a wall-clock time: the first pass of a repeated one, a skipped one moved forward by
    /// the gap. Absent for components that name no date, or a year outside 1…9999.
    [[nodiscard]] std::optional<Date> dateFromComponents(DateComponents const& components) const;

    /// The first instant of a civil day, which need not be midnight.
    [[nodiscard]] Date startOfDay(std::chrono::local_days day) const;

    friend bool operator==(Calendar const&, Calendar const&) = default;

private:
    TimeZone zone;
};

} // namespace Foundation
