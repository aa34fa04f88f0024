#include "Platform/EventStore/ICalendar/ValueParser.h"

#include "Platform/EventStore/ICalendar/CivilDays.h"
#include "Platform/EventStore/ICalendar/ContentLine.h"

namespace Platform::ICalendar {
namespace {

constexpr std::int64_t longestDuration = 9999LL * 366 * secondsPerDay;

// The number that `digits` digits at `position` make; -1 when one of them is none.
std::int32_t numberAt(std::string_view text, std::size_t position, std::size_t digits) {
    std::int32_t number = 0;
    for (auto place = position; place < position + digits; ++place) {
        auto const digit = static_cast<unsigned char>(text[place] - '0');
        if (digit > 9) return -1;
        number = number * 10 + digit;
    }
    return number;
}

// Reads one of "15M", "2D" … off the front; absent when there is none or it is out of bounds.
struct DurationPart {
    std::int64_t number;
    char unit;
};
std::optional<DurationPart> takeDurationPart(std::string_view& text) {
    std::int64_t number = 0;
    std::size_t digits = 0;
    while (digits < text.size() && text[digits] >= '0' && text[digits] <= '9') {
        number = number * 10 + (text[digits] - '0');
        if (number > longestDuration) return std::nullopt;
        ++digits;
    }
    if (digits == 0 || digits == text.size()) return std::nullopt;
    char unit = text[digits];
    if (unit >= 'a') unit = static_cast<char>(unit - 'a' + 'A');
    text.remove_prefix(digits + 1);
    return DurationPart{.number = number, .unit = unit};
}

bool addPart(CalendarDuration& duration, DurationPart part, bool isTime) {
    switch (part.unit) {
    case 'W': duration.days += part.number * 7; return !isTime;
    case 'D': duration.days += part.number; return !isTime;
    case 'H': duration.seconds += part.number * 3600; return isTime;
    case 'M': duration.seconds += part.number * 60; return isTime;
    case 'S': duration.seconds += part.number; return isTime;
    default: return false;
    }
}

} // namespace

std::optional<CalendarTime> parseTime(std::string_view text, TimeParameters parameters) {
    text = trimmed(text);
    if (text.size() < 8) return std::nullopt;
    auto const year = numberAt(text, 0, 4);
    auto const month = numberAt(text, 4, 2);
    auto const day = numberAt(text, 6, 2);
    bool const isDay = year >= 1 && month >= 1 && month <= 12 && day >= 1 && day <= daysInMonth(year, month);
    if (!isDay) return std::nullopt;
    CalendarTime time{.form = TimeForm::date,
                      .zone = 0,
                      .localSeconds = dayNumber({.year = year, .month = month, .day = day}) * secondsPerDay};
    if (text.size() == 8) return time;

    bool const isUTC = text.size() == 16 && (text[15] == 'Z' || text[15] == 'z');
    bool const isTime = (text.size() == 15 || isUTC) && (text[8] == 'T' || text[8] == 't');
    if (!isTime) return std::nullopt;
    auto const hour = numberAt(text, 9, 2);
    auto const minute = numberAt(text, 11, 2);
    auto const second = numberAt(text, 13, 2);
    bool const isTimeOfDay =
        hour >= 0 && hour <= 23 && minute >= 0 && minute <= 59 && second >= 0 && second <= 60;
    if (!isTimeOfDay) return std::nullopt;
    if (parameters.isDate) return time;
    // A leap second counts as the second before it, as the format asks of clocks without any.
    time.localSeconds += hour * 3600 + minute * 60 + (second == 60 ? 59 : second);
    if (isUTC) {
        time.form = TimeForm::utc;
    } else if (parameters.zone) {
        time.form = TimeForm::zoned;
        time.zone = *parameters.zone;
    } else {
        time.form = TimeForm::floating;
    }
    return time;
}

std::optional<CalendarDuration> parseDuration(std::string_view text) {
    text = trimmed(text);
    bool const isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+')) text.remove_prefix(1);
    if (!text.starts_with('P') && !text.starts_with('p')) return std::nullopt;
    text.remove_prefix(1);
    if (text.empty()) return std::nullopt;
    CalendarDuration duration{.days = 0, .seconds = 0};
    bool isTime = false;
    while (!text.empty()) {
        if (!isTime && (text.front() == 'T' || text.front() == 't')) {
            isTime = true;
            text.remove_prefix(1);
            continue;
        }
        auto const part = takeDurationPart(text);
        if (!part || !addPart(duration, *part, isTime)) return std::nullopt;
        bool const isBounded =
            duration.days <= longestDuration / secondsPerDay && duration.seconds <= longestDuration;
        if (!isBounded) return std::nullopt;
    }
    if (isNegative) duration = {.days = -duration.days, .seconds = -duration.seconds};
    return duration;
}

std::optional<RecurrenceDate> parseRecurrenceDate(std::string_view text, TimeParameters parameters) {
    auto const slash = text.find('/');
    auto const start = parseTime(text.substr(0, slash), parameters);
    if (!start) return std::nullopt;
    RecurrenceDate date{.start = *start};
    if (slash == std::string_view::npos) return date;
    auto const rest = text.substr(slash + 1);
    if (auto const duration = parseDuration(rest)) {
        if (duration->days < 0 || duration->seconds < 0) return std::nullopt;
        date.duration = duration;
        return date;
    }
    date.end = parseTime(rest, parameters);
    if (!date.end || date.end->form != start->form || date.end->localSeconds < start->localSeconds) {
        return std::nullopt;
    }
    return date;
}

std::optional<std::int32_t> parseOffset(std::string_view text) {
    text = trimmed(text);
    bool const isNegative = text.starts_with('-');
    if (!isNegative && !text.starts_with('+')) return std::nullopt;
    text.remove_prefix(1);
    if (text.size() != 4 && text.size() != 6) return std::nullopt;
    auto const hours = numberAt(text, 0, 2);
    auto const minutes = numberAt(text, 2, 2);
    auto const seconds = text.size() == 6 ? numberAt(text, 4, 2) : 0;
    bool const isOffset =
        hours >= 0 && hours <= 23 && minutes >= 0 && minutes <= 59 && seconds >= 0 && seconds <= 59;
    if (!isOffset) return std::nullopt;
    auto const offset = hours * 3600 + minutes * 60 + seconds;
    return isNegative ? -offset : offset;
}

} // namespace Platform::ICalendar
