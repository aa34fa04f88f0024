#include "WidgetExtension/ScheduleWidgetView.h"

#include "Foundation/DateFormatting.h"
#include "Foundation/Text.h"
#include "WidgetExtension/HexColor.h"
#include "WidgetExtension/LocalizedFormat.h"
#include "WidgetExtension/ScheduleWidgetEventRowView.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace WidgetExtension {
namespace {

using Meetings::MeetEntity;
using Platform::WidgetFamily;

Platform::BarRow allDayRow(MeetEntity const& meeting) {
    return {.identifier = meeting.id().uuidString(),
            .name = meeting.metName,
            .color = colorFromHex(meeting.metColor.hexValue)};
}

} // namespace

Platform::SRGBColor ScheduleWidgetView::brandColor() const {
    return std::get<Platform::SRGBColor>(
        colorFromHex(colorScheme == Platform::ColorScheme::dark ? "696F9B" : "5CC2C6"));
}

Platform::SRGBColor ScheduleWidgetView::backgroundColor() const {
    if (colorScheme == Platform::ColorScheme::dark) return {.red = 0, .green = 0, .blue = 0};
    return {.red = 1, .green = 1, .blue = 1};
}

std::int64_t ScheduleWidgetView::dayNumber() const {
    return calendar.components(entry.date).day;
}

std::string ScheduleWidgetView::weekdayName() const {
    return Foundation::Text::capitalized(Foundation::weekdayName(entry.date, calendar, locale));
}

std::vector<MeetEntity> ScheduleWidgetView::allDayMeetings() const {
    auto meetings = entry.meetings;
    std::erase_if(meetings, [](MeetEntity const& meeting) { return !meeting.metIsAllDay; });
    return meetings;
}

std::vector<MeetEntity> ScheduleWidgetView::timedMeetings() const {
    bool const isToday = calendar.isDateInSameDay(entry.date, now);
    auto meetings = entry.meetings;
    std::erase_if(meetings, [&](MeetEntity const& meeting) {
        if (meeting.metIsAllDay) return true;
        return isToday && !(meeting.metDate.addingTimeInterval(meeting.metDuration) > now);
    });
    return meetings;
}

std::size_t ScheduleWidgetView::maxVisibleEvents() const {
    switch (family) {
    case WidgetFamily::systemSmall: return 3;
    case WidgetFamily::systemMedium: return 3;
    case WidgetFamily::systemLarge: return 8;
    case WidgetFamily::systemExtraLarge: break;
    }
    return 7;
}

std::vector<MeetEntity> ScheduleWidgetView::visibleMeetings() const {
    auto meetings = timedMeetings();
    auto const count = std::min(meetings.size(), maxVisibleEvents());
    meetings.erase(meetings.begin() + static_cast<std::ptrdiff_t>(count), meetings.end());
    return meetings;
}

std::int64_t ScheduleWidgetView::overflowCount() const {
    auto const count = static_cast<std::int64_t>(timedMeetings().size());
    return std::max(std::int64_t{0}, count - static_cast<std::int64_t>(maxVisibleEvents()));
}

bool ScheduleWidgetView::showsEmptyState() const {
    // All-day meets never count, on purpose: under their list the message says that no time is taken.
    return timedMeetings().empty();
}

bool ScheduleWidgetView::showsAllDaySection() const {
    return !allDayMeetings().empty() && family != WidgetFamily::systemSmall &&
           family != WidgetFamily::systemMedium;
}

double ScheduleWidgetView::cardHeight() const {
    return family == WidgetFamily::systemSmall ? 18 : 24;
}

Platform::FaceLayout ScheduleWidgetView::layout() const {
    std::vector<Platform::FaceRow> rows;
    rows.emplace_back(headerRow());
    if (showsAllDaySection()) appendAllDaySection(rows);
    if (showsEmptyState()) {
        rows.emplace_back(emptyStateRow());
    } else {
        appendCards(rows);
    }
    return {
        .family = family,
        .colorScheme = colorScheme,
        .background = backgroundColor(),
        .brand = brandColor(),
        .isRightToLeft = locale.isRightToLeft(),
        .rows = std::move(rows),
    };
}

Platform::HeaderRow ScheduleWidgetView::headerRow() const {
    return {
        .previous = {.action = Platform::FaceButton::Action::previousDay,
                     .systemImage = "chevron.left",
                     .title = texts->text("schedule-widget-previous-day")},
        .weekday = weekdayName(),
        .day = dayNumber(),
        .next = {.action = Platform::FaceButton::Action::nextDay,
                 .systemImage = "chevron.right",
                 .title = texts->text("schedule-widget-next-day")},
    };
}

Platform::LineRow ScheduleWidgetView::emptyStateRow() const {
    if (entry.hasAccessError) {
        return {.kind = Platform::LineRow::Kind::noPermission,
                .text = texts->text("schedule-widget-no-permission")};
    }
    return {.kind = Platform::LineRow::Kind::emptyState, .text = texts->text("schedule-widget-empty-state")};
}

Platform::CardRow ScheduleWidgetView::card(MeetEntity meeting) const {
    ScheduleWidgetEventRowView const view = {
        .meeting = std::move(meeting),
        .showsDuration = family != WidgetFamily::systemSmall,
        .cardHeight = cardHeight(),
        .colorScheme = colorScheme,
        .family = family,
        .calendar = calendar,
    };
    return view.row();
}

void ScheduleWidgetView::appendAllDaySection(std::vector<Platform::FaceRow>& rows) const {
    constexpr double spaceBelow = 15;
    rows.emplace_back(Platform::LabelRow{.text = texts->text("schedule-widget-all-day")});
    for (auto const& meeting : allDayMeetings())
        rows.emplace_back(allDayRow(meeting));
    rows.emplace_back(Platform::SpaceRow{.height = spaceBelow});
}

void ScheduleWidgetView::appendCards(std::vector<Platform::FaceRow>& rows) const {
    constexpr double overflowPadding = 5;
    for (auto& meeting : visibleMeetings())
        rows.emplace_back(card(std::move(meeting)));
    auto const count = overflowCount();
    if (count == 0) return;
    rows.emplace_back(Platform::MoreRow{
        .text = localizedFormat(texts->text("schedule-widget-more-events"), count),
        .count = count,
        .padding = overflowPadding,
    });
}

} // namespace WidgetExtension
