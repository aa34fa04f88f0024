#include "Platform/EventStore/ICalendar/RuleText.h"

#include "Platform/EventStore/ICalendar/ContentLine.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace Platform::ICalendar {

RuleText::RuleText(std::string_view text) {
    for (auto rest = trimmed(text); !rest.empty();) {
        auto const semicolon = std::min(rest.find(';'), rest.size());
        auto const part = trimmed(rest.substr(0, semicolon));
        rest.remove_prefix(std::min(semicolon + 1, rest.size()));
        if (part.empty()) continue;
        auto const equals = std::min(part.find('='), part.size());
        parts.emplace_back(trimmed(part.substr(0, equals)),
                           trimmed(part.substr(std::min(equals + 1, part.size()))));
    }
}

void RuleText::set(std::string_view name, std::string value) {
    for (auto& part : parts) {
        if (!equalsIgnoringCase(part.first, name)) continue;
        part.second = std::move(value);
        return;
    }
    parts.emplace_back(name, std::move(value));
}

void RuleText::remove(std::string_view name) {
    std::erase_if(parts, [&](auto const& part) { return equalsIgnoringCase(part.first, name); });
}

std::optional<std::string> RuleText::value(std::string_view name) const {
    for (auto const& part : parts) {
        if (equalsIgnoringCase(part.first, name)) return part.second;
    }
    return std::nullopt;
}

std::string RuleText::text() const {
    std::string text;
    for (auto const& [name, value] : parts) {
        if (!text.empty()) text += ';';
        text += name;
        text += '=';
        text += value;
    }
    return text;
}

std::string_view weekdayName(int weekday) {
    static constexpr std::array<std::string_view, 7> names{"SU", "MO", "TU", "WE", "TH", "FR", "SA"};
    return names[static_cast<std::size_t>(weekday)];
}

} // namespace Platform::ICalendar
