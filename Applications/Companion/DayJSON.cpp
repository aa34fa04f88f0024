#include "Applications/Companion/DayJSON.h"

#include "Applications/Companion/MeetJSON.h"
#include "Applications/Companion/PlainJSON.h"
#include "Foundation/DateFormatting.h"

#include <cmath>
#include <fmt/format.h>
#include <string>
#include <utility>

namespace Companion {

namespace JSON = Foundation::JSON;

namespace {

std::string colorText(Platform::FaceColor const& color) {
    auto const* given = std::get_if<Platform::SRGBColor>(&color);
    if (given == nullptr) return "accent";
    auto const channel = [](double value) { return std::lround(value * 255); };
    return fmt::format("#{:02X}{:02X}{:02X}", channel(given->red), channel(given->green),
                       channel(given->blue));
}

struct RowValue {
    JSON::Object operator()(Platform::HeaderRow const& row) const {
        return {{"kind", "header"}, {"weekday", row.weekday}, {"day", row.day}};
    }
    JSON::Object operator()(Platform::LabelRow const& row) const {
        return {{"kind", "label"}, {"text", row.text}};
    }
    JSON::Object operator()(Platform::BarRow const& row) const {
        return {{"kind", "bar"}, {"name", row.name}, {"color", colorText(row.color)}};
    }
    JSON::Object operator()(Platform::SpaceRow const& row) const {
        return {{"kind", "space"}, {"height", numberValue(row.height)}};
    }
    JSON::Object operator()(Platform::CardRow const& row) const {
        JSON::Object object = {{"kind", "card"}, {"name", row.name}, {"time", row.time}};
        if (row.duration) object.emplace_back("duration", *row.duration);
        object.emplace_back("color", colorText(row.color));
        return object;
    }
    JSON::Object operator()(Platform::LineRow const& row) const {
        bool const isRefused = row.kind == Platform::LineRow::Kind::noPermission;
        return {{"kind", "line"}, {"text", row.text}, {"reason", isRefused ? "noPermission" : "emptyState"}};
    }
    JSON::Object operator()(Platform::MoreRow const& row) const {
        return {{"kind", "more"}, {"text", row.text}, {"count", row.count}};
    }
};

JSON::Value faceValue(Platform::FaceLayout const& layout) {
    JSON::Array rows;
    for (auto const& row : layout.rows)
        rows.emplace_back(std::visit(RowValue{}, row));
    return JSON::Object{{"family", Foundation::rawValue(layout.family)}, {"rows", std::move(rows)}};
}

} // namespace

JSON::Value dayJSON(WidgetExtension::ScheduleWidgetEntry const& entry,
                    Platform::TimelineReloadPolicy const& policy, Platform::FaceLayout const& layout) {
    JSON::Array meetings;
    for (auto const& meet : entry.meetings)
        meetings.emplace_back(meetJSON(meet));
    JSON::Object object;
    object.emplace_back("version", 1);
    object.emplace_back("date", Foundation::iso8601(entry.date));
    object.emplace_back("dayOffset", entry.dayOffset);
    object.emplace_back("hasAccessError", entry.hasAccessError);
    if (policy.afterDate) object.emplace_back("reloadAfter", Foundation::iso8601(*policy.afterDate));
    object.emplace_back("meetings", std::move(meetings));
    object.emplace_back("face", faceValue(layout));
    return object;
}

} // namespace Companion
