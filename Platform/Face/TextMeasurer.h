#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace Platform {

/// How a text of the face is set; the family of the letters is the measurer's own.
struct FaceFont {
    enum class Weight : std::uint16_t { regular = 400, medium = 500, semibold = 600, bold = 700 };
    enum class Figures : std::uint8_t { proportional, tabular };

    double size; ///< Points.
    Weight weight;
    Figures figures = Figures::proportional;

    bool operator==(FaceFont const&) const = default;
};

/// What a text takes, in points.
struct TextSize {
    double width;
    double height;   ///< Of all its lines.
    double baseline; ///< Of the first line, from the top.

    bool operator==(TextSize const&) const = default;
};

/// Tells how much room a text takes. The geometry of a face asks nothing else of a font.
class TextMeasurer {
public:
    virtual ~TextMeasurer() = default;

    /// On one line, or broken into lines of at most `wrapWidth` points where that is given.
    [[nodiscard]] virtual TextSize measure(std::string_view text, FaceFont const& font,
                                           std::optional<double> wrapWidth) const = 0;

    /// Height of a capital letter in points: what the eye takes for the middle of a line.
    [[nodiscard]] virtual double capHeight(FaceFont const& font) const = 0;
};

} // namespace Platform
