#include "Platform/Face/FacePlacer.h"

#include "Foundation/Text.h"

#include <algorithm>
#include <cmath>

namespace Platform {
namespace {

using enum FaceFont::Weight;
using Foundation::Text::neutralized;
using Role = PlacedText::Role;
using Alignment = PlacedText::Alignment;
namespace Measures = FaceMeasures;

FaceFont tabular(double size) {
    return FaceFont{.size = size, .weight = medium, .figures = FaceFont::Figures::tabular};
}

std::string shownName(std::string_view name) {
    return neutralized(Foundation::Text::truncated(name, Measures::longestName));
}

/// A column of a card, as high as the card.
FaceRect columnEndingAt(double right, double width, FaceRect const& card) {
    return FaceRect{.x = right - width, .y = card.y, .width = width, .height = card.height};
}

/// A bar at the left edge of a surface, `inset` from its other sides too.
FaceRect barIn(FaceRect const& surface, double inset, double width) {
    return FaceRect{
        .x = surface.x + inset, .y = surface.y + inset, .width = width, .height = surface.height - 2 * inset};
}

} // namespace

FacePlacer::FacePlacer(FaceLayout const& layout, TextMeasurer const& measurer)
    : layout(layout),
      measurer(measurer),
      metrics(faceMetrics(layout.family)),
      top(metrics.margin),
      columns(cardColumns()) {}

FaceGeometry FacePlacer::place() && {
    for (auto const& row : layout.rows) {
        top += gapBefore(row);
        auto placed = std::visit([this](auto const& each) { return placeRow(each); }, row);
        placed.index = rows.size();
        top = placed.frame.bottom();
        rows.push_back(std::move(placed));
    }
    return FaceGeometry{
        .width = metrics.width,
        .height = std::max(metrics.height, top + metrics.margin),
        .cornerRadius = Measures::cornerRadius,
        .rows = std::move(rows),
        .buttons = std::move(buttons),
    };
}

FacePlacer::CardColumns FacePlacer::cardColumns() const {
    CardColumns widest{.time = 0, .duration = 0};
    for (auto const& row : layout.rows) {
        auto const* card = std::get_if<CardRow>(&row);
        if (!card) continue;
        widest.time = std::max(widest.time, widthOf(neutralized(card->time), tabular(card->timeFontSize)));
        if (!card->duration) continue;
        double const width = widthOf(neutralized(*card->duration), tabular(card->durationFontSize));
        widest.duration = std::max({widest.duration, width, Measures::durationColumnWidth});
    }
    return widest;
}

double FacePlacer::gapBefore(FaceRow const& row) const {
    if (rows.empty()) return 0;
    auto const& previous = layout.rows[rows.size() - 1];
    if (std::holds_alternative<HeaderRow>(previous)) return metrics.headerGap;
    bool const isInAllDaySection =
        std::holds_alternative<LabelRow>(previous) || std::holds_alternative<BarRow>(previous);
    if (isInAllDaySection && std::holds_alternative<BarRow>(row)) return Measures::barRowGap;
    bool const isBetweenCards =
        std::holds_alternative<CardRow>(previous) && std::holds_alternative<CardRow>(row);
    return isBetweenCards ? metrics.cardGap : 0;
}

PlacedRow FacePlacer::placeRow(HeaderRow const& row) {
    auto const frame = rowFrame(metrics.headerHeight);
    placeButton(row.previous, metrics.chevronInset, frame.middleY(), PlacedButton::Pointing::left);
    placeButton(row.next, metrics.width - metrics.chevronInset, frame.middleY(),
                PlacedButton::Pointing::right);

    // A weekday that is too long between the buttons is set smaller rather than cut.
    auto const weekday = neutralized(row.weekday);
    double const room = metrics.width - 2 * (metrics.chevronInset + Measures::buttonSide / 2) -
                        Measures::badgeGap - metrics.badgeDiameter;
    FaceFont font{.size = metrics.weekdayFontSize, .weight = semibold};
    double width = widthOf(weekday, font);
    if (width > room) {
        font.size = std::max(font.size * room / width, metrics.weekdayFontSize / 2);
        width = std::min(widthOf(weekday, font), room);
    }

    double const group = width + Measures::badgeGap + metrics.badgeDiameter;
    FaceRect const column{.x = (metrics.width - group) / 2, .y = top, .width = width, .height = frame.height};
    FaceRect const badge{.x = column.right() + Measures::badgeGap,
                         .y = frame.middleY() - metrics.badgeDiameter / 2,
                         .width = metrics.badgeDiameter,
                         .height = metrics.badgeDiameter};
    auto const day = std::to_string(row.day);
    FaceFont const dayFont{.size = metrics.badgeFontSize, .weight = bold};
    PlacedRow placed{.frame = frame, .accessibleName = weekday + " " + day};
    placed.texts.push_back(centeredText(Role::weekday, weekday, font, column, Alignment::left));
    placed.texts.push_back(centeredText(Role::day, day, dayFont, badge, Alignment::center));
    placed.badge = badge;
    return placed;
}

void FacePlacer::placeButton(FaceButton const& button, double middleX, double middleY,
                             PlacedButton::Pointing pointing) {
    constexpr double side = Measures::buttonSide;
    buttons.push_back(PlacedButton{
        .action = button.action,
        .accessibleName = neutralized(button.title),
        .frame = FaceRect{.x = middleX - side / 2, .y = middleY - side / 2, .width = side, .height = side},
        .pointing = pointing,
    });
}

PlacedRow FacePlacer::placeRow(LabelRow const& row) {
    allDayLabel = neutralized(row.text);
    FaceFont const font{.size = Measures::labelFontSize, .weight = medium};
    return placeLines(Role::label, allDayLabel, font, 0, Alignment::left);
}

PlacedRow FacePlacer::placeRow(BarRow const& row) const {
    auto const frame = rowFrame(Measures::barRowHeight);
    auto const bar = barIn(frame, Measures::barRowInset, Measures::barRowBarWidth);
    double const nameLeft = bar.right() + Measures::barRowNameGap;
    double const nameRight = frame.right() - Measures::cardPadding;
    auto const name = shownName(row.name);
    FaceFont const font{.size = Measures::barRowFontSize, .weight = medium};

    PlacedRow placed{.frame = frame,
                     .accessibleName = allDayLabel.empty() ? name : name + ", " + allDayLabel};
    placed.texts.push_back(centeredText(
        Role::name, name, font, columnEndingAt(nameRight, nameRight - nameLeft, frame), Alignment::left));
    placed.surface = PlacedSurface{.kind = PlacedSurface::Kind::allDayRow,
                                   .color = row.color,
                                   .radius = Measures::barRowRadius,
                                   .bar = bar};
    return placed;
}

PlacedRow FacePlacer::placeRow(SpaceRow const& row) const {
    return PlacedRow{.frame = rowFrame(row.height), .accessibleName = {}};
}

PlacedRow FacePlacer::placeRow(CardRow const& row) const {
    auto const frame = rowFrame(row.height);
    auto const bar = barIn(frame, Measures::cardBarInset, row.barWidth);
    auto const name = shownName(row.name);
    auto const time = neutralized(row.time);
    auto const duration = row.duration ? neutralized(*row.duration) : std::string();

    // The columns are laid from the card's far edge inward; the name gets what they leave.
    double const edge = frame.right() - Measures::cardPadding;
    auto const durationColumn = columnEndingAt(edge, columns.duration, frame);
    double const timeEnd = columns.duration > 0 ? durationColumn.x - row.spacing : edge;
    auto const timeColumn = columnEndingAt(timeEnd, columns.time, frame);
    double const nameLeft = bar.right() + row.spacing;
    double const nameRight = std::max(nameLeft, timeColumn.x - row.spacing);
    auto const nameColumn = columnEndingAt(nameRight, nameRight - nameLeft, frame);
    FaceFont const nameFont{.size = metrics.nameFontSize, .weight = medium};

    PlacedRow placed{.frame = frame, .accessibleName = name + ", " + time};
    placed.texts.push_back(centeredText(Role::name, name, nameFont, nameColumn, Alignment::left));
    placed.texts.push_back(
        centeredText(Role::time, time, tabular(row.timeFontSize), timeColumn, Alignment::right));
    if (row.duration) {
        placed.accessibleName += ", " + duration;
        placed.texts.push_back(centeredText(Role::duration, duration, tabular(row.durationFontSize),
                                            durationColumn, Alignment::right));
    }
    placed.surface = PlacedSurface{
        .kind = PlacedSurface::Kind::card, .color = row.color, .radius = metrics.cardRadius, .bar = bar};
    return placed;
}

PlacedRow FacePlacer::placeRow(LineRow const& row) const {
    FaceFont const font{.size = Measures::lineFontSize, .weight = regular};
    return placeLines(Role::line, neutralized(row.text), font, Measures::linePadding, Alignment::center);
}

PlacedRow FacePlacer::placeRow(MoreRow const& row) const {
    FaceFont const font{.size = metrics.moreFontSize, .weight = regular};
    return placeLines(Role::line, neutralized(row.text), font, row.padding, Alignment::center);
}

FaceRect FacePlacer::rowFrame(double height) const {
    return FaceRect{
        .x = metrics.margin, .y = top, .width = metrics.width - 2 * metrics.margin, .height = height};
}

PlacedRow FacePlacer::placeLines(Role role, std::string text, FaceFont const& font, double padding,
                                 Alignment alignment) const {
    double const width = metrics.width - 2 * metrics.margin;
    auto const size = measurer.measure(text, font, width);
    // Whole points, so that the surfaces below keep their sharp edges.
    auto const frame = rowFrame(std::ceil(size.height) + 2 * padding);
    FaceRect const column{.x = frame.x, .y = frame.y + padding, .width = width, .height = size.height};
    PlacedRow placed{.frame = frame, .accessibleName = text};
    placed.texts.push_back(PlacedText{.role = role,
                                      .text = std::move(text),
                                      .font = font,
                                      .column = column,
                                      .baseline = column.y + size.baseline,
                                      .alignment = alignment,
                                      .wraps = true,
                                      .isCut = false});
    return placed;
}

PlacedText FacePlacer::centeredText(Role role, std::string text, FaceFont const& font, FaceRect const& column,
                                    Alignment alignment) const {
    bool const isCut = widthOf(text, font) > column.width;
    return PlacedText{
        .role = role,
        .text = std::move(text),
        .font = font,
        .column = column,
        .baseline = column.middleY() + measurer.capHeight(font) / 2,
        .alignment = alignment,
        .wraps = false,
        .isCut = isCut,
    };
}

double FacePlacer::widthOf(std::string_view text, FaceFont const& font) const {
    return measurer.measure(text, font, std::nullopt).width;
}

} // namespace Platform
