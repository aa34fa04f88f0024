#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Platform::ICalendar {

/// What a content line does to the components around it.
struct Delimiter {
    enum class Kind : std::uint8_t { none, begin, end };
    Kind kind = Kind::none;
    std::string component = {}; ///< Its name as written.

    [[nodiscard]] bool begins(std::string_view upper) const;
    [[nodiscard]] bool ends(std::string_view upper) const;
};

/// A line's BEGIN or END, folded or not. `line` is not empty.
Delimiter delimiterIn(std::string_view line);

} // namespace Platform::ICalendar
