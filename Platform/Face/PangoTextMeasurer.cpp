#include "Platform/Face/PangoTextMeasurer.h"

#include "Foundation/Text.h"
#include "Platform/Face/CairoHandles.h"
#include "Platform/Face/PangoLayouts.h"

#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <span>

namespace Platform {
namespace {

using CairoHandles::Owned;
using Fitting = PangoLayouts::Fitting;

/// How much of a column's spare width stands before its text.
double shareBefore(PlacedText::Alignment alignment) {
    switch (alignment) {
    case PlacedText::Alignment::left: return 0;
    case PlacedText::Alignment::center: return 0.5;
    case PlacedText::Alignment::right: return 1;
    }
    return 0;
}

/// Whether `text` begins at the side that it is aligned to.
bool startsAt(PlacedText::Alignment side, std::string_view text) {
    auto const start = Foundation::Text::startsRightToLeft(text) ? PlacedText::Alignment::right
                                                                 : PlacedText::Alignment::left;
    return side == start;
}

/// The height nearest to `y` at which a baseline meets the pixels of the target, so that letters stand sharp.
double onPixels(cairo_t* context, double y) {
    double x = 0;
    cairo_user_to_device(context, &x, &y);
    y = std::round(y);
    cairo_device_to_user(context, &x, &y);
    return y;
}

/// Whether the context's target is a document, in which texts stay texts.
bool keepsText(cairo_t* context) {
    switch (cairo_surface_get_type(cairo_get_group_target(context))) {
    case CAIRO_SURFACE_TYPE_PDF:
    case CAIRO_SURFACE_TYPE_PS:
    case CAIRO_SURFACE_TYPE_SVG: return true;
    default: return false;
    }
}

bool hasColor(PangoGlyphString const& glyphs) {
    auto const all = std::span(glyphs.glyphs, static_cast<std::size_t>(glyphs.num_glyphs));
    return std::ranges::any_of(all, [](PangoGlyphInfo const& glyph) { return glyph.attr.is_color != 0; });
}

/// A run of emoji at the context's origin, as a picture. A document would take them at the few pixels of a
/// plain screen, although they are pictures of over a hundred.
void paintEmoji(cairo_t* context, PangoLayoutRun const& run) {
    constexpr double sharpness = 8;
    PangoRectangle bounds;
    pango_glyph_string_extents(run.glyphs, run.item->analysis.font, &bounds, nullptr);
    pango_extents_to_pixels(&bounds, nullptr);
    Owned<cairo_surface_t> const image(
        cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(bounds.width * sharpness),
                                   static_cast<int>(bounds.height * sharpness)));
    cairo_surface_set_device_scale(image.get(), sharpness, sharpness);
    Owned<cairo_t> const brush(cairo_create(image.get()));
    cairo_move_to(brush.get(), -bounds.x, -bounds.y);
    pango_cairo_show_glyph_string(brush.get(), run.item->analysis.font, run.glyphs);

    cairo_save(context);
    cairo_set_source_surface(context, image.get(), bounds.x, bounds.y);
    cairo_paint(context);
    cairo_restore(context);
}

/// Draws one run at the context's origin, `text` being that of its layout.
void drawRun(cairo_t* context, PangoLayoutRun const& run, char const* text) {
    bool const isEmoji = hasColor(*run.glyphs);
    bool const asText = keepsText(context);
    cairo_move_to(context, 0, 0);
    if (isEmoji && asText) {
        paintEmoji(context, run);
    } else if (isEmoji) {
        pango_cairo_show_glyph_string(context, run.item->analysis.font, run.glyphs);
    } else if (asText) {
        // Pango only reads the run, but its declaration does not say so.
        pango_cairo_show_glyph_item(context, text, const_cast<PangoLayoutRun*>(&run));
    } else {
        // By their outlines: shown as glyphs, letters would snap to whole pixels, each on its own, and small
        // texts on a plain screen would look unevenly spaced.
        pango_cairo_glyph_string_path(context, run.item->analysis.font, run.glyphs);
        cairo_fill(context);
    }
}

/// Draws a line from `x` on, with its baseline at `y`.
void drawLine(cairo_t* context, PangoLayoutLine* line, double x, double y, double scale) {
    char const* text = pango_layout_get_text(line->layout);
    cairo_save(context);
    cairo_translate(context, x, keepsText(context) ? y : onPixels(context, y));
    cairo_scale(context, scale, scale);
    for (auto const* entry = line->runs; entry; entry = entry->next) {
        auto const& run = *static_cast<PangoLayoutRun const*>(entry->data);
        drawRun(context, run, text);
        double const advance = pango_glyph_string_get_width(run.glyphs);
        cairo_translate(context, advance / PANGO_SCALE, 0);
    }
    cairo_restore(context);
}

} // namespace

PangoTextMeasurer::PangoTextMeasurer(std::string const& family, std::string const& language)
    : layouts(std::make_unique<PangoLayouts>(family, language)) {}

PangoTextMeasurer::~PangoTextMeasurer() = default;

TextSize PangoTextMeasurer::measure(std::string_view text, FaceFont const& font,
                                    std::optional<double> wrapWidth) const {
    auto const fitting = wrapWidth ? Fitting::wrapping : Fitting::natural;
    auto* layout = layouts->layout(text, font, fitting, wrapWidth.value_or(0));
    PangoRectangle logical;
    pango_layout_get_extents(layout, nullptr, &logical);
    return TextSize{
        .width = PangoLayouts::inPoints(logical.width, font),
        .height = PangoLayouts::inPoints(logical.height, font),
        .baseline = PangoLayouts::inPoints(pango_layout_get_baseline(layout), font),
    };
}

double PangoTextMeasurer::capHeight(FaceFont const& font) const {
    PangoRectangle ink;
    pango_layout_get_extents(layouts->layout("H", font, Fitting::natural, 0), &ink, nullptr);
    return PangoLayouts::inPoints(ink.height, font);
}

void PangoTextMeasurer::show(cairo_t* context, PlacedText const& text) const {
    auto const fitting = text.wraps ? Fitting::wrapping : text.isCut ? Fitting::ellipsis : Fitting::natural;
    auto* layout = layouts->layout(text.text, text.font, fitting, text.column.width);
    auto inPoints = [&](int pangoUnits) { return PangoLayouts::inPoints(pangoUnits, text.font); };

    // Pango swaps left and right in a paragraph that runs from right to left, but a title keeps its place
    // here: each line is drawn at the spot that the column gives it.
    Owned<PangoLayoutIter> const lines(pango_layout_get_iter(layout));
    int const firstBaseline = pango_layout_iter_get_baseline(lines.get());
    do {
        auto* line = pango_layout_iter_get_line_readonly(lines.get());
        PangoRectangle ink;
        PangoRectangle logical;
        pango_layout_line_get_extents(line, &ink, &logical);
        // Pango stretches the ellipsis of a cut text to the whole column; its letters tell where it ends.
        bool const isStretched = fitting == Fitting::ellipsis && !startsAt(text.alignment, text.text);
        auto const& extent = isStretched ? ink : logical;
        double const spare = text.column.width - inPoints(extent.width);
        double const x = text.column.x + spare * shareBefore(text.alignment) - inPoints(extent.x);
        double const y =
            text.baseline + inPoints(pango_layout_iter_get_baseline(lines.get()) - firstBaseline);
        drawLine(context, line, x, y, PangoLayouts::scale(text.font));
    } while (pango_layout_iter_next_line(lines.get()));
}

} // namespace Platform
