#pragma once

#include "Platform/Appearance/ColorScheme.h"

#include <array>
#include <optional>
#include <string_view>

namespace Platform {

/// Looks up the named colours of one bundle.
class ColorProvider {
public:
    virtual ~ColorProvider() = default;

    /// The colour of that name in that scheme, as sRGB channels from 0 to 1; absent where the bundle has
    /// none.
    [[nodiscard]] virtual std::optional<std::array<double, 3>> color(std::string_view name,
                                                                     ColorScheme scheme) const = 0;
};

} // namespace Platform
