#pragma once

#include "Foundation/Date.h"

#include <cstdint>
#include <optional>

namespace Platform::ICalendar {

/// An interval of instants that a question is about.
struct ExpansionWindow {
    double from;
    double to;
    std::int64_t firstSecond; ///< Whole seconds that enclose the interval.
    std::int64_t lastSecond;
};

/// Absent when an end is not a number.
std::optional<ExpansionWindow> expansionWindow(Foundation::Date from, Foundation::Date to);

} // namespace Platform::ICalendar
