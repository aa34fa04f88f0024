#pragma once

#include "Platform/Face/CairoHandles.h"
#include "Platform/Face/TextMeasurer.h"

#include <cstdint>
#include <map>
#include <string>
#include <tuple>

namespace Platform {

/// Texts laid out once and kept. Only the sources of the painter include this.
///
/// Every text is laid out at one size and scaled to the wanted one: asking fontconfig for a font costs
/// milliseconds, and so each weight is asked for once instead of once a size. Letters are not hinted, so the
/// picture is the same.
class PangoLayouts {
public:
    enum class Fitting : std::uint8_t { natural, ellipsis, wrapping };

    PangoLayouts(std::string const& family, std::string const& language);

    /// Laid out in `width` points, which a natural fitting ignores. Valid until the next call.
    PangoLayout* layout(std::string_view text, FaceFont const& font, Fitting fitting, double width);

    /// How many points a point of the layout is.
    static double scale(FaceFont const& font);
    /// A length of the layout, in points.
    static double inPoints(int pangoUnits, FaceFont const& font);

private:
    using Key = std::tuple<std::string, FaceFont::Weight, FaceFont::Figures, Fitting, int>;

    [[nodiscard]] CairoHandles::Owned<PangoFontDescription> description(FaceFont::Weight weight) const;
    [[nodiscard]] CairoHandles::Owned<PangoLayout> made(std::string_view text, FaceFont const& font,
                                                        Fitting fitting, int width) const;

    CairoHandles::Owned<PangoContext> leftToRight;
    CairoHandles::Owned<PangoContext> rightToLeft;
    std::string families;
    std::map<Key, CairoHandles::Owned<PangoLayout>> kept;
};

} // namespace Platform
