#pragma once

#include "Foundation/Calendar.h"
#include "Foundation/Date.h"
#include "Foundation/Locale.h"

#include <expected>
#include <optional>
#include <string>
#include <string_view>

namespace Foundation {

/// The full weekday name of `date` as the locale writes it inside a sentence (pattern "EEEE").
std::string weekdayName(Date date, Calendar const& calendar, Locale const& locale);

/// The wall-clock time in twelve hours with two digits each and a marker: "09:05 a.m." (pattern "hh:mm a"
/// with fixed markers). The same in every locale; seconds are cut.
std::string twelveHourTimeWithMarker(Date date, Calendar const& calendar);

/// The same without the marker: "09:05".
std::string twelveHourTime(Date date, Calendar const& calendar);

/// "2023-11-14 22:13:20" on the calendar's clocks: ASCII digits and 24 hours in every locale.
std::string logTimestamp(Date date, Calendar const& calendar);

/// ISO 8601 in UTC with whole seconds: "2023-11-14T22:13:20Z". The fraction is dropped towards −∞.
std::string iso8601(Date date);

/// Reads an ISO 8601 instant that bears its offset: "2023-11-14T17:13:20-05:00", "…-0500" or "…Z". Absent
/// for anything else, fractions of a second included, and for an instant outside the years 1 to 9999 in UTC.
std::optional<Date> dateFromISO8601(std::string_view text);

/// Reads a moment as a person types it: an ISO 8601 instant as above, its seconds optional, or one without
/// an offset ("2026-03-11T09:00"; a day alone is its first instant), which is then read on the calendar's
/// clocks. Absent for anything else.
std::optional<Date> momentFromISO8601(std::string_view text, Calendar const& calendar);

} // namespace Foundation
