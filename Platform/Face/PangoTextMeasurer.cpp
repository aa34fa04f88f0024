#include "Platform/Face/PangoTextMeasurer.h"

#include "Foundation/Text.h"
#include "Platform/Face/CairoHandles.h"

#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <span>
#include <tuple>

namespace Platform {
namespace {

using CairoHandles::Owned;

double inPoints(int pangoUnits) {
    return static_cast<double>(pangoUnits) / PANGO_SCALE;
}

int inPangoUnits(double points) {
    return static_cast<int>(points * PANGO_SCALE);
}

/// Letters have the same widths at every scale, so that a face is laid out alike on every screen and page.
Owned<PangoContext> makeContext(PangoFontMap* fonts, PangoDirection direction, std::string const& language) {
    Owned<PangoContext> context(pango_font_map_create_context(fonts));
    Owned<cairo_font_options_t> const options(cairo_font_options_create());
    cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
    pango_cairo_context_set_font_options(context.get(), options.get());
    pango_context_set_round_glyph_positions(context.get(), FALSE);
    pango_context_set_base_dir(context.get(), direction);
    if (!language.empty()) {
        pango_context_set_language(context.get(), pango_language_from_string(language.c_str()));
    }
    return context;
}

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

/// Draws a line by its outlines. Shown as glyphs, letters would snap to whole pixels, each on its own, and
/// small texts on a plain screen would look unevenly spaced. Emoji have no outlines and are shown.
void fillLine(cairo_t* context, PangoLayoutLine* line, double x, double y) {
    for (auto const* entry = line->runs; entry; entry = entry->next) {
        auto const& run = *static_cast<PangoLayoutRun const*>(entry->data);
        auto* font = run.item->analysis.font;
        cairo_move_to(context, x, y);
        if (hasColor(*run.glyphs)) {
            pango_cairo_show_glyph_string(context, font, run.glyphs);
        } else {
            pango_cairo_glyph_string_path(context, font, run.glyphs);
            cairo_fill(context);
        }
        x += inPoints(pango_glyph_string_get_width(run.glyphs));
    }
}

enum class Fitting : std::uint8_t { natural, ellipsis, wrapping };

} // namespace

class PangoTextMeasurer::Layouts {
public:
    Layouts(std::string const& family, std::string const& language)
        : leftToRight(makeContext(pango_cairo_font_map_get_default(), PANGO_DIRECTION_LTR, language)),
          rightToLeft(makeContext(pango_cairo_font_map_get_default(), PANGO_DIRECTION_RTL, language)),
          families(family.empty() ? "sans" : family + ",sans") {}

    PangoLayout* layout(std::string_view text, FaceFont const& font, Fitting fitting, double width) {
        // A face has a few dozen texts; a host that shows many days must not keep them all.
        if (kept.size() > 400) kept.clear();
        auto& layout = kept[Key{std::string(text), font.size, font.weight, font.figures, fitting,
                                fitting == Fitting::natural ? 0 : inPangoUnits(width)}];
        if (!layout) layout = made(text, font, fitting, width);
        return layout.get();
    }

    double capHeight(FaceFont const& font) {
        PangoRectangle ink;
        pango_layout_get_extents(layout("H", font, Fitting::natural, 0), &ink, nullptr);
        return inPoints(ink.height);
    }

private:
    using Key = std::tuple<std::string, double, FaceFont::Weight, FaceFont::Figures, Fitting, int>;

    Owned<PangoLayout> made(std::string_view text, FaceFont const& font, Fitting fitting,
                            double width) const {
        bool const isRightToLeft = Foundation::Text::startsRightToLeft(text);
        Owned<PangoLayout> layout(pango_layout_new((isRightToLeft ? rightToLeft : leftToRight).get()));
        pango_layout_set_auto_dir(layout.get(), FALSE);

        Owned<PangoFontDescription> const description(pango_font_description_new());
        pango_font_description_set_family_static(description.get(), families.c_str());
        pango_font_description_set_weight(description.get(), static_cast<PangoWeight>(font.weight));
        pango_font_description_set_absolute_size(description.get(), font.size * PANGO_SCALE);
        pango_layout_set_font_description(layout.get(), description.get());

        if (font.figures == FaceFont::Figures::tabular) {
            Owned<PangoAttrList> const attributes(pango_attr_list_new());
            pango_attr_list_insert(attributes.get(), pango_attr_font_features_new("tnum"));
            pango_layout_set_attributes(layout.get(), attributes.get());
        }
        if (fitting == Fitting::wrapping) {
            pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD_CHAR);
        } else {
            pango_layout_set_single_paragraph_mode(layout.get(), TRUE);
        }
        if (fitting == Fitting::ellipsis) pango_layout_set_ellipsize(layout.get(), PANGO_ELLIPSIZE_END);
        if (fitting != Fitting::natural) pango_layout_set_width(layout.get(), inPangoUnits(width));
        pango_layout_set_text(layout.get(), text.data(), static_cast<int>(text.size()));
        return layout;
    }

    Owned<PangoContext> leftToRight;
    Owned<PangoContext> rightToLeft;
    std::string families;
    std::map<Key, Owned<PangoLayout>> kept;
};

PangoTextMeasurer::PangoTextMeasurer(std::string const& family, std::string const& language)
    : layouts(std::make_unique<Layouts>(family, language)) {}

PangoTextMeasurer::~PangoTextMeasurer() = default;

TextSize PangoTextMeasurer::measure(std::string_view text, FaceFont const& font,
                                    std::optional<double> wrapWidth) const {
    auto* layout =
        layouts->layout(text, font, wrapWidth ? Fitting::wrapping : Fitting::natural, wrapWidth.value_or(0));
    PangoRectangle logical;
    pango_layout_get_extents(layout, nullptr, &logical);
    return TextSize{
        .width = inPoints(logical.width),
        .height = inPoints(logical.height),
        .baseline = inPoints(pango_layout_get_baseline(layout)),
    };
}

double PangoTextMeasurer::capHeight(FaceFont const& font) const {
    return layouts->capHeight(font);
}

void PangoTextMeasurer::show(cairo_t* context, PlacedText const& text) const {
    auto const fitting = text.wraps ? Fitting::wrapping : text.isCut ? Fitting::ellipsis : Fitting::natural;
    auto* layout = layouts->layout(text.text, text.font, fitting, text.column.width);

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
        auto const& extent =
            fitting == Fitting::ellipsis && !startsAt(text.alignment, text.text) ? ink : logical;
        double const spare = text.column.width - inPoints(extent.width);
        double const x = text.column.x + spare * shareBefore(text.alignment) - inPoints(extent.x);
        double const y =
            text.baseline + inPoints(pango_layout_iter_get_baseline(lines.get()) - firstBaseline);
        if (keepsText(context)) {
            cairo_move_to(context, x, y);
            pango_cairo_show_layout_line(context, line);
        } else {
            fillLine(context, line, x, onPixels(context, y));
        }
    } while (pango_layout_iter_next_line(lines.get()));
}

} // namespace Platform
