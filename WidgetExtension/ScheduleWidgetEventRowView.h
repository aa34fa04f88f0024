#pragma once

#include "Foundation/Calendar.h"
#include "Meetings/MeetEntity.h"
#include "Platform/Appearance/ColorScheme.h"
#include "Platform/Face/FaceLayout.h"
#include "Platform/WidgetHost/WidgetFamily.h"

#include <string>

namespace WidgetExtension {

/// The card of one timed meet.
struct ScheduleWidgetEventRowView {
    Meetings::MeetEntity meeting;
    bool showsDuration;
    double cardHeight; ///< Points.
    Platform::ColorScheme colorScheme;
    Platform::WidgetFamily family;
    Foundation::Calendar calendar;

    [[nodiscard]] Platform::FaceColor color() const;

    /// The start in twelve hours with "a.m." or "p.m.", in every language: "09:05 a.m.".
    [[nodiscard]] std::string timeText() const;

    /// The same without the marker: "09:05".
    [[nodiscard]] std::string timeOnlyText() const;

    /// Whole minutes as "45m", "2h" or "1h 30m"; a negative duration gives "0m". One that is not finite is a
    /// fatal error.
    [[nodiscard]] std::string durationText() const;

    [[nodiscard]] Platform::CardRow row() const;
};

} // namespace WidgetExtension
