#include "WidgetExtension/ScheduleWidgetView.h"

#include "Foundation/DateFormatting.h"
#include "Foundation/Text.h"
#include "WidgetExtension/HexColor.h"
#include "WidgetExtension/LocalizedFormat.h"
#include "WidgetExtension/ScheduleWidgetEventRowView.h"

#include <algorithm>
#include <iterator>
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

// Tells which meets of a day have a time that is still of interest.
auto timedMeetingTest(ScheduleWidgetView const& view) {
    bool const isToday = view.calendar.isDateInSameDay(view.entry.date, view.now);
    return [isToday, now = view.now](MeetEntity const& meeting) {
        if (meeting.metIsAllDay) return false;
        return !isToday || meeting.metDate.addingTimeInterval(meeting.metDuration) > now;
    };
}

} // namespace

Platform::SRGBColor ScheduleWidgetView::brandColor() const {
    return std::get<Platform::SRGBColor>(
        colorFromHex(colorScheme == Platform::ColorScheme::dark ? "696F9B" : "5CC2C6"));
}

Platform::SRGBColor ScheduleWidgetView::accentColor() const {
    auto const named = colors->color("AccentColor", colorScheme);
    if (!named) return brandColor();
    auto const [red, green, blue] = *named;
    return {.red = red, .green = green, .blue = blue};
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
    std::vector<MeetEntity> meetings;
    std::ranges::copy_if(entry.meetings, std::back_inserter(meetings), &MeetEntity::metIsAllDay);
    return meetings;
}

std::vector<MeetEntity> ScheduleWidgetView::timedMeetings() const {
    std::vector<MeetEntity> meetings;
    std::ranges::copy_if(entry.meetings, std::back_inserter(meetings), timedMeetingTest(*this));
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

// A day may hold thousands of meets, so that those without a card are counted and not copied.

std::vector<MeetEntity> ScheduleWidgetView::visibleMeetings() const {
    std::vector<MeetEntity> meetings;
    auto const isTimed = timedMeetingTest(*this);
    for (auto const& meeting : entry.meetings) {
        if (meetings.size() == maxVisibleEvents()) break;
        if (isTimed(meeting)) meetings.push_back(meeting);
    }
    return meetings;
}

std::int64_t ScheduleWidgetView::overflowCount() const {
    auto const count = std::ranges::count_if(entry.meetings, timedMeetingTest(*this));
    return std::max(std::int64_t{0}, count - static_cast<std::int64_t>(maxVisibleEvents()));
}

bool ScheduleWidgetView::showsEmptyState() const {
    // All-day meets never count, on purpose: under their list the message says that no time is taken.
    return std::ranges::none_of(entry.meetings, timedMeetingTest(*this));
}

bool ScheduleWidgetView::showsAllDaySection() const {
    return std::ranges::any_of(entry.meetings, &MeetEntity::metIsAllDay) &&
           family != WidgetFamily::systemSmall && family != WidgetFamily::systemMedium;
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
        .accent = accentColor(),
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
