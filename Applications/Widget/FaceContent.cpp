#include "Applications/Widget/FaceContent.h"

#include "Applications/Widget/HarmlessText.h"
#include "WidgetExtension/MeetSummary.h"

#include <cstddef>
#include <string>
#include <utility>
#include <variant>

namespace Widget {

namespace {

using Meetings::MeetEntity;

std::string joined(std::vector<std::string> const& lines) {
    std::string text;
    for (auto const& line : lines) {
        if (!text.empty()) {
            text += '\n';
        }
        text += harmless(line);
    }
    return text;
}

/// The next of the meets that have a row of their kind; rows stand in the meets' order.
class InOrder {
public:
    explicit InOrder(std::vector<MeetEntity> meetings) : meetings(std::move(meetings)) {}

    std::optional<MeetEntity> next() {
        return position < meetings.size() ? std::optional(meetings[position++]) : std::nullopt;
    }

private:
    std::vector<MeetEntity> meetings;
    std::size_t position = 0;
};

std::vector<std::optional<MeetEntity>> meetsOfRows(WidgetExtension::ScheduleWidgetView const& view,
                                                   Platform::FaceLayout const& layout) {
    InOrder allDay(view.allDayMeetings());
    InOrder timed(view.visibleMeetings());
    std::vector<std::optional<MeetEntity>> meets(layout.rows.size());
    for (std::size_t index = 0; index < layout.rows.size(); ++index) {
        if (std::holds_alternative<Platform::BarRow>(layout.rows[index])) {
            meets[index] = allDay.next();
        } else if (std::holds_alternative<Platform::CardRow>(layout.rows[index])) {
            meets[index] = timed.next();
        }
    }
    return meets;
}

} // namespace

FaceContent faceContent(WidgetExtension::ScheduleWidgetView const& view, Platform::EntryKind kind,
                        Platform::HTMLReader const& reader, Platform::MainExecutor& mainExecutor) {
    auto layout = view.layout();
    if (kind == Platform::EntryKind::placeholder) {
        std::erase_if(layout.rows,
                      [](auto const& row) { return !std::holds_alternative<Platform::HeaderRow>(row); });
    }
    auto meets = meetsOfRows(view, layout);
    std::vector<std::string> tooltips;
    for (auto const& meet : meets) {
        tooltips.push_back(
            meet ? joined(WidgetExtension::meetSummaryLines(*meet, view.calendar, reader, mainExecutor))
                 : std::string());
    }
    return {.shown = {.layout = std::move(layout), .tooltips = std::move(tooltips)},
            .meets = std::move(meets)};
}

} // namespace Widget
