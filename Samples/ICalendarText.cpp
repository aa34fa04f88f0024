#include "Samples/ICalendarText.h"

#include <algorithm>
#include <cstdlib>
#include <fmt/format.h>

namespace Samples {

namespace {

std::string offsetText(std::int32_t seconds) {
    auto const minutes = std::abs(seconds) / 60;
    return fmt::format("{}{:02}{:02}", seconds < 0 ? '-' : '+', minutes / 60, minutes % 60);
}

std::int64_t secondsOf(std::chrono::local_days day) {
    return std::chrono::duration_cast<std::chrono::seconds>(day.time_since_epoch()).count();
}

bool continuesCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

} // namespace

std::string dateText(std::chrono::local_days day) {
    std::chrono::year_month_day const date(day);
    return fmt::format("{:04}{:02}{:02}", static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                       static_cast<unsigned>(date.day()));
}

std::string timeText(LocalMinutes time) {
    auto const day = std::chrono::floor<std::chrono::days>(time);
    auto const minutes = (time - day).count();
    return fmt::format("{}T{:02}{:02}00", dateText(day), minutes / 60, minutes % 60);
}

std::string escapedText(std::string_view text) {
    std::string escaped;
    for (char const character : text) {
        if (character == '\n') {
            escaped += "\\n";
            continue;
        }
        if (character == '\\' || character == ',' || character == ';') escaped += '\\';
        escaped += character;
    }
    return escaped;
}

void ICalendarText::line(std::string_view text) {
    std::size_t limit = 75;
    while (text.size() > limit) {
        auto cut = limit;
        while (continuesCharacter(text[cut]))
            --cut;
        lines += text.substr(0, cut);
        lines += "\r\n ";
        text.remove_prefix(cut);
        limit = 74; // The blank that marks a continued line counts, too.
    }
    lines += text;
    lines += "\r\n";
}

void ICalendarText::property(std::string_view name, std::string_view value) {
    if (!value.empty()) line(fmt::format("{}:{}", name, escapedText(value)));
}

void ICalendarText::begin(std::string_view component) {
    line(fmt::format("BEGIN:{}", component));
}

void ICalendarText::end(std::string_view component) {
    line(fmt::format("END:{}", component));
}

void ICalendarText::beginCalendar() {
    begin("VCALENDAR");
    line("VERSION:2.0");
    line("PRODID:-//Quillora//Samples//EN");
    line("CALSCALE:GREGORIAN");
}

void ICalendarText::timeZone(Foundation::TimeZone const& zone, std::chrono::local_days day) {
    constexpr std::int64_t secondsPerDay = 86'400;
    auto const first = secondsOf(day) - 366 * secondsPerDay;
    auto const last = secondsOf(day) + 366 * secondsPerDay;
    // No zone changes its clock twice in so few days.
    constexpr auto step = 5 * secondsPerDay;
    auto offset = zone.secondsFromUTC(first);
    auto standard = offset;
    for (auto moment = first; moment < last; moment += step) {
        standard = std::min(standard, zone.secondsFromUTC(moment));
    }
    begin("VTIMEZONE");
    line(fmt::format("TZID:{}", zone.identifier()));
    observance(offset > standard, "19700101T000000", offset, offset);
    for (auto before = first; before < last; before += step) {
        auto const next = zone.secondsFromUTC(before + step);
        if (next == offset) continue;
        // The change lies in this interval: halve it until the second is found.
        auto low = before;
        auto high = before + step;
        while (high - low > 1) {
            auto const middle = low + (high - low) / 2;
            (zone.secondsFromUTC(middle) == offset ? low : high) = middle;
        }
        auto const onset = std::chrono::local_seconds(std::chrono::seconds(high + offset));
        observance(next > standard, timeText(std::chrono::floor<std::chrono::minutes>(onset)), offset, next);
        offset = next;
    }
    end("VTIMEZONE");
}

void ICalendarText::observance(bool isDaylight, std::string_view start, std::int32_t offsetBefore,
                               std::int32_t offsetAfter) {
    auto const* const kind = isDaylight ? "DAYLIGHT" : "STANDARD";
    begin(kind);
    line(fmt::format("DTSTART:{}", start));
    line(fmt::format("TZOFFSETFROM:{}", offsetText(offsetBefore)));
    line(fmt::format("TZOFFSETTO:{}", offsetText(offsetAfter)));
    end(kind);
}

} // namespace Samples
