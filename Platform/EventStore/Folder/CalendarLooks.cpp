#include "Platform/EventStore/Folder/CalendarLooks.h"

#include "Foundation/Text.h"
#include "Platform/EventStore/Folder/RegularFile.h"
#include "Platform/EventStore/ICalendar/ColorText.h"

#include <cstdint>

namespace Platform {

std::optional<std::string> calendarMetadata(std::filesystem::path const& file) {
    constexpr std::int64_t limit = 4096;
    if (!stampOfRegularFile(file)) return std::nullopt;
    auto const read = readRegularFile(file, limit);
    if (!read) return std::nullopt;
    auto text =
        Foundation::Text::trimmingWhitespacesAndNewlines(Foundation::Text::sanitizedUTF8(read->content));
    if (text.empty()) return std::nullopt;
    return text;
}

CGColor calendarColor(std::optional<std::string> const& text) {
    auto const color = text ? ICalendar::colorFromText(*text) : std::nullopt;
    if (!color) return {.components = std::nullopt};
    auto const channel = [](std::uint8_t value) { return static_cast<double>(value) / 255.0; };
    return {.components = {{channel(color->red), channel(color->green), channel(color->blue), 1.0}}};
}

} // namespace Platform
