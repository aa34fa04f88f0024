#include "Platform/Face/PangoLayouts.h"

#include "Foundation/Text.h"

#include <pango/pangocairo.h>

#include <algorithm>

namespace Platform {
namespace {

using CairoHandles::Owned;

/// Near the sizes that a face uses, so that a font which is drawn differently for small sizes stays itself.
constexpr double layoutSize = 12;

/// Letters have the same widths at every scale, so that a face is laid out alike on every screen and page.
Owned<PangoContext> makeContext(PangoDirection direction, std::string const& language) {
    Owned<PangoContext> context(pango_font_map_create_context(pango_cairo_font_map_get_default()));
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

} // namespace

PangoLayouts::PangoLayouts(std::string const& family, std::string const& language)
    : leftToRight(makeContext(PANGO_DIRECTION_LTR, language)),
      rightToLeft(makeContext(PANGO_DIRECTION_RTL, language)),
      families(family.empty() ? "sans" : family + ",sans") {}

PangoLayout* PangoLayouts::layout(std::string_view text, FaceFont const& font, Fitting fitting,
                                  double width) {
    // A face has a few dozen texts; a host that shows many days must not keep them all.
    constexpr std::size_t enough = 400;
    if (kept.size() >= enough) kept.clear();
    int const units = fitting == Fitting::natural ? 0 : static_cast<int>(width / scale(font) * PANGO_SCALE);
    auto& layout = kept[Key{std::string(text), font.weight, font.figures, fitting, units}];
    if (!layout) layout = made(text, font, fitting, units);
    return layout.get();
}

double PangoLayouts::scale(FaceFont const& font) {
    return font.size / layoutSize;
}

double PangoLayouts::inPoints(int pangoUnits, FaceFont const& font) {
    return static_cast<double>(pangoUnits) / PANGO_SCALE * scale(font);
}

Owned<PangoFontDescription> PangoLayouts::description(FaceFont::Weight weight) const {
    Owned<PangoFontDescription> description(pango_font_description_new());
    pango_font_description_set_family(description.get(), families.c_str());
    pango_font_description_set_weight(description.get(), static_cast<PangoWeight>(weight));
    pango_font_description_set_absolute_size(description.get(), layoutSize * PANGO_SCALE);
    return description;
}

Owned<PangoLayout> PangoLayouts::made(std::string_view text, FaceFont const& font, Fitting fitting,
                                      int width) const {
    bool const isRightToLeft = Foundation::Text::startsRightToLeft(text);
    Owned<PangoLayout> layout(pango_layout_new((isRightToLeft ? rightToLeft : leftToRight).get()));
    pango_layout_set_auto_dir(layout.get(), FALSE);
    pango_layout_set_font_description(layout.get(), description(font.weight).get());
    if (font.figures == FaceFont::Figures::tabular) {
        Owned<PangoAttrList> const attributes(pango_attr_list_new());
        pango_attr_list_insert(attributes.get(), pango_attr_font_features_new("tnum"));
        pango_layout_set_attributes(layout.get(), attributes.get());
    }
    switch (fitting) {
    case Fitting::natural: pango_layout_set_single_paragraph_mode(layout.get(), TRUE); break;
    case Fitting::ellipsis:
        pango_layout_set_single_paragraph_mode(layout.get(), TRUE);
        pango_layout_set_ellipsize(layout.get(), PANGO_ELLIPSIZE_END);
        pango_layout_set_width(layout.get(), width);
        break;
    case Fitting::wrapping:
        pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD_CHAR);
        pango_layout_set_width(layout.get(), width);
        break;
    }
    pango_layout_set_text(layout.get(), text.data(), static_cast<int>(text.size()));
    return layout;
}

} // namespace Platform
