#include "Meetings/CGColorHexUtil.h"

#include "Foundation/Numbers.h"
#include "Meetings/MeetSystemDesignEnum.h"

#include <algorithm>
#include <cstdint>

namespace Meetings::CGColorHexUtil {
namespace {

// At least two digits, upper case. Of a negative channel the low 32 bits, which are eight digits.
std::string channel(double component) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    auto rest = static_cast<std::uint32_t>(Foundation::truncatedInteger(component * 255.0));
    std::string text;
    while (rest != 0 || text.size() < 2) {
        text.push_back(digits[rest % 16]);
        rest /= 16;
    }
    std::ranges::reverse(text);
    return text;
}

} // namespace

std::string hexString(Platform::CGColor const& color, Platform::Appearance const& appearance) {
    if (!color.components || color.components->size() < 3) {
        return std::string(MeetSystemDesignEnum::defaultColorHex(appearance));
    }
    auto const& components = *color.components;
    return "#" + channel(components[0]) + channel(components[1]) + channel(components[2]);
}

} // namespace Meetings::CGColorHexUtil
