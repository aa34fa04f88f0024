#include "Platform/EventStore/ICalendar/PropertyValue.h"

#include "Foundation/Text.h"
#include "Platform/EventStore/ICalendar/ContentLine.h"

#include <algorithm>

namespace Platform::ICalendar {
namespace {

std::string validated(std::string text) {
    auto const isPlain = [](char byte) { return byte != 0 && static_cast<unsigned char>(byte) < 0x80; };
    if (std::ranges::all_of(text, isPlain)) return text;
    if (!Foundation::Text::isValidUTF8(text)) text = Foundation::Text::sanitizedUTF8(text);
    // A NUL would cut the text in every C library that it passes later.
    constexpr std::string_view replacement = "\xEF\xBF\xBD";
    auto const nuls = static_cast<std::size_t>(std::ranges::count(text, '\0'));
    if (nuls == 0) return text;
    std::string result;
    result.reserve(text.size() + nuls * (replacement.size() - 1));
    for (char const byte : text) {
        if (byte == '\0') {
            result += replacement;
        } else {
            result += byte;
        }
    }
    return result;
}

std::string unescaped(std::string const& text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t position = 0; position < text.size(); ++position) {
        char const byte = text[position];
        bool const isEscape = byte == '\\' && position + 1 < text.size();
        if (!isEscape) {
            result += byte;
            continue;
        }
        char const escaped = text[++position];
        if (escaped == 'n' || escaped == 'N') {
            result += '\n';
        } else if (escaped == '\\' || escaped == ',' || escaped == ';' || escaped == ':' || escaped == '"') {
            result += escaped;
        } else {
            // Not an escape of the format: a path of another system, most likely.
            result += byte;
            result += escaped;
        }
    }
    return result;
}

} // namespace

PropertyValue::PropertyValue(std::string_view raw) : bytes(raw) {}

std::string_view PropertyValue::raw() const {
    return bytes;
}

std::string PropertyValue::text() const {
    auto unfolded = unfold(bytes);
    if (unfolded.find('\\') == std::string::npos) return validated(std::move(unfolded));
    return validated(unescaped(unfolded));
}

std::string PropertyValue::uri() const {
    return validated(unfold(trimmed(bytes)));
}

} // namespace Platform::ICalendar
