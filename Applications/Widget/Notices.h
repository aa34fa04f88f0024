#pragma once

#include "Applications/Widget/CalendarHealth.h"
#include "Foundation/Calendar.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Widget {

/// What a person has to know beside the face, which cannot say it.
struct Notices {
    std::optional<CalendarTrouble> calendarTrouble;
    std::optional<std::int64_t> refusedDay; ///< The stored day from which a press found no further step.

    /// One line each; empty when there is none. Times are those of `calendar`.
    [[nodiscard]] std::string text(Foundation::Calendar const& calendar) const;
};

} // namespace Widget
