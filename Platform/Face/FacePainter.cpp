#include "Platform/Face/FacePainter.h"

#include "Platform/Face/FaceMetrics.h"
#include "Platform/Face/FacePalette.h"

#include <cairo.h>

#include <algorithm>
#include <numbers>

namespace Platform {
namespace {

namespace Measures = FaceMeasures;

void setColor(cairo_t* context, SRGBColor const& color) {
    cairo_set_source_rgb(context, color.red, color.green, color.blue);
}

void addRoundedRectangle(cairo_t* context, FaceRect const& rect, double radius) {
    constexpr double quarter = std::numbers::pi / 2;
    radius = std::min({radius, rect.width / 2, rect.height / 2});
    cairo_new_sub_path(context);
    cairo_arc(context, rect.right() - radius, rect.y + radius, radius, -quarter, 0);
    cairo_arc(context, rect.right() - radius, rect.bottom() - radius, radius, 0, quarter);
    cairo_arc(context, rect.x + radius, rect.bottom() - radius, radius, quarter, 2 * quarter);
    cairo_arc(context, rect.x + radius, rect.y + radius, radius, 2 * quarter, 3 * quarter);
    cairo_close_path(context);
}

void fillRounded(cairo_t* context, FaceRect const& rect, double radius, SRGBColor const& color) {
    addRoundedRectangle(context, rect, radius);
    setColor(context, color);
    cairo_fill(context);
}

void strokeRounded(cairo_t* context, FaceRect const& rect, double radius, double width,
                   SRGBColor const& color) {
    addRoundedRectangle(context, rect, radius);
    cairo_set_line_width(context, width);
    setColor(context, color);
    cairo_stroke(context);
}

FaceRect grown(FaceRect const& rect, double by) {
    return {.x = rect.x - by, .y = rect.y - by, .width = rect.width + 2 * by, .height = rect.height + 2 * by};
}

// A title may pile up marks that reach over its neighbours.
void clipTo(cairo_t* context, FaceRect const& rect) {
    cairo_rectangle(context, rect.x, rect.y, rect.width, rect.height);
    cairo_clip(context);
}

void drawChevron(cairo_t* context, PlacedButton const& button, SRGBColor const& color) {
    double const towards = button.pointing == PlacedButton::Pointing::left ? -1 : 1;
    double const tip = button.frame.middleX() + towards * Measures::chevronWidth / 2;
    double const tail = button.frame.middleX() - towards * Measures::chevronWidth / 2;
    cairo_move_to(context, tail, button.frame.middleY() - Measures::chevronHeight / 2);
    cairo_line_to(context, tip, button.frame.middleY());
    cairo_line_to(context, tail, button.frame.middleY() + Measures::chevronHeight / 2);
    cairo_set_line_width(context, Measures::chevronStroke);
    cairo_set_line_cap(context, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(context, CAIRO_LINE_JOIN_ROUND);
    setColor(context, color);
    cairo_stroke(context);
}

void drawButton(cairo_t* context, PlacedButton const& button, FaceButtonState const& state,
                FacePalette const& palette) {
    bool const isActive = state.isPressed || state.isHovered;
    if (isActive) {
        fillRounded(context, button.frame, Measures::buttonRadius,
                    state.isPressed ? palette.buttonPress : palette.buttonHover);
    }
    if (state.isFocused) {
        double const inset = Measures::focusStroke / 2;
        strokeRounded(context, grown(button.frame, -inset), Measures::buttonRadius - inset,
                      Measures::focusStroke, palette.chevron);
    }
    drawChevron(context, button, isActive ? palette.activeChevron : palette.chevron);
}

/// Around the row and not upon it: there the ring is seen whatever the colour of the meet.
void drawRowRing(cairo_t* context, PlacedRow const& row, FaceButtonState const& state,
                 FacePalette const& palette) {
    bool const isStrong = state.isFocused || state.isPressed;
    if (!isStrong && !state.isHovered) return;
    double const stroke = isStrong ? Measures::focusStroke : Measures::hoverStroke;
    strokeRounded(context, grown(row.frame, stroke / 2), row.surface->radius + stroke / 2, stroke,
                  isStrong ? palette.chevron : palette.secondary);
}

/// In the margin below the rows, where no row ever is: a disc with an exclamation mark.
void drawNoticeMark(cairo_t* context, FaceLayout const& layout, FaceGeometry const& geometry,
                    FacePalette const& palette) {
    double const margin = faceMetrics(layout.family).margin;
    double const radius = std::min(Measures::largestNoticeRadius, margin / 2 - 1);
    double const aside = geometry.cornerRadius + radius;
    double const x = layout.isRightToLeft ? aside : geometry.width - aside;
    double const y = geometry.height - margin / 2;
    cairo_arc(context, x, y, radius, 0, 2 * std::numbers::pi);
    setColor(context, palette.secondary);
    cairo_fill(context);
    cairo_move_to(context, x, y - 0.55 * radius);
    cairo_line_to(context, x, y + 0.10 * radius);
    cairo_move_to(context, x, y + 0.55 * radius);
    cairo_close_path(context); // A dot.
    cairo_set_line_width(context, 0.3 * radius);
    cairo_set_line_cap(context, CAIRO_LINE_CAP_ROUND);
    setColor(context, palette.background);
    cairo_stroke(context);
}

void drawBar(cairo_t* context, FaceRect const& bar, RowColors const& colors) {
    if (colors.barEdge) {
        auto const edge = grown(bar, Measures::barEdgeStroke);
        fillRounded(context, edge, edge.width / 2, *colors.barEdge);
    }
    fillRounded(context, bar, bar.width / 2, colors.bar);
}

/// The colours of a row without a surface of its own are those of the face.
RowColors colorsOf(PlacedRow const& row, FacePalette const& palette) {
    if (!row.surface) {
        return RowColors{.fill = palette.background,
                         .bar = palette.background,
                         .text = palette.text,
                         .duration = palette.secondary,
                         .barEdge = std::nullopt};
    }
    switch (row.surface->kind) {
    case PlacedSurface::Kind::allDayRow: return palette.allDayRow(row.surface->color);
    case PlacedSurface::Kind::card: break;
    }
    return palette.card(row.surface->color);
}

SRGBColor colorOf(PlacedText const& text, FaceRow const& row, RowColors const& colors,
                  FacePalette const& palette) {
    switch (text.role) {
    case PlacedText::Role::weekday: return palette.text;
    case PlacedText::Role::day: return palette.badgeText;
    case PlacedText::Role::label:
    case PlacedText::Role::line: return palette.secondary;
    case PlacedText::Role::name: return colors.text;
    case PlacedText::Role::duration: return colors.duration;
    case PlacedText::Role::time: break;
    }
    auto const* card = std::get_if<CardRow>(&row);
    return card ? card->timeColor : colors.text;
}

} // namespace

FacePainter::FacePainter(FaceStyle style)
    : style(std::move(style)),
      measurer(this->style.fontFamily, this->style.language) {}

FaceGeometry FacePainter::place(FaceLayout const& layout) const {
    return placeFace(layout, measurer);
}

void FacePainter::setAccent(std::optional<SRGBColor> accent) {
    style.accent = accent;
}

void FacePainter::paint(cairo_t* context, FaceLayout const& layout, FaceGeometry const& geometry,
                        FaceInteraction const& interaction) const {
    FacePalette const palette(layout, style.accent);
    cairo_save(context);
    fillRounded(context, FaceRect{.x = 0, .y = 0, .width = geometry.width, .height = geometry.height},
                geometry.cornerRadius, palette.background);

    for (auto const& button : geometry.buttons) {
        bool const isPrevious = button.action == FaceButton::Action::previousDay;
        drawButton(context, button, isPrevious ? interaction.previous : interaction.next, palette);
    }
    for (auto const& row : geometry.rows) {
        auto const colors = colorsOf(row, palette);
        if (row.surface) {
            fillRounded(context, row.frame, row.surface->radius, colors.fill);
            drawBar(context, row.surface->bar, colors);
            if (row.index < interaction.rows.size())
                drawRowRing(context, row, interaction.rows[row.index], palette);
        }
        if (row.badge) fillRounded(context, *row.badge, row.badge->width / 2, palette.badge);
        cairo_save(context);
        if (row.surface) clipTo(context, row.frame);
        for (auto const& text : row.texts) {
            setColor(context, colorOf(text, layout.rows[row.index], colors, palette));
            measurer.show(context, text);
        }
        cairo_restore(context);
    }
    if (interaction.hasNotice) drawNoticeMark(context, layout, geometry, palette);
    cairo_restore(context);
}

} // namespace Platform
