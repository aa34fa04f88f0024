#include "Applications/Companion/StatusBarLine.h"

#include "Applications/Companion/FaceText.h"
#include "Foundation/Text.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <variant>

namespace Companion {

namespace {

std::string markup(std::string_view text) {
    std::string escaped;
    for (char const character : text) {
        switch (character) {
        case '&': escaped += "&amp;"; break;
        case '<': escaped += "&lt;"; break;
        case '>': escaped += "&gt;"; break;
        default: escaped += character;
        }
    }
    return escaped;
}

template <typename Row>
Row const* firstRow(Platform::FaceLayout const& layout) {
    auto const found = std::ranges::find_if(
        layout.rows, [](Platform::FaceRow const& row) { return std::holds_alternative<Row>(row); });
    return found == layout.rows.end() ? nullptr : &std::get<Row>(*found);
}

std::string textOf(Platform::FaceLayout const& layout) {
    if (auto const* card = firstRow<Platform::CardRow>(layout)) return card->time + " " + card->name;
    auto const* line = firstRow<Platform::LineRow>(layout);
    return line == nullptr ? std::string() : line->text;
}

std::string_view classOf(WidgetExtension::ScheduleWidgetView const& view) {
    if (view.entry.hasAccessError) return "denied";
    if (!view.calendar.isDateInSameDay(view.entry.date, view.now)) return "day";
    auto const meetings = view.timedMeetings();
    if (meetings.empty()) return "free";
    return meetings.front().metDate > view.now ? "next" : "now";
}

} // namespace

Foundation::JSON::Object statusBarLine(WidgetExtension::ScheduleWidgetView const& view) {
    auto const layout = view.layout();
    auto tooltip = faceText(layout, {.showsColors = false, .columns = std::nullopt});
    while (tooltip.ends_with('\n'))
        tooltip.pop_back();
    return {{"text", markup(Foundation::Text::neutralized(textOf(layout)))},
            {"tooltip", markup(tooltip)},
            {"class", classOf(view)}};
}

} // namespace Companion
