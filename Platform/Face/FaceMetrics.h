#pragma once

#include "Platform/WidgetHost/WidgetFamily.h"

namespace Platform {

/// The measures of a family that no row carries itself, in points.
struct FaceMetrics {
    double width;
    double height; ///< The least; a face with more to show grows downward.
    double margin; ///< From the face's edge to its rows, on all sides.

    double headerHeight;
    double headerGap; ///< Below the header.
    double weekdayFontSize;
    double badgeDiameter;
    double badgeFontSize;
    double chevronInset; ///< From the face's side edge to the middle of the chevron.

    double cardGap;
    double cardRadius;
    double nameFontSize;
    double moreFontSize;
};

/// The measures that every family shares, in points.
namespace FaceMeasures {
/// Grapheme clusters of a name that are looked at: far more than a face has room for, far less than a text
/// layout can measure.
inline constexpr std::size_t longestName = 500;
inline constexpr double cornerRadius = 18;
inline constexpr double buttonSide = 30;
inline constexpr double buttonRadius = 9;
inline constexpr double focusStroke = 1.5;
inline constexpr double hoverStroke = 1;
inline constexpr double chevronWidth = 5;
inline constexpr double chevronHeight = 9;
inline constexpr double chevronStroke = 1.6;
inline constexpr double badgeGap = 6.5; ///< Between the weekday and the badge.
inline constexpr double largestNoticeRadius = 5;
inline constexpr double labelFontSize = 9.5;
inline constexpr double barRowHeight = 18;
inline constexpr double barRowRadius = 5;
inline constexpr double barRowGap = 3; ///< Below the label and between the rows.
inline constexpr double barRowInset = 4;
inline constexpr double barRowBarWidth = 2;
inline constexpr double barRowNameGap = 5;
inline constexpr double barRowFontSize = 10.5;
inline constexpr double cardBarInset = 3.5;
inline constexpr double barEdgeStroke = 0.5; ///< Around a bar that its surface would hide.
inline constexpr double cardPadding = 7;     ///< From the last column to the card's edge.
/// Room for "12h 30m" in most fonts, so that times keep their place from one day to the next.
inline constexpr double durationColumnWidth = 34;
inline constexpr double lineFontSize = 11;
inline constexpr double linePadding = 10;
} // namespace FaceMeasures

FaceMetrics faceMetrics(WidgetFamily family);

} // namespace Platform
