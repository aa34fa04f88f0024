#include "Platform/EventStore/ICalendar/ComponentText.h"

#include "Platform/EventStore/ICalendar/ContentLine.h"
#include "Platform/EventStore/ICalendar/ContentLineWriter.h"
#include "Platform/EventStore/ICalendar/Delimiter.h"

#include <algorithm>
#include <utility>

namespace Platform::ICalendar {
namespace {

// The scanner knows LF and CRLF; the bare CR of old programs is shown to it as LF, which moves no byte.
std::string withKnownBreaks(std::string_view bytes) {
    std::string result(bytes);
    for (std::size_t place = 0; place < result.size(); ++place) {
        if (result[place] != '\r') continue;
        bool const isBare =
            place + 1 == result.size() || (result[place + 1] != '\n' && result[place + 1] != '\r');
        if (isBare) result[place] = '\n';
    }
    return result;
}

std::string breakAtEnd(std::string_view firstLine) {
    auto start = firstLine.find_first_of("\r\n");
    if (start == std::string_view::npos) return "\r\n";
    auto end = firstLine.find('\n', start);
    if (end == std::string_view::npos) return "\r";
    return std::string(firstLine.substr(start, end + 1 - start));
}

} // namespace

ComponentText::ComponentText(std::string_view bytes) {
    auto const known = withKnownBreaks(bytes);
    ContentLineScanner scanner(known);
    std::size_t taken = 0;
    int depth = 0;
    while (scanner.next()) {
        // Empty lines are nobody's, and stay whatever becomes of the line before them.
        if (!lines.empty() && scanner.offset() > taken)
            lines.push_back({.raw = std::string(bytes.substr(taken, scanner.offset() - taken))});
        auto const start = lines.empty() ? 0 : scanner.offset();
        auto& line = lines.emplace_back();
        line.raw = bytes.substr(start, scanner.endOffset() - start);
        taken = scanner.endOffset();
        auto const delimiter = delimiterIn(scanner.line());
        line.isDelimiter = delimiter.kind != Delimiter::Kind::none;
        if (delimiter.kind == Delimiter::Kind::begin) ++depth;
        if (delimiter.kind == Delimiter::Kind::end && depth > 0) --depth;
        if (delimiter.kind != Delimiter::Kind::none || depth != 1) continue;
        ContentLine content;
        if (splitContentLine(scanner.line(), content)) line.name = unfold(content.name);
    }
    if (!lines.empty()) lines.back().raw += bytes.substr(taken);
    breakText = breakAtEnd(lines.empty() ? std::string_view() : std::string_view(lines.front().raw));
}

std::vector<ComponentText::Property> ComponentText::properties(std::string_view name) const {
    std::vector<Property> found;
    for (std::size_t index = 0; index < lines.size(); ++index) {
        if (!equalsIgnoringCase(lines[index].name, name)) continue;
        auto const known = withKnownBreaks(lines[index].raw);
        ContentLineScanner scanner(known);
        ContentLine content;
        if (!scanner.next() || !splitContentLine(scanner.line(), content)) continue;
        found.push_back(
            {.line = index, .parameters = unfold(content.parameters), .value = unfold(content.value)});
    }
    return found;
}

std::optional<ComponentText::Property> ComponentText::first(std::string_view name) const {
    auto found = properties(name);
    if (found.empty()) return std::nullopt;
    return std::move(found.front());
}

std::vector<std::string> ComponentText::contentApartFrom(std::span<std::string_view const> names) const {
    std::vector<std::string> own;
    std::vector<std::string> inside;
    for (auto const& line : lines) {
        bool const isLeftOut = std::ranges::any_of(
            names, [&](std::string_view name) { return equalsIgnoringCase(line.name, name); });
        if (isLeftOut) continue;
        auto content = unfold(trimmed(withKnownBreaks(line.raw)));
        if (content.empty()) continue;
        (line.name.empty() ? inside : own).push_back(std::move(content));
    }
    std::ranges::sort(own);
    own.insert(own.end(), inside.begin(), inside.end());
    return own;
}

void ComponentText::replace(std::size_t line, std::string_view parameters, std::string_view value) {
    lines[line].raw = contentLine(lines[line].name, parameters, value, breakText);
}

void ComponentText::set(std::string_view name, std::string_view value) {
    auto const known = first(name);
    if (known) {
        replace(known->line, known->parameters, value);
    } else {
        add(name, {}, value);
    }
}

void ComponentText::add(std::string_view name, std::string_view parameters, std::string_view value) {
    auto const place = placeForNew();
    if (place > 0) {
        auto& before = lines[place - 1].raw;
        if (!before.ends_with('\n') && !before.ends_with('\r')) before += breakText;
    }
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(place),
                 {.raw = contentLine(name, parameters, value, breakText), .name = std::string(name)});
}

void ComponentText::remove(std::string_view name) {
    std::erase_if(lines, [name](Line const& line) { return equalsIgnoringCase(line.name, name); });
}

void ComponentText::removeLine(std::size_t line) {
    lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(line));
}

std::string ComponentText::text() const {
    std::string text;
    for (auto const& line : lines)
        text += line.raw;
    return text;
}

// Before the first component inside, or before END. A component without END ends with its last line.
std::size_t ComponentText::placeForNew() const {
    for (std::size_t index = 1; index < lines.size(); ++index) {
        if (lines[index].isDelimiter) return index;
    }
    return lines.size();
}

std::string withParameter(std::string_view parameters, std::string_view name,
                          std::optional<std::string_view> value) {
    std::string result;
    bool isSet = false;
    for (auto rest = parameters; !rest.empty();) {
        // One parameter with its semicolon; a quoted value may hold others.
        bool isQuoted = false;
        std::size_t end = 1;
        while (end < rest.size() && (isQuoted || rest[end] != ';')) {
            if (rest[end] == '"') isQuoted = !isQuoted;
            ++end;
        }
        auto const parameter = rest.substr(0, end);
        rest.remove_prefix(end);
        ParameterScanner scanner(parameter);
        bool const isMeant = scanner.next() && equalsIgnoringCase(scanner.name(), name);
        if (!isMeant) {
            result += parameter;
        } else if (value && !std::exchange(isSet, true)) {
            result += ';';
            result += name;
            result += '=';
            result += parameterText(*value);
        }
    }
    if (value && !isSet) {
        result += ';';
        result += name;
        result += '=';
        result += parameterText(*value);
    }
    return result;
}

} // namespace Platform::ICalendar
