#include "Platform/EventStore/ICalendar/ContentLineWriter.h"

#include "Foundation/Text.h"
#include "Platform/EventStore/ICalendar/ContentLine.h"

#include <algorithm>
#include <cstddef>

namespace Platform::ICalendar {
namespace {

bool isControl(char byte) {
    auto const code = static_cast<unsigned char>(byte);
    return (code < 0x20 && byte != '\t') || code == 0x7F;
}

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

} // namespace

std::string escapedText(std::string_view text) {
    auto const valid = Foundation::Text::sanitizedUTF8(text);
    std::string result;
    result.reserve(valid.size());
    for (std::size_t place = 0; place < valid.size(); ++place) {
        char const byte = valid[place];
        bool const isPair = byte == '\r' && place + 1 < valid.size() && valid[place + 1] == '\n';
        if (isPair) continue;
        if (byte == '\n' || byte == '\r') {
            result += "\\n";
        } else if (byte == '\\' || byte == ';' || byte == ',') {
            result += '\\';
            result += byte;
        } else if (!isControl(byte)) {
            result += byte;
        }
    }
    return result;
}

std::string uriText(std::string_view text) {
    auto valid = Foundation::Text::sanitizedUTF8(trimmed(text));
    std::erase_if(valid, isControl);
    return valid;
}

std::string parameterText(std::string_view value) {
    auto const valid = Foundation::Text::sanitizedUTF8(value);
    std::string result;
    bool needsQuotes = false;
    for (char const byte : valid) {
        needsQuotes = needsQuotes || byte == ';' || byte == ':' || byte == ',';
        if (byte == '^') {
            result += "^^";
        } else if (byte == '"') {
            result += "^'";
        } else if (byte == '\n') {
            result += "^n";
        } else if (!isControl(byte)) {
            result += byte;
        }
    }
    return needsQuotes ? '"' + result + '"' : result;
}

std::string contentLine(std::string_view name, std::string_view parameters, std::string_view value,
                        std::string_view lineBreak) {
    constexpr std::size_t longest = 75;
    std::string line(name);
    line += parameters;
    line += ':';
    line += value;
    std::string folded;
    folded.reserve(line.size() + line.size() / longest * 3 + lineBreak.size());
    auto rest = std::string_view(line);
    // The blank that begins a continued line counts.
    auto room = longest;
    while (rest.size() > room) {
        auto cut = room;
        while (cut > 0 && isContinuation(rest[cut]))
            --cut;
        if (cut == 0) cut = room;
        folded += rest.substr(0, cut);
        folded += lineBreak;
        folded += ' ';
        rest.remove_prefix(cut);
        room = longest - 1;
    }
    folded += rest;
    folded += lineBreak;
    return folded;
}

} // namespace Platform::ICalendar
