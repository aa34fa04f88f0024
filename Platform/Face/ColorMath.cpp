#include "Platform/Face/ColorMath.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace Platform::ColorMath {
namespace {

double linearized(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

void appendHex(std::string& text, double channel) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    auto const byte = static_cast<std::size_t>(std::lround(std::clamp(channel, 0.0, 1.0) * 255.0));
    text += digits[byte / 16];
    text += digits[byte % 16];
}

constexpr SRGBColor black{.red = 0, .green = 0, .blue = 0};
constexpr SRGBColor white{.red = 1, .green = 1, .blue = 1};

} // namespace

double relativeLuminance(SRGBColor const& color) {
    return 0.2126 * linearized(color.red) + 0.7152 * linearized(color.green) +
           0.0722 * linearized(color.blue);
}

double contrastRatio(SRGBColor const& one, SRGBColor const& other) {
    auto const [darker, lighter] = std::minmax({relativeLuminance(one), relativeLuminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

SRGBColor mix(SRGBColor const& from, SRGBColor const& towards, double share) {
    return SRGBColor{
        .red = std::lerp(from.red, towards.red, share),
        .green = std::lerp(from.green, towards.green, share),
        .blue = std::lerp(from.blue, towards.blue, share),
    };
}

SRGBColor blackOrWhite(SRGBColor const& background) {
    return contrastRatio(background, white) > contrastRatio(background, black) ? white : black;
}

std::string hexText(SRGBColor const& color) {
    std::string text = "#";
    appendHex(text, color.red);
    appendHex(text, color.green);
    appendHex(text, color.blue);
    return text;
}

} // namespace Platform::ColorMath
