#include "Platform/EventStore/ICalendar/CalendarSplice.h"

#include "Platform/EventStore/ICalendar/ContentLine.h"
#include "Platform/EventStore/ICalendar/ContentLineWriter.h"
#include "Platform/EventStore/ICalendar/Delimiter.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>

namespace Platform::ICalendar {
namespace {

// Where the last calendar ends: the offset of its END line.
std::optional<std::size_t> lastCalendarEnd(CalendarFile const& file) {
    std::optional<std::size_t> place;
    ContentLineScanner lines(*file.bytes);
    while (lines.next()) {
        if (delimiterIn(lines.line()).ends("VCALENDAR")) place = lines.offset();
    }
    return place;
}

bool hasCalendar(CalendarFile const& file) {
    ContentLineScanner lines(*file.bytes);
    while (lines.next()) {
        if (delimiterIn(lines.line()).begins("VCALENDAR")) return true;
    }
    return false;
}

} // namespace

CalendarSource calendarSource(std::string bytes, std::string path) {
    auto file = read(bytes, std::move(path));
    return {.bytes = std::move(bytes), .file = std::move(file)};
}

std::string spliced(std::string_view bytes, std::vector<Splice> const& splices) {
    std::vector<std::size_t> order(splices.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::ranges::sort(order, {}, [&](std::size_t index) { return std::pair(splices[index].offset, index); });
    std::string result;
    std::size_t taken = 0;
    for (auto const index : order) {
        auto const& splice = splices[index];
        result += bytes.substr(taken, splice.offset - taken);
        result += splice.text;
        taken = splice.offset + splice.length;
    }
    result += bytes.substr(taken);
    return result;
}

Splice insertion(CalendarSource const& source, std::string components) {
    if (auto const end = lastCalendarEnd(*source.file))
        return {.offset = *end, .length = 0, .text = std::move(components)};
    auto const breakText = lineBreakOf(source.bytes);
    bool const endsInLine =
        source.bytes.empty() || source.bytes.ends_with('\n') || source.bytes.ends_with('\r');
    auto text = endsInLine ? std::string() : breakText;
    // A calendar that has lost its end takes them as they are.
    text += hasCalendar(*source.file) ? components : newCalendar(components, breakText);
    return {.offset = source.bytes.size(), .length = 0, .text = std::move(text)};
}

std::string lineBreakOf(std::string_view bytes) {
    auto const start = bytes.find_first_of("\r\n");
    if (start == std::string_view::npos) return "\r\n";
    if (bytes[start] == '\n') return "\n";
    bool const isPair = start + 1 < bytes.size() && bytes[start + 1] == '\n';
    return isPair ? "\r\n" : "\r";
}

std::string newCalendar(std::string_view components, std::string_view lineBreak) {
    std::string text;
    for (std::string_view const line :
         {"BEGIN:VCALENDAR", "VERSION:2.0", "PRODID:-//Quillora//Quillora//EN", "CALSCALE:GREGORIAN"}) {
        text += line;
        text += lineBreak;
    }
    text += components;
    text += "END:VCALENDAR";
    text += lineBreak;
    return text;
}

std::string withCalendarName(CalendarSource const& source, std::string_view name) {
    ContentLineScanner lines(*source.file->bytes);
    while (lines.next()) {
        if (!delimiterIn(lines.line()).begins("VCALENDAR")) continue;
        auto line = contentLine("X-WR-CALNAME", {}, escapedText(name), lineBreakOf(source.bytes));
        return spliced(source.bytes, {{.offset = lines.endOffset(), .length = 0, .text = std::move(line)}});
    }
    return source.bytes;
}

bool holdsOnly(CalendarSource const& source, std::string_view uid) {
    auto const& file = *source.file;
    // An event that could not be read is not ours to throw away.
    bool const isAllRead = std::ranges::none_of(
        file.problems, [](Problem const& problem) { return problem.effect == Problem::Effect::skipped; });
    if (!isAllRead) return false;
    if (!std::ranges::all_of(file.events, [&](auto const& event) { return event.uid == uid; })) return false;
    int depth = 0;
    ContentLineScanner lines(*file.bytes);
    while (lines.next()) {
        auto const delimiter = delimiterIn(lines.line());
        if (delimiter.kind == Delimiter::Kind::end) --depth;
        if (delimiter.kind != Delimiter::Kind::begin) continue;
        ++depth;
        if (depth != 2) continue;
        if (!delimiter.begins("VEVENT") && !delimiter.begins("VTIMEZONE")) return false;
    }
    return true;
}

} // namespace Platform::ICalendar
