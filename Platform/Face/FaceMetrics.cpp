#include "Platform/Face/FaceMetrics.h"

#include "Foundation/FatalError.h"

namespace Platform {
namespace {

constexpr FaceMetrics roomy(double width, double height) {
    return FaceMetrics{
        .width = width,
        .height = height,
        .margin = 14,
        .headerHeight = 26,
        .headerGap = 8,
        .weekdayFontSize = 14,
        .badgeDiameter = 20,
        .badgeFontSize = 11,
        .chevronInset = 23,
        .cardGap = 5,
        .cardRadius = 6,
        .nameFontSize = 12,
        .moreFontSize = 10.5,
    };
}

constexpr FaceMetrics small{
    .width = 170,
    .height = 170,
    .margin = 10,
    .headerHeight = 22,
    .headerGap = 6,
    .weekdayFontSize = 12,
    .badgeDiameter = 18,
    .badgeFontSize = 10,
    .chevronInset = 17,
    .cardGap = 4,
    .cardRadius = 5,
    .nameFontSize = 10,
    .moreFontSize = 10,
};

} // namespace

FaceMetrics faceMetrics(WidgetFamily family) {
    switch (family) {
    case WidgetFamily::systemSmall: return small;
    case WidgetFamily::systemMedium: return roomy(364, 170);
    case WidgetFamily::systemLarge: return roomy(364, 382);
    case WidgetFamily::systemExtraLarge: return roomy(764, 382);
    }
    Foundation::fatalError("a widget family outside its enumeration has no measures");
}

} // namespace Platform
