#pragma once

#include "Platform/Appearance/Appearance.h"

#include <array>
#include <optional>

namespace Platform {

/// A desktop that looks as it is told to, for pictures and tests; silent until then.
class FixedAppearance final : public Appearance {
public:
    FixedAppearance() = default;
    explicit FixedAppearance(std::optional<ColorScheme> scheme,
                             std::optional<std::array<double, 3>> accent = std::nullopt)
        : scheme(scheme),
          accent(accent) {}

    [[nodiscard]] std::optional<ColorScheme> colorScheme() const override { return scheme; }
    [[nodiscard]] std::optional<std::array<double, 3>> accentColor() const override { return accent; }

    void set(std::optional<ColorScheme> next) { scheme = next; }

private:
    std::optional<ColorScheme> scheme;
    std::optional<std::array<double, 3>> accent;
};

} // namespace Platform
