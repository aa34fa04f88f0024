#pragma once

#include "Applications/Widget/CalendarHealth.h"
#include "Applications/Widget/DayPresses.h"
#include "Foundation/Calendar.h"

#include <optional>
#include <string>

namespace Widget {

/// Why a press did not move the day, in a line; absent when it did.
std::optional<std::string> troubleOf(PressOutcome const& press);

/// What a person has to know beside the face, which cannot say it.
struct Notices {
    std::optional<CalendarTrouble> calendarTrouble;
    PressOutcome lastPress;

    /// One line each; empty when there is none. Times are those of `calendar`.
    [[nodiscard]] std::string text(Foundation::Calendar const& calendar) const;
};

} // namespace Widget
