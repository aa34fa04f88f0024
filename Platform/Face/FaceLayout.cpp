#include "Platform/Face/FaceLayout.h"

#include "Foundation/Numbers.h"
#include "Platform/Face/ColorMath.h"

#include <initializer_list>
#include <string_view>

namespace Platform {
namespace {

/// In quotes, with everything that could end the line or the quotes escaped.
std::string quoted(std::string_view text) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string result = "\"";
    for (char const byte : text) {
        auto const code = static_cast<unsigned char>(byte);
        if (byte == '"' || byte == '\\') {
            result += '\\';
            result += byte;
        } else if (code < 0x20 || code == 0x7F) {
            result += "\\x";
            result += digits[code / 16];
            result += digits[code % 16];
        } else {
            result += byte;
        }
    }
    return result + '"';
}

std::string colorText(FaceColor const& color) {
    auto const* fixed = std::get_if<SRGBColor>(&color);
    return fixed ? ColorMath::hexText(*fixed) : "accent";
}

std::string_view actionText(FaceButton::Action action) {
    switch (action) {
    case FaceButton::Action::previousDay: return "previousDay";
    case FaceButton::Action::nextDay: return "nextDay";
    }
    return {};
}

std::string_view kindText(LineRow::Kind kind) {
    switch (kind) {
    case LineRow::Kind::emptyState: return "emptyState";
    case LineRow::Kind::noPermission: return "noPermission";
    }
    return {};
}

/// The parts, set apart by blanks.
std::string joined(std::initializer_list<std::string_view> parts) {
    std::string text;
    for (auto const part : parts) {
        if (!text.empty()) text += ' ';
        text += part;
    }
    return text;
}

std::string field(std::string_view name, std::string_view value) {
    return std::string(name) + '=' + std::string(value);
}

std::string field(std::string_view name, double value) {
    return field(name, Foundation::shortestDecimal(value));
}

std::string buttonText(FaceButton const& button) {
    return '[' + joined({actionText(button.action), button.systemImage, quoted(button.title)}) + ']';
}

std::string rowText(HeaderRow const& row) {
    return joined({"header", quoted(row.weekday), std::to_string(row.day), buttonText(row.previous),
                   buttonText(row.next)});
}

std::string rowText(LabelRow const& row) {
    return joined({"label", quoted(row.text)});
}

std::string rowText(BarRow const& row) {
    return joined(
        {"bar", quoted(row.name), field("color", colorText(row.color)), field("id", quoted(row.identifier))});
}

std::string rowText(SpaceRow const& row) {
    return joined({"space", Foundation::shortestDecimal(row.height)});
}

std::string rowText(CardRow const& row) {
    return joined({"card", quoted(row.name), field("time", quoted(row.time)),
                   field("duration", row.duration ? quoted(*row.duration) : "none"),
                   field("color", colorText(row.color)),
                   field("timeColor", ColorMath::hexText(row.timeColor)), field("height", row.height),
                   field("spacing", row.spacing), field("bar", row.barWidth),
                   field("timeFont", row.timeFontSize), field("durationFont", row.durationFontSize),
                   field("id", quoted(row.identifier))});
}

std::string rowText(LineRow const& row) {
    return joined({"line", kindText(row.kind), quoted(row.text)});
}

std::string rowText(MoreRow const& row) {
    return joined(
        {"more", quoted(row.text), field("count", std::to_string(row.count)), field("padding", row.padding)});
}

} // namespace

std::string dump(FaceLayout const& layout) {
    auto text = joined({"face", Foundation::rawValue(layout.family),
                        layout.colorScheme == ColorScheme::dark ? "dark" : "light",
                        layout.isRightToLeft ? "right-to-left" : "left-to-right",
                        field("background", ColorMath::hexText(layout.background)),
                        field("brand", ColorMath::hexText(layout.brand))});
    if (layout.accent != layout.brand) text += " " + field("accent", ColorMath::hexText(layout.accent));
    text += '\n';
    for (auto const& row : layout.rows) {
        text += std::visit([](auto const& each) { return rowText(each); }, row);
        text += '\n';
    }
    return text;
}

} // namespace Platform
