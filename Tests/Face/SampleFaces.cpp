#include "Tests/Face/SampleFaces.h"

#include <array>
#include <span>

namespace SampleFaces {
namespace {

using namespace Platform;

struct Meet {
    char const* name;
    char const* hours;
    char const* marker;
    char const* duration;
    unsigned color;
};

constexpr std::array meets{
    Meet{"Stand-up", "09:00", "a.m.", "15m", 0xD1495B},
    Meet{"Design review of the quarterly roadmap and its milestones", "09:30", "a.m.", "1h", 0x2E86AB},
    Meet{"昼食会議 新しい企画について", "11:00", "a.m.", "1h 30m", 0x5B8E7D},
    Meet{"Birthday 🎂 cake & coffee", "12:30", "p.m.", "30m", 0xF2A541},
    Meet{"اجتماع مع فريق التطوير", "01:15", "p.m.", "45m", 0x8E6CB8},
    Meet{"Interview: platform engineer", "02:00", "p.m.", "1h", 0x3A7D44},
    Meet{"Pick up Noa from school", "03:40", "p.m.", "20m", 0xE4572E},
    Meet{"Dentist", "05:30", "p.m.", "30m", 0x4FA8AC},
};
constexpr std::size_t meetsOfDay = 11;

bool isSmall(FaceLayout const& layout) {
    return layout.family == WidgetFamily::systemSmall;
}

std::size_t cardsOf(WidgetFamily family) {
    switch (family) {
    case WidgetFamily::systemSmall:
    case WidgetFamily::systemMedium: return 3;
    case WidgetFamily::systemLarge: return 8;
    case WidgetFamily::systemExtraLarge: return 7;
    }
    return 0;
}

HeaderRow header(std::string weekday) {
    return HeaderRow{
        .previous = {.action = FaceButton::Action::previousDay,
                     .systemImage = "chevron.left",
                     .title = "Previous day"},
        .weekday = std::move(weekday),
        .day = 18,
        .next = {.action = FaceButton::Action::nextDay, .systemImage = "chevron.right", .title = "Next day"},
    };
}

} // namespace

SRGBColor rgb(unsigned value) {
    auto channel = [&](unsigned shift) { return static_cast<double>(value >> shift & 0xFF) / 255.0; };
    return SRGBColor{.red = channel(16), .green = channel(8), .blue = channel(0)};
}

FaceLayout blank(WidgetFamily family, ColorScheme scheme) {
    bool const isDark = scheme == ColorScheme::dark;
    return FaceLayout{
        .family = family,
        .colorScheme = scheme,
        .background = isDark ? rgb(0x000000) : rgb(0xFFFFFF),
        .brand = isDark ? rgb(0x696F9B) : rgb(0x5CC2C6),
        .accent = isDark ? rgb(0x696F9B) : rgb(0x5CC2C6),
        .isRightToLeft = false,
        .rows = {header("Wednesday")},
    };
}

CardRow card(FaceLayout const& layout, std::string name, std::string time, std::string duration,
             FaceColor color) {
    return CardRow{
        .identifier = "id-" + name,
        .name = std::move(name),
        .time = std::move(time),
        .duration = isSmall(layout) ? std::nullopt : std::optional(std::move(duration)),
        .color = color,
        .timeColor = layout.colorScheme == ColorScheme::dark ? rgb(0xFFFFFF) : rgb(0x000000),
        .height = isSmall(layout) ? 18.0 : 24.0,
        .spacing = isSmall(layout) ? 3.0 : 6.0,
        .barWidth = 2,
        .timeFontSize = isSmall(layout) ? 8.0 : 10.0,
        .durationFontSize = 8,
    };
}

FaceLayout busy(WidgetFamily family, ColorScheme scheme) {
    auto layout = blank(family, scheme);
    if (family == WidgetFamily::systemLarge || family == WidgetFamily::systemExtraLarge) {
        layout.rows.emplace_back(LabelRow{.text = "All day"});
        layout.rows.emplace_back(
            BarRow{.identifier = "id-1", .name = "Release week", .color = rgb(0x8E6CB8)});
        layout.rows.emplace_back(
            BarRow{.identifier = "id-2", .name = "Anna on leave", .color = rgb(0x4FA8AC)});
        layout.rows.emplace_back(SpaceRow{.height = 15});
    }
    auto const shown = cardsOf(family);
    for (auto const& meet : std::span(meets).first(shown)) {
        auto time = isSmall(layout) ? std::string(meet.hours) : std::string(meet.hours) + " " + meet.marker;
        layout.rows.emplace_back(card(layout, meet.name, std::move(time), meet.duration, rgb(meet.color)));
    }
    auto const more = static_cast<std::int64_t>(meetsOfDay - shown);
    layout.rows.emplace_back(
        MoreRow{.text = "+" + std::to_string(more) + " more", .count = more, .padding = 5});
    return layout;
}

FaceLayout empty(WidgetFamily family, ColorScheme scheme) {
    auto layout = blank(family, scheme);
    layout.rows = {header("Miércoles"), LineRow{.kind = LineRow::Kind::emptyState, .text = "Sin eventos"}};
    return layout;
}

} // namespace SampleFaces
