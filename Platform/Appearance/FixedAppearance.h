#pragma once

#include "Platform/Appearance/Appearance.h"

#include <array>
#include <optional>
#include <string>
#include <utility>

namespace Platform {

/// A desktop that looks as it is told to, for pictures and tests; silent until then.
class FixedAppearance final : public Appearance {
public:
    FixedAppearance() = default;
    explicit FixedAppearance(std::optional<ColorScheme> scheme,
                             std::optional<std::array<double, 3>> accent = std::nullopt,
                             std::optional<std::string> font = std::nullopt)
        : scheme(scheme),
          accent(accent),
          font(std::move(font)) {}

    [[nodiscard]] std::optional<ColorScheme> colorScheme() const override { return scheme; }
    [[nodiscard]] std::optional<std::array<double, 3>> accentColor() const override { return accent; }
    [[nodiscard]] std::optional<std::string> interfaceFont() const override { return font; }

    void set(std::optional<ColorScheme> next) { scheme = next; }

private:
    std::optional<ColorScheme> scheme;
    std::optional<std::array<double, 3>> accent;
    std::optional<std::string> font;
};

} // namespace Platform
