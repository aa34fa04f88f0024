#pragma once

#include "Foundation/Text.h"
#include "Platform/Face/TextMeasurer.h"

#include <algorithm>
#include <cmath>

namespace Platform {

/// A font whose every character is half as wide as it is high: geometry that can be checked by hand.
class EvenTextMeasurer final : public TextMeasurer {
public:
    [[nodiscard]] TextSize measure(std::string_view text, FaceFont const& font,
                                   std::optional<double> wrapWidth) const override {
        double const width = static_cast<double>(Foundation::Text::scalars(text).size()) * font.size / 2;
        double const lines = wrapWidth ? std::max(1.0, std::ceil(width / *wrapWidth)) : 1.0;
        return TextSize{.width = wrapWidth ? std::min(width, *wrapWidth) : width,
                        .height = lines * font.size * 1.25,
                        .baseline = font.size};
    }

    [[nodiscard]] double capHeight(FaceFont const& font) const override { return font.size * 0.75; }
};

} // namespace Platform
