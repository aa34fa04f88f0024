#pragma once

#include "Foundation/TimeZone.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace Samples {

/// A wall-clock time: minutes from 1970-01-01 00:00.
using LocalMinutes = std::chrono::local_time<std::chrono::minutes>;

/// "20260311".
std::string dateText(std::chrono::local_days day);

/// "20260311T090000".
std::string timeText(LocalMinutes time);

/// `text` as a TEXT value (RFC 5545 §3.3.11).
std::string escapedText(std::string_view text);

/// Puts iCalendar lines together: each ends in CR LF and is folded at 75 bytes, never inside a character.
class ICalendarText {
public:
    void line(std::string_view text);
    /// `name`, ":" and the escaped `value`; nothing for an empty value.
    void property(std::string_view name, std::string_view value);
    void begin(std::string_view component);
    void end(std::string_view component);
    /// BEGIN:VCALENDAR with the lines that every file starts with.
    void beginCalendar();
    /// The clock of `zone` from a year before `day` to a year after it, one observance a change.
    void timeZone(Foundation::TimeZone const& zone, std::chrono::local_days day);

    [[nodiscard]] std::string const& text() const { return lines; }

private:
    void observance(bool isDaylight, std::string_view start, std::int32_t offsetBefore,
                    std::int32_t offsetAfter);

    std::string lines;
};

} // namespace Samples
