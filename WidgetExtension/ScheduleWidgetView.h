#pragma once

#include "Foundation/Calendar.h"
#include "Foundation/Date.h"
#include "Foundation/Locale.h"
#include "Meetings/MeetEntity.h"
#include "Platform/Appearance/ColorScheme.h"
#include "Platform/Face/FaceLayout.h"
#include "Platform/Resources/ColorProvider.h"
#include "Platform/Resources/TextProvider.h"
#include "Platform/WidgetHost/WidgetFamily.h"
#include "WidgetExtension/ScheduleWidgetEntry.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace WidgetExtension {

/// The widget's face: which rows an entry becomes, with which texts, colours and sizes.
struct ScheduleWidgetView {
    ScheduleWidgetEntry entry;
    Platform::ColorScheme colorScheme;
    Platform::WidgetFamily family;
    Foundation::Calendar calendar;
    Foundation::Date now;
    Foundation::Locale locale;                             ///< Of the weekday, and of the face's direction.
    std::shared_ptr<Platform::TextProvider const> texts;   ///< Of the extension's own bundle.
    std::shared_ptr<Platform::ColorProvider const> colors; ///< Of the same bundle.

    /// The widget's own accent: of the header badge and the two buttons.
    [[nodiscard]] Platform::SRGBColor brandColor() const;
    /// Of what has no colour of its own, where the desktop has no accent colour: the bundle's "AccentColor",
    /// else `brandColor`.
    [[nodiscard]] Platform::SRGBColor accentColor() const;
    [[nodiscard]] Platform::SRGBColor backgroundColor() const;

    /// Day of the month.
    [[nodiscard]] std::int64_t dayNumber() const;

    /// In the user's language, each word capitalised.
    [[nodiscard]] std::string weekdayName() const;

    [[nodiscard]] std::vector<Meetings::MeetEntity> allDayMeetings() const;

    /// Without those that have ended, on today's page only.
    [[nodiscard]] std::vector<Meetings::MeetEntity> timedMeetings() const;

    [[nodiscard]] std::size_t maxVisibleEvents() const;
    [[nodiscard]] std::vector<Meetings::MeetEntity> visibleMeetings() const;

    /// Timed meets for which there is no card.
    [[nodiscard]] std::int64_t overflowCount() const;

    [[nodiscard]] bool showsEmptyState() const;
    [[nodiscard]] bool showsAllDaySection() const;

    /// Points.
    [[nodiscard]] double cardHeight() const;

    /// The whole face, top to bottom.
    [[nodiscard]] Platform::FaceLayout layout() const;

private:
    [[nodiscard]] Platform::HeaderRow headerRow() const;
    [[nodiscard]] Platform::LineRow emptyStateRow() const;
    [[nodiscard]] Platform::CardRow card(Meetings::MeetEntity meeting) const;
    void appendAllDaySection(std::vector<Platform::FaceRow>& rows) const;
    void appendCards(std::vector<Platform::FaceRow>& rows) const;
};

} // namespace WidgetExtension
