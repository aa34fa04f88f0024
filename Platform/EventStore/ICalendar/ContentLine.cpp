#include "Platform/EventStore/ICalendar/ContentLine.h"

#include <algorithm>
#include <cstring>

namespace Platform::ICalendar {
namespace {

constexpr char upperCase(char byte) {
    return byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - 'a' + 'A') : byte;
}

constexpr bool isBlank(char byte) {
    return byte == ' ' || byte == '\t' || byte == '\r' || byte == '\n';
}

} // namespace

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

std::string unfold(std::string_view raw) {
    std::string result;
    result.reserve(raw.size());
    for (std::size_t position = 0; position < raw.size(); ++position) {
        char const byte = raw[position];
        if (byte == '\r') continue;
        if (byte == '\n') {
            // The blank after it belongs to the fold.
            ++position;
            continue;
        }
        result += byte;
    }
    return result;
}

bool equalsIgnoringCase(std::string_view text, std::string_view upper) {
    if (text.size() != upper.size()) return false;
    for (std::size_t position = 0; position < text.size(); ++position) {
        if (upperCase(text[position]) != upper[position]) return false;
    }
    return true;
}

ContentLineScanner::ContentLineScanner(std::string_view bytes) : bytes(bytes) {
    if (bytes.starts_with("\xEF\xBB\xBF")) position = 3;
}

bool ContentLineScanner::next() {
    char const* const data = bytes.data();
    auto const size = bytes.size();
    while (position < size) {
        auto const first = position;
        currentNumber = nextNumber;
        folded = false;
        std::size_t end = size;
        for (;;) {
            auto const* found = static_cast<char const*>(std::memchr(data + position, '\n', size - position));
            if (found == nullptr) {
                position = size;
                break;
            }
            ++nextNumber;
            end = static_cast<std::size_t>(found - data);
            position = end + 1;
            bool const continues = position < size && (data[position] == ' ' || data[position] == '\t');
            if (!continues) break;
            folded = true;
            end = size;
        }
        while (end > first && data[end - 1] == '\r')
            --end;
        if (end == first) continue;
        current = bytes.substr(first, end - first);
        currentOffset = first;
        return true;
    }
    return false;
}

bool splitContentLine(std::string_view line, ContentLine& result) {
    std::size_t nameEnd = 0;
    while (nameEnd < line.size() && line[nameEnd] != ':' && line[nameEnd] != ';')
        ++nameEnd;
    if (nameEnd == line.size()) return false;
    result.name = line.substr(0, nameEnd);
    auto colon = nameEnd;
    if (line[colon] == ';') {
        bool isQuoted = false;
        while (colon < line.size() && (isQuoted || line[colon] != ':')) {
            if (line[colon] == '"') isQuoted = !isQuoted;
            ++colon;
        }
        // A quote that never ends would swallow the value.
        if (colon == line.size()) colon = line.find(':', nameEnd);
        if (colon == std::string_view::npos) return false;
    }
    result.parameters = line.substr(nameEnd, colon - nameEnd);
    result.value = line.substr(colon + 1);
    return true;
}

ParameterScanner::ParameterScanner(std::string_view parameters) : rest(parameters) {}

bool ParameterScanner::next() {
    if (rest.empty()) return false;
    rest.remove_prefix(1);
    bool isQuoted = false;
    std::size_t end = 0;
    while (end < rest.size() && (isQuoted || rest[end] != ';')) {
        if (rest[end] == '"') isQuoted = !isQuoted;
        ++end;
    }
    auto const parameter = rest.substr(0, end);
    rest.remove_prefix(end);
    auto const equals = std::min(parameter.find('='), parameter.size());
    currentName = trimmed(parameter.substr(0, equals));
    currentValue = trimmed(parameter.substr(std::min(equals + 1, parameter.size())));
    if (currentValue.starts_with('"')) currentValue.remove_prefix(1);
    if (currentValue.ends_with('"')) currentValue.remove_suffix(1);
    return true;
}

std::string decodedParameter(std::string_view value) {
    std::string result;
    result.reserve(value.size());
    for (std::size_t position = 0; position < value.size(); ++position) {
        char const following = position + 1 < value.size() ? value[position + 1] : '\0';
        bool const isEscape =
            value[position] == '^' && (following == 'n' || following == '\'' || following == '^');
        if (!isEscape) {
            result += value[position];
            continue;
        }
        result += following == 'n' ? '\n' : following == '\'' ? '"' : '^';
        ++position;
    }
    return result;
}

} // namespace Platform::ICalendar
