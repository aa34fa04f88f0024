#pragma once

#include "Platform/Appearance/ColorScheme.h"
#include "Platform/WidgetHost/WidgetFamily.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

/// A face as plain data: which rows stand under each other, with their texts, colours and sizes. Lengths are
/// points, which are pixels at scale 1.
namespace Platform {

/// An opaque sRGB colour (IEC 61966-2-1), channels from 0 to 1.
struct SRGBColor {
    double red;
    double green;
    double blue;

    bool operator==(SRGBColor const&) const = default;
};

/// The desktop's accent colour, or the layout's own where it has none; resolved when the face is drawn.
struct AccentColor {
    bool operator==(AccentColor const&) const = default;
};

using FaceColor = std::variant<SRGBColor, AccentColor>;

/// A button in the header. Its whole frame answers.
struct FaceButton {
    enum class Action : std::uint8_t { previousDay, nextDay };
    Action action;
    std::string systemImage; ///< "chevron.left" or "chevron.right"
    std::string title;       ///< What a screen reader says.

    bool operator==(FaceButton const&) const = default;
};

/// The badge between the two buttons.
struct HeaderRow {
    FaceButton previous;
    std::string weekday;
    std::int64_t day;
    FaceButton next;

    bool operator==(HeaderRow const&) const = default;
};

/// The label above the all-day rows.
struct LabelRow {
    std::string text;

    bool operator==(LabelRow const&) const = default;
};

/// One all-day meet: a colour bar and a name on one line.
struct BarRow {
    std::string identifier; ///< The meet's; several rows may bear the same.
    std::string name;
    FaceColor color;

    bool operator==(BarRow const&) const = default;
};

/// Empty height.
struct SpaceRow {
    double height;

    bool operator==(SpaceRow const&) const = default;
};

/// One timed meet.
struct CardRow {
    std::string identifier; ///< The meet's; several rows may bear the same.
    std::string name;
    std::string time;
    std::optional<std::string> duration;
    FaceColor color;
    SRGBColor timeColor;
    double height;
    double spacing;
    double barWidth;
    double timeFontSize;
    double durationFontSize;

    bool operator==(CardRow const&) const = default;
};

/// The one centred line that stands where there are no cards.
struct LineRow {
    enum class Kind : std::uint8_t { emptyState, noPermission };
    Kind kind;
    std::string text;

    bool operator==(LineRow const&) const = default;
};

/// The line that counts the meets which did not fit.
struct MoreRow {
    std::string text;
    std::int64_t count;
    double padding;

    bool operator==(MoreRow const&) const = default;
};

using FaceRow = std::variant<HeaderRow, LabelRow, BarRow, SpaceRow, CardRow, LineRow, MoreRow>;

/// A whole face, top to bottom.
struct FaceLayout {
    WidgetFamily family;
    ColorScheme colorScheme;
    SRGBColor background;
    SRGBColor brand;
    SRGBColor accent;   ///< Stands in for the accent colour where the desktop has none.
    bool isRightToLeft; ///< Mirrors the face.
    std::vector<FaceRow> rows;

    bool operator==(FaceLayout const&) const = default;
};

/// The layout as text, a row a line, for golden files and bug reports.
std::string dump(FaceLayout const& layout);

} // namespace Platform
