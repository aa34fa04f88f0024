#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace Platform::ICalendar {

/// Something in a calendar file that could not be taken as it stands.
struct Problem {
    enum class Effect : std::uint8_t {
        skipped, ///< The event is not shown.
        adjusted ///< It is shown, with what the reason says.
    };

    std::string path;               ///< Of the file, as it was given to `read`.
    std::int64_t line;              ///< Of the line at fault, from 1.
    std::optional<std::string> uid; ///< Of the event, as far as it is known.
    Effect effect;
    std::string reason; ///< A sentence for people, with the value that matters.

    friend bool operator==(Problem const&, Problem const&) = default;
};

} // namespace Platform::ICalendar
