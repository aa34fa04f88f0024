#include "WidgetExtension/HexColor.h"

#include "Foundation/Text.h"

#include <charconv>
#include <cstdint>
#include <string>
#include <system_error>

namespace WidgetExtension {

Platform::FaceColor colorFromHex(std::string_view text) {
    constexpr std::size_t digitCount = 6;
    auto digits = Foundation::Text::trimmingWhitespacesAndNewlines(text);
    std::erase(digits, '#');
    if (digits.size() != digitCount) return Platform::AccentColor{};

    std::uint32_t number = 0;
    auto const* const end = digits.data() + digits.size();
    auto const [parsedTo, error] = std::from_chars(digits.data(), end, number, 16);
    if (error != std::errc{} || parsedTo != end) return Platform::AccentColor{};

    auto const channel = [number](unsigned shift) { return ((number >> shift) & 0xFFU) / 255.0; };
    return Platform::SRGBColor{.red = channel(16), .green = channel(8), .blue = channel(0)};
}

} // namespace WidgetExtension
