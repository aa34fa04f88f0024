#pragma once

#include "Platform/Appearance/ColorScheme.h"

#include <array>
#include <optional>
#include <string>

namespace Platform {

/// What the desktop says about its looks, asked anew at each call and answered within a short time.
class Appearance {
public:
    virtual ~Appearance() = default;

    /// Absent where no desktop answers; callers take light then.
    [[nodiscard]] virtual std::optional<ColorScheme> colorScheme() const = 0;

    /// The desktop's accent colour as sRGB channels from 0 to 1; absent where it has none.
    [[nodiscard]] virtual std::optional<std::array<double, 3>> accentColor() const = 0;

    /// The desktop's interface font as desktops describe one: its family, then style and size ("Cantarell
    /// 11"); absent where it names none.
    [[nodiscard]] virtual std::optional<std::string> interfaceFont() const = 0;
};

} // namespace Platform
