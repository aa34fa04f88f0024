#include "Platform/Face/FacePalette.h"

#include "Platform/Face/ColorMath.h"

namespace Platform {
namespace {

using ColorMath::contrastRatio;
using ColorMath::mix;

constexpr double secondaryShareOfBackground = 0.42;
constexpr double durationShareOfFill = 0.38;
constexpr double chevronShareOfText = 0.25;
constexpr double leastBarContrast = 1.5;
constexpr double barEdgeContrast = 3.0;
constexpr double step = 0.01;

/// `from` mixed towards `towards` by `share`, or by as much more as it takes to reach `contrast` on
/// `surface`.
SRGBColor mixedAtLeast(SRGBColor const& from, SRGBColor const& towards, double share,
                       SRGBColor const& surface, double contrast) {
    while (share < 1.0 && contrastRatio(mix(from, towards, share), surface) < contrast)
        share += step;
    return mix(from, towards, std::min(share, 1.0));
}

struct Contrasts {
    double name;
    double duration;
};

RowColors rowColors(SRGBColor const& background, SRGBColor const& text, SRGBColor const& color, double share,
                    Contrasts const& least) {
    auto at = [&](double part) {
        auto const fill = mix(background, color, part);
        return RowColors{
            .fill = fill,
            .bar = color,
            .text = text,
            .duration = mix(text, fill, durationShareOfFill),
            .barEdge = std::nullopt,
        };
    };
    auto isClear = [&](RowColors const& colors) {
        return contrastRatio(colors.text, colors.fill) >= least.name &&
               contrastRatio(colors.duration, colors.fill) >= least.duration;
    };
    auto colors = at(share);
    while (share > 0.0 && !isClear(colors)) {
        share = std::max(0.0, share - step);
        colors = at(share);
    }
    // White on white would tell nobody whose calendar a meet is on.
    if (contrastRatio(color, colors.fill) < leastBarContrast)
        colors.barEdge = mixedAtLeast(color, text, 0, colors.fill, barEdgeContrast);
    return colors;
}

} // namespace

FacePalette::FacePalette(FaceLayout const& layout, std::optional<SRGBColor> accent)
    : background(layout.background),
      text(ColorMath::blackOrWhite(layout.background)),
      secondary(mixedAtLeast(background, text, 1.0 - secondaryShareOfBackground, background, 4.5)),
      chevron(mixedAtLeast(layout.brand, text, chevronShareOfText, background, 3.0)),
      buttonHover(mix(background, text, layout.colorScheme == ColorScheme::dark ? 0.14 : 0.08)),
      buttonPress(mix(background, text, layout.colorScheme == ColorScheme::dark ? 0.24 : 0.16)),
      activeChevron(mixedAtLeast(layout.brand, text, chevronShareOfText, buttonPress, 3.0)),
      badge(layout.brand),
      badgeText(ColorMath::blackOrWhite(layout.brand)),
      scheme(layout.colorScheme),
      accent(accent.value_or(layout.accent)) {}

RowColors FacePalette::allDayRow(FaceColor const& color) const {
    double const share = scheme == ColorScheme::dark ? 0.30 : 0.20;
    return rowColors(background, text, resolved(color), share, Contrasts{.name = 7.0, .duration = 4.5});
}

RowColors FacePalette::card(FaceColor const& color) const {
    double const share = scheme == ColorScheme::dark ? 0.24 : 0.14;
    return rowColors(background, text, resolved(color), share, Contrasts{.name = 14.0, .duration = 5.8});
}

SRGBColor FacePalette::resolved(FaceColor const& color) const {
    auto const* fixed = std::get_if<SRGBColor>(&color);
    return fixed ? *fixed : accent;
}

} // namespace Platform
