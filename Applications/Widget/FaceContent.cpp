#include "Applications/Widget/FaceContent.h"

#include "Foundation/DateFormatting.h"

#include <cstddef>
#include <string>
#include <variant>
#include <vector>

namespace Widget {

namespace {

using Meetings::MeetEntity;

std::string withPlace(std::string text, MeetEntity const& meeting) {
    if (meeting.metLocation && !meeting.metLocation->empty()) {
        text += "\n" + *meeting.metLocation;
    }
    return text;
}

std::string tooltipOfTimed(MeetEntity const& meeting, Foundation::Calendar const& calendar) {
    auto const end = meeting.metDate.addingTimeInterval(meeting.metDuration);
    auto times = Foundation::twelveHourTimeWithMarker(meeting.metDate, calendar);
    if (end > meeting.metDate) {
        times += " – " + Foundation::twelveHourTimeWithMarker(end, calendar);
    }
    return withPlace(meeting.metName + "\n" + times, meeting);
}

/// The next of the meets that have a row of their kind; rows stand in the meets' order.
class InOrder {
public:
    explicit InOrder(std::vector<MeetEntity> meetings) : meetings(std::move(meetings)) {}

    MeetEntity const* next() { return position < meetings.size() ? &meetings[position++] : nullptr; }

private:
    std::vector<MeetEntity> meetings;
    std::size_t position = 0;
};

std::vector<std::string> tooltips(WidgetExtension::ScheduleWidgetView const& view,
                                  Platform::FaceLayout const& layout) {
    InOrder allDay(view.allDayMeetings());
    InOrder timed(view.visibleMeetings());
    std::vector<std::string> texts(layout.rows.size());
    for (std::size_t index = 0; index < layout.rows.size(); ++index) {
        if (std::holds_alternative<Platform::BarRow>(layout.rows[index])) {
            if (auto const* const meeting = allDay.next()) {
                texts[index] = withPlace(meeting->metName, *meeting);
            }
        } else if (std::holds_alternative<Platform::CardRow>(layout.rows[index])) {
            if (auto const* const meeting = timed.next()) {
                texts[index] = tooltipOfTimed(*meeting, view.calendar);
            }
        }
    }
    return texts;
}

} // namespace

Platform::FaceWindowContent faceContent(WidgetExtension::ScheduleWidgetView const& view,
                                        Platform::EntryKind kind) {
    auto layout = view.layout();
    if (kind == Platform::EntryKind::placeholder) {
        std::erase_if(layout.rows,
                      [](auto const& row) { return !std::holds_alternative<Platform::HeaderRow>(row); });
    }
    auto texts = tooltips(view, layout);
    return {.layout = std::move(layout), .tooltips = std::move(texts)};
}

} // namespace Widget
