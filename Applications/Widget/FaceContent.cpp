#include "Applications/Widget/FaceContent.h"

#include "Foundation/Text.h"
#include "Platform/Face/FaceMetrics.h"
#include "WidgetExtension/MeetSummary.h"

#include <cstddef>
#include <string>
#include <variant>
#include <vector>

namespace Widget {

namespace {

using Meetings::MeetEntity;

std::string joined(std::vector<std::string> const& lines) {
    std::string text;
    for (auto const& line : lines) {
        if (!text.empty()) {
            text += '\n';
        }
        text += Foundation::Text::neutralized(
            Foundation::Text::truncated(line, Platform::FaceMeasures::longestName));
    }
    return text;
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
                                  Platform::FaceLayout const& layout, Platform::HTMLReader const& reader,
                                  Platform::MainExecutor& mainExecutor) {
    auto const told = [&](MeetEntity const& meeting) {
        return joined(WidgetExtension::meetSummaryLines(meeting, view.calendar, reader, mainExecutor));
    };
    InOrder allDay(view.allDayMeetings());
    InOrder timed(view.visibleMeetings());
    std::vector<std::string> texts(layout.rows.size());
    for (std::size_t index = 0; index < layout.rows.size(); ++index) {
        if (std::holds_alternative<Platform::BarRow>(layout.rows[index])) {
            if (auto const* const meeting = allDay.next()) {
                texts[index] = told(*meeting);
            }
        } else if (std::holds_alternative<Platform::CardRow>(layout.rows[index])) {
            if (auto const* const meeting = timed.next()) {
                texts[index] = told(*meeting);
            }
        }
    }
    return texts;
}

} // namespace

Platform::FaceWindowContent faceContent(WidgetExtension::ScheduleWidgetView const& view,
                                        Platform::EntryKind kind, Platform::HTMLReader const& reader,
                                        Platform::MainExecutor& mainExecutor) {
    auto layout = view.layout();
    if (kind == Platform::EntryKind::placeholder) {
        std::erase_if(layout.rows,
                      [](auto const& row) { return !std::holds_alternative<Platform::HeaderRow>(row); });
    }
    auto texts = tooltips(view, layout, reader, mainExecutor);
    return {.layout = std::move(layout), .tooltips = std::move(texts)};
}

} // namespace Widget
