#include "Platform/Face/FaceGeometry.h"

#include "Foundation/Text.h"
#include "Platform/Face/FaceMetrics.h"

#include <algorithm>
#include <cmath>

namespace Platform {
namespace {

using enum FaceFont::Weight;
using Role = PlacedText::Role;
using Alignment = PlacedText::Alignment;
namespace Measures = FaceMeasures;

FaceFont timeFont(CardRow const& card) {
    return FaceFont{.size = card.timeFontSize, .weight = medium, .figures = FaceFont::Figures::tabular};
}

FaceFont durationFont(CardRow const& card) {
    return FaceFont{.size = card.durationFontSize, .weight = medium, .figures = FaceFont::Figures::tabular};
}

/// The room that all cards keep for their times and durations, so that these stand under each other.
struct CardColumns {
    double time;
    double duration;
};

/// Walks down the layout, in left-to-right order; the finished face is mirrored as a whole.
class Placer {
public:
    Placer(FaceLayout const& layout, TextMeasurer const& measurer)
        : layout(layout),
          measurer(measurer),
          metrics(faceMetrics(layout.family)),
          top(metrics.margin),
          columns(cardColumns()) {}

    FaceGeometry place() {
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

private:
    double widthOf(std::string_view text, FaceFont const& font) const {
        return measurer.measure(text, font, std::nullopt).width;
    }

    CardColumns cardColumns() const {
        CardColumns widest{.time = 0, .duration = 0};
        for (auto const& row : layout.rows) {
            auto const* card = std::get_if<CardRow>(&row);
            if (!card) continue;
            widest.time =
                std::max(widest.time, widthOf(Foundation::Text::neutralized(card->time), timeFont(*card)));
            if (!card->duration) continue;
            auto const duration = Foundation::Text::neutralized(*card->duration);
            widest.duration = std::max(
                {widest.duration, Measures::durationColumnWidth, widthOf(duration, durationFont(*card))});
        }
        return widest;
    }

    double gapBefore(FaceRow const& row) const {
        if (rows.empty()) return 0;
        auto const& previous = layout.rows[rows.size() - 1];
        if (std::holds_alternative<HeaderRow>(previous)) return metrics.headerGap;
        bool const isAllDay =
            std::holds_alternative<LabelRow>(previous) || std::holds_alternative<BarRow>(previous);
        if (isAllDay && std::holds_alternative<BarRow>(row)) return Measures::barRowGap;
        if (std::holds_alternative<CardRow>(previous) && std::holds_alternative<CardRow>(row)) {
            return metrics.cardGap;
        }
        return 0;
    }

    /// The whole width between the margins, from `top` down.
    FaceRect rowFrame(double height) const {
        return FaceRect{
            .x = metrics.margin, .y = top, .width = metrics.width - 2 * metrics.margin, .height = height};
    }

    /// A text on one line whose capitals stand in the middle of its column.
    PlacedText centeredText(Role role, std::string text, FaceFont font, FaceRect column,
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

    PlacedRow placeRow(HeaderRow const& header) {
        auto const frame = rowFrame(metrics.headerHeight);
        placeButton(header.previous, metrics.chevronInset, frame.middleY(), PlacedButton::Pointing::left);
        placeButton(header.next, metrics.width - metrics.chevronInset, frame.middleY(),
                    PlacedButton::Pointing::right);

        // A weekday that is too long between the buttons is set smaller rather than cut.
        auto const weekday = Foundation::Text::neutralized(header.weekday);
        double const room = metrics.width - 2 * (metrics.chevronInset + Measures::buttonSide / 2) -
                            Measures::badgeGap - metrics.badgeDiameter;
        FaceFont font{.size = metrics.weekdayFontSize, .weight = semibold};
        double width = widthOf(weekday, font);
        if (width > room) {
            font.size = std::max(font.size * room / width, metrics.weekdayFontSize / 2);
            width = std::min(widthOf(weekday, font), room);
        }

        double const group = width + Measures::badgeGap + metrics.badgeDiameter;
        FaceRect const weekdayColumn{
            .x = (metrics.width - group) / 2, .y = top, .width = width, .height = frame.height};
        FaceRect const badge{.x = weekdayColumn.right() + Measures::badgeGap,
                             .y = frame.middleY() - metrics.badgeDiameter / 2,
                             .width = metrics.badgeDiameter,
                             .height = metrics.badgeDiameter};
        auto const day = std::to_string(header.day);
        FaceFont const dayFont{.size = metrics.badgeFontSize, .weight = bold};
        return PlacedRow{
            .index = 0,
            .frame = frame,
            .accessibleName = weekday + " " + day,
            .texts = {centeredText(Role::weekday, weekday, font, weekdayColumn, Alignment::left),
                      centeredText(Role::day, day, dayFont, badge, Alignment::center)},
            .surface = std::nullopt,
            .badge = badge,
        };
    }

    void placeButton(FaceButton const& button, double middleX, double middleY,
                     PlacedButton::Pointing pointing) {
        buttons.push_back(PlacedButton{
            .action = button.action,
            .accessibleName = Foundation::Text::neutralized(button.title),
            .frame = FaceRect{.x = middleX - Measures::buttonSide / 2,
                              .y = middleY - Measures::buttonSide / 2,
                              .width = Measures::buttonSide,
                              .height = Measures::buttonSide},
            .pointing = pointing,
        });
    }

    PlacedRow placeRow(LabelRow const& label) {
        allDayLabel = Foundation::Text::neutralized(label.text);
        FaceFont const font{.size = Measures::labelFontSize, .weight = medium};
        return placeLines(Role::label, allDayLabel, font, 0, Alignment::left);
    }

    PlacedRow placeRow(BarRow const& row) {
        auto const frame = rowFrame(Measures::barRowHeight);
        FaceRect const bar{.x = frame.x + Measures::barRowInset,
                           .y = frame.y + Measures::barRowInset,
                           .width = Measures::barRowBarWidth,
                           .height = frame.height - 2 * Measures::barRowInset};
        double const nameLeft = bar.right() + Measures::barRowNameGap;
        FaceRect const column{.x = nameLeft,
                              .y = frame.y,
                              .width = frame.right() - Measures::cardPadding - nameLeft,
                              .height = frame.height};
        auto const name = Foundation::Text::neutralized(row.name);
        FaceFont const font{.size = Measures::barRowFontSize, .weight = medium};
        return PlacedRow{
            .index = 0,
            .frame = frame,
            .accessibleName = allDayLabel.empty() ? name : name + ", " + allDayLabel,
            .texts = {centeredText(Role::name, name, font, column, Alignment::left)},
            .surface = PlacedSurface{.kind = PlacedSurface::Kind::allDayRow,
                                     .color = row.color,
                                     .radius = Measures::barRowRadius,
                                     .bar = bar},
            .badge = std::nullopt,
        };
    }

    PlacedRow placeRow(SpaceRow const& space) const {
        return PlacedRow{.index = 0,
                         .frame = rowFrame(space.height),
                         .accessibleName = {},
                         .texts = {},
                         .surface = std::nullopt,
                         .badge = std::nullopt};
    }

    PlacedRow placeRow(CardRow const& card) const {
        auto const frame = rowFrame(card.height);
        FaceRect const bar{.x = frame.x + Measures::cardBarInset,
                           .y = frame.y + Measures::cardBarInset,
                           .width = card.barWidth,
                           .height = frame.height - 2 * Measures::cardBarInset};
        auto columnEndingAt = [&](double right, double width) {
            return FaceRect{.x = right - width, .y = frame.y, .width = width, .height = frame.height};
        };

        std::vector<PlacedText> texts;
        auto const name = Foundation::Text::neutralized(card.name);
        auto const time = Foundation::Text::neutralized(card.time);
        auto accessibleName = name + ", " + time;
        double right = frame.right() - Measures::cardPadding;
        if (columns.duration > 0) {
            auto const column = columnEndingAt(right, columns.duration);
            if (card.duration) {
                auto duration = Foundation::Text::neutralized(*card.duration);
                accessibleName += ", " + duration;
                texts.push_back(centeredText(Role::duration, std::move(duration), durationFont(card), column,
                                             Alignment::right));
            }
            right = column.x - card.spacing;
        }
        auto const timeColumn = columnEndingAt(right, columns.time);
        texts.push_back(centeredText(Role::time, time, timeFont(card), timeColumn, Alignment::right));

        double const nameLeft = bar.right() + card.spacing;
        double const nameWidth = std::max(0.0, timeColumn.x - card.spacing - nameLeft);
        FaceFont const nameFont{.size = metrics.nameFontSize, .weight = medium};
        FaceRect const nameColumn{.x = nameLeft, .y = frame.y, .width = nameWidth, .height = frame.height};
        texts.insert(texts.begin(), centeredText(Role::name, name, nameFont, nameColumn, Alignment::left));
        return PlacedRow{
            .index = 0,
            .frame = frame,
            .accessibleName = std::move(accessibleName),
            .texts = std::move(texts),
            .surface = PlacedSurface{.kind = PlacedSurface::Kind::card,
                                     .color = card.color,
                                     .radius = metrics.cardRadius,
                                     .bar = bar},
            .badge = std::nullopt,
        };
    }

    PlacedRow placeRow(LineRow const& line) const {
        FaceFont const font{.size = Measures::lineFontSize, .weight = regular};
        return placeLines(Role::line, Foundation::Text::neutralized(line.text), font, Measures::linePadding,
                          Alignment::center);
    }

    PlacedRow placeRow(MoreRow const& more) const {
        FaceFont const font{.size = metrics.moreFontSize, .weight = regular};
        return placeLines(Role::line, Foundation::Text::neutralized(more.text), font, more.padding,
                          Alignment::center);
    }

    /// A text as high as it needs, broken into lines where it is wider than the face.
    PlacedRow placeLines(Role role, std::string text, FaceFont const& font, double padding,
                         Alignment alignment) const {
        double const width = metrics.width - 2 * metrics.margin;
        auto const size = measurer.measure(text, font, width);
        // Whole points, so that the surfaces below keep their sharp edges.
        auto const frame = rowFrame(std::ceil(size.height) + 2 * padding);
        FaceRect const column{.x = frame.x, .y = frame.y + padding, .width = width, .height = size.height};
        return PlacedRow{
            .index = 0,
            .frame = frame,
            .accessibleName = text,
            .texts = {PlacedText{.role = role,
                                 .text = std::move(text),
                                 .font = font,
                                 .column = column,
                                 .baseline = column.y + size.baseline,
                                 .alignment = alignment,
                                 .wraps = true,
                                 .isCut = false}},
            .surface = std::nullopt,
            .badge = std::nullopt,
        };
    }

    FaceLayout const& layout;
    TextMeasurer const& measurer;
    FaceMetrics metrics;
    double top;
    CardColumns columns;
    std::string allDayLabel;
    std::vector<PlacedRow> rows;
    std::vector<PlacedButton> buttons;
};

Alignment opposite(Alignment alignment) {
    switch (alignment) {
    case Alignment::left: return Alignment::right;
    case Alignment::center: return Alignment::center;
    case Alignment::right: return Alignment::left;
    }
    return alignment;
}

void mirror(FaceGeometry& geometry) {
    auto flip = [&](FaceRect& rect) { rect.x = geometry.width - rect.right(); };
    for (auto& row : geometry.rows) {
        flip(row.frame);
        for (auto& text : row.texts) {
            flip(text.column);
            text.alignment = opposite(text.alignment);
        }
        if (row.surface) flip(row.surface->bar);
        if (row.badge) flip(*row.badge);
    }
    for (auto& button : geometry.buttons) {
        flip(button.frame);
        button.pointing = button.pointing == PlacedButton::Pointing::left ? PlacedButton::Pointing::right
                                                                          : PlacedButton::Pointing::left;
    }
}

} // namespace

FaceGeometry placeFace(FaceLayout const& layout, TextMeasurer const& measurer) {
    auto geometry = Placer(layout, measurer).place();
    if (layout.isRightToLeft) mirror(geometry);
    return geometry;
}

FaceHit hitTest(FaceGeometry const& geometry, double x, double y) {
    for (auto const& button : geometry.buttons) {
        if (button.frame.contains(x, y)) return button.action;
    }
    for (auto const& row : geometry.rows) {
        if (row.frame.contains(x, y)) return row.index;
    }
    return std::monostate{};
}

} // namespace Platform
