#pragma once

#include "Platform/Face/FaceLayout.h"
#include "Platform/Face/TextMeasurer.h"

#include <string>
#include <variant>
#include <vector>

/// Where everything of a face stands, in points from its upper left corner, already mirrored for a face that
/// runs from right to left. The painter, the window's pointer, the tooltips and the screen reader share it.
namespace Platform {

struct FaceRect {
    double x;
    double y;
    double width;
    double height;

    [[nodiscard]] constexpr double right() const { return x + width; }
    [[nodiscard]] constexpr double bottom() const { return y + height; }
    [[nodiscard]] constexpr double middleX() const { return x + width / 2; }
    [[nodiscard]] constexpr double middleY() const { return y + height / 2; }
    /// The left and the upper edge belong to it, the right and the lower one do not.
    [[nodiscard]] constexpr bool contains(double pointX, double pointY) const {
        return pointX >= x && pointX < right() && pointY >= y && pointY < bottom();
    }

    bool operator==(FaceRect const&) const = default;
};

/// A text in its column. One that is wider than the column ends in an ellipsis, or is broken into lines where
/// it `wraps`.
struct PlacedText {
    enum class Role : std::uint8_t { weekday, day, label, name, time, duration, line };
    enum class Alignment : std::uint8_t { left, center, right };

    Role role;
    std::string text; ///< Safe to draw: no control characters.
    FaceFont font;
    FaceRect column;
    double baseline; ///< Of the first line.
    Alignment alignment;
    bool wraps;
    bool isCut; ///< Does not show whole: a tooltip should tell it.

    bool operator==(PlacedText const&) const = default;
};

/// The coloured surface of an all-day row or a card, with its bar.
struct PlacedSurface {
    enum class Kind : std::uint8_t { allDayRow, card };

    Kind kind;
    FaceColor color;
    double radius;
    FaceRect bar;

    bool operator==(PlacedSurface const&) const = default;
};

/// One row of the layout.
struct PlacedRow {
    std::size_t index = 0; ///< In `FaceLayout::rows`.
    FaceRect frame;
    std::string accessibleName; ///< What a screen reader says; empty for empty height.
    std::vector<PlacedText> texts = {};
    std::optional<PlacedSurface> surface = std::nullopt;
    std::optional<FaceRect> badge = std::nullopt; ///< The circle behind the day of the header.

    bool operator==(PlacedRow const&) const = default;
};

/// A day button. All of its frame answers.
struct PlacedButton {
    enum class Pointing : std::uint8_t { left, right };

    FaceButton::Action action;
    std::string accessibleName;
    FaceRect frame;
    Pointing pointing;

    bool operator==(PlacedButton const&) const = default;
};

struct FaceGeometry {
    double width;
    double height;
    double cornerRadius;
    std::vector<PlacedRow> rows;       ///< One for each row of the layout, in its order.
    std::vector<PlacedButton> buttons; ///< In the layout's order: previous, next.

    bool operator==(FaceGeometry const&) const = default;
};

FaceGeometry placeFace(FaceLayout const& layout, TextMeasurer const& measurer);

/// What stands at a point: nothing, a button, or the index of a row.
using FaceHit = std::variant<std::monostate, FaceButton::Action, std::size_t>;
FaceHit hitTest(FaceGeometry const& geometry, double x, double y);

} // namespace Platform
