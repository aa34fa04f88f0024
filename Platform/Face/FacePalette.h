#pragma once

#include "Platform/Face/FaceLayout.h"

#include <optional>

namespace Platform {

/// The colours that one row is drawn in.
struct RowColors {
    SRGBColor fill;
    SRGBColor bar;      ///< The meet's own colour, untouched.
    SRGBColor text;     ///< The name; at least 14:1 on `fill` of a card, 7:1 on that of an all-day row.
    SRGBColor duration; ///< At least 5.8:1 on `fill` of a card.
    /// A line around a bar that is less than 1.5:1 on `fill`; 3:1, since a thin line is drawn paler than it
    /// is.
    std::optional<SRGBColor> barEdge = std::nullopt;

    bool operator==(RowColors const&) const = default;
};

/// The colours of a face, worked out from its background, brand and accent alone. Where a colour would leave
/// a text short of contrast, the surface behind the text gives way and the text stays.
class FacePalette {
public:
    /// `accent` stands in for every accent colour of the layout; the layout's own does where it is absent.
    FacePalette(FaceLayout const& layout, std::optional<SRGBColor> accent);

    SRGBColor background;
    SRGBColor text;          ///< Black or white.
    SRGBColor secondary;     ///< Labels and lines; at least 4.5:1 on `background`.
    SRGBColor chevron;       ///< The buttons' signs and focus rings; at least 3:1 on `background`.
    SRGBColor buttonHover;   ///< Behind a button under the pointer.
    SRGBColor buttonPress;   ///< Behind a button held down.
    SRGBColor activeChevron; ///< At least 3:1 on both of these.
    SRGBColor badge;
    SRGBColor badgeText; ///< Black or white, whichever is the clearer on `badge`.

    [[nodiscard]] RowColors allDayRow(FaceColor const& color) const;
    [[nodiscard]] RowColors card(FaceColor const& color) const;

private:
    [[nodiscard]] SRGBColor resolved(FaceColor const& color) const;

    ColorScheme scheme;
    SRGBColor accent;
};

} // namespace Platform
