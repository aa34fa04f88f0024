#pragma once

#include "Platform/Face/FaceGeometry.h"

#include <memory>
#include <string>

typedef struct _cairo cairo_t;

namespace Platform {

class PangoLayouts;

/// Measures and draws texts with Pango, in letters of one family. It needs no display. Texts laid out once
/// are kept, so that drawing a face again costs no shaping. Not for use from several threads at once.
class PangoTextMeasurer final : public TextMeasurer {
public:
    /// `family` is a family's name as fontconfig knows it, such as "Inter"; where it is missing, or lacks a
    /// character, fontconfig chooses. `language` (BCP 47, such as "ja") picks among the shapes of one
    /// character; empty takes the process's.
    PangoTextMeasurer(std::string const& family, std::string const& language);
    ~PangoTextMeasurer() override;
    PangoTextMeasurer(PangoTextMeasurer const&) = delete;
    PangoTextMeasurer& operator=(PangoTextMeasurer const&) = delete;

    [[nodiscard]] TextSize measure(std::string_view text, FaceFont const& font,
                                   std::optional<double> wrapWidth) const override;
    [[nodiscard]] double capHeight(FaceFont const& font) const override;

    /// Draws in the context's current colour. Each text runs in the direction of its own first strong
    /// character, whichever way the face runs.
    void show(cairo_t* context, PlacedText const& text) const;

private:
    std::unique_ptr<PangoLayouts> layouts;
};

} // namespace Platform
