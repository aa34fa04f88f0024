#include "WidgetExtension/ScheduleWidgetEventRowView.h"

#include "Foundation/DateFormatting.h"
#include "Foundation/Numbers.h"
#include "WidgetExtension/HexColor.h"

#include <algorithm>
#include <cstdint>

namespace WidgetExtension {

Platform::FaceColor ScheduleWidgetEventRowView::color() const {
    return colorFromHex(meeting.metColor.hexValue);
}

std::string ScheduleWidgetEventRowView::timeText() const {
    return Foundation::twelveHourTimeWithMarker(meeting.metDate, calendar);
}

std::string ScheduleWidgetEventRowView::timeOnlyText() const {
    return Foundation::twelveHourTime(meeting.metDate, calendar);
}

std::string ScheduleWidgetEventRowView::durationText() const {
    auto const minutes = std::max(Foundation::truncatedInteger(meeting.metDuration / 60), std::int64_t{0});
    auto const hours = minutes / 60;
    auto const rest = minutes % 60;
    if (hours == 0) return std::to_string(rest) + "m";
    if (rest == 0) return std::to_string(hours) + "h";
    return std::to_string(hours) + "h " + std::to_string(rest) + "m";
}

Platform::CardRow ScheduleWidgetEventRowView::row() const {
    constexpr Platform::SRGBColor white = {.red = 1, .green = 1, .blue = 1};
    constexpr Platform::SRGBColor black = {.red = 0, .green = 0, .blue = 0};
    bool const isSmall = family == Platform::WidgetFamily::systemSmall;
    Platform::CardRow row = {
        .identifier = meeting.id().uuidString(),
        .name = meeting.metName,
        .time = isSmall ? timeOnlyText() : timeText(),
        .duration = std::nullopt,
        .color = color(),
        .timeColor = colorScheme == Platform::ColorScheme::dark ? white : black,
        .height = cardHeight,
        .spacing = isSmall ? 3.0 : 6.0,
        .barWidth = 2,
        .timeFontSize = isSmall ? 8.0 : 10.0,
        .durationFontSize = 8,
    };
    if (showsDuration) row.duration = durationText();
    return row;
}

} // namespace WidgetExtension
