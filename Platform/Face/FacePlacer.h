#pragma once

#include "Platform/Face/FaceGeometry.h"
#include "Platform/Face/FaceMetrics.h"

namespace Platform {

/// Walks down a layout once and places each row under the one before, from left to right. Only `placeFace`
/// uses it; that also mirrors the finished face where it runs the other way.
class FacePlacer {
public:
    /// Both must outlive the placer.
    FacePlacer(FaceLayout const& layout, TextMeasurer const& measurer);

    FaceGeometry place() &&;

private:
    /// The room that all cards keep for their times and durations, so that these stand under each other.
    struct CardColumns {
        double time;
        double duration;
    };

    [[nodiscard]] CardColumns cardColumns() const;
    [[nodiscard]] double gapBefore(FaceRow const& row) const;

    PlacedRow placeRow(HeaderRow const& row);
    PlacedRow placeRow(LabelRow const& row);
    PlacedRow placeRow(BarRow const& row) const;
    PlacedRow placeRow(SpaceRow const& row) const;
    PlacedRow placeRow(CardRow const& row) const;
    PlacedRow placeRow(LineRow const& row) const;
    PlacedRow placeRow(MoreRow const& row) const;
    void placeButton(FaceButton const& button, double middleX, double middleY,
                     PlacedButton::Pointing pointing);

    /// The whole width between the margins, from `top` down.
    [[nodiscard]] FaceRect rowFrame(double height) const;

    /// A text as high as it needs, broken into lines where it is wider than the face.
    [[nodiscard]] PlacedRow placeLines(PlacedText::Role role, std::string text, FaceFont const& font,
                                       double padding, PlacedText::Alignment alignment) const;

    /// A text on one line whose capitals stand in the middle of its column.
    [[nodiscard]] PlacedText centeredText(PlacedText::Role role, std::string text, FaceFont const& font,
                                          FaceRect const& column, PlacedText::Alignment alignment) const;

    [[nodiscard]] double widthOf(std::string_view text, FaceFont const& font) const;

    FaceLayout const& layout;
    TextMeasurer const& measurer;
    FaceMetrics metrics;
    double top;
    CardColumns columns;
    std::string allDayLabel;
    std::vector<PlacedRow> rows;
    std::vector<PlacedButton> buttons;
};

} // namespace Platform
