#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace Platform::ICalendar {

/// A colour of a calendar, without transparency.
struct ColorValue {
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;

    friend bool operator==(ColorValue const&, ColorValue const&) = default;
};

/// Reads "#RGB", "#RRGGBB", "#RRGGBBAA" and the CSS3 colour names of RFC 7986, in either letter case and
/// with blanks around it. Absent for anything else.
std::optional<ColorValue> colorFromText(std::string_view text);

} // namespace Platform::ICalendar
