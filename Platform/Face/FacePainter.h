#pragma once

#include "Platform/Face/FaceGeometry.h"
#include "Platform/Face/PangoTextMeasurer.h"

#include <optional>
#include <string>
#include <vector>

typedef struct _cairo cairo_t;

namespace Platform {

/// What of a face's looks is the desktop's to say.
struct FaceStyle {
    std::string fontFamily = "Inter"; ///< The desktop's interface font.
    std::string language;             ///< BCP 47; picks among the shapes of one character. May be empty.
    std::optional<SRGBColor> accent;  ///< The desktop's accent colour; absent, it is the layout's own.
};

/// How the pointer and the keyboard meet a button, or the row of a meet, just now.
struct FaceButtonState {
    bool isHovered = false;
    bool isPressed = false;
    bool isFocused = false;

    bool operator==(FaceButtonState const&) const = default;
};

struct FaceInteraction {
    FaceButtonState previous;
    FaceButtonState next;
    std::vector<FaceButtonState> rows = {}; ///< In the layout's order; those that are missing are at rest.
    bool hasNotice = false;                 ///< A mark at the lower edge says that there is more to know.

    bool operator==(FaceInteraction const&) const = default;
};

/// Draws a face with Cairo and Pango. One painter serves many faces and keeps what it has shaped; it is not
/// for use from several threads at once.
class FacePainter {
public:
    /// Returns at once: fonts are looked up on a thread of Pango's meanwhile. Made early, before a window or
    /// the day's meets are got ready, the painter costs the first frame the least.
    explicit FacePainter(FaceStyle style);

    /// Where everything stands that `paint` draws.
    [[nodiscard]] FaceGeometry place(FaceLayout const& layout) const;

    /// Draws the face with its upper left corner at the context's origin, a point being a unit of the
    /// context: scale the context for a denser screen. `geometry` is that of the same layout. Outside the
    /// rounded corners nothing is touched.
    void paint(cairo_t* context, FaceLayout const& layout, FaceGeometry const& geometry,
               FaceInteraction const& interaction = {}) const;

    /// For a change of the desktop's accent colour; fonts stay loaded.
    void setAccent(std::optional<SRGBColor> accent);

private:
    FaceStyle style;
    PangoTextMeasurer measurer;
};

} // namespace Platform
