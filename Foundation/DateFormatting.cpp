#include "Foundation/DateFormatting.h"

#include "Foundation/FatalError.h"

#include <unicode/dtfmtsym.h>
#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>

namespace Foundation {
namespace {

constexpr std::int64_t secondsPerDay = 86400;

// Reads a fixed form from left to right; after the first mismatch every further step fails too.
class FixedFormReader {
public:
    explicit FixedFormReader(std::string_view text) : rest(text) {}

    std::int32_t digits(std::size_t count) {
        if (rest.size() < count) good = false;
        std::int32_t value = 0;
        for (std::size_t index = 0; good && index < count; ++index) {
            char const digit = rest[index];
            if (digit < '0' || digit > '9') good = false;
            value = value * 10 + (digit - '0');
        }
        if (good) rest.remove_prefix(count);
        return value;
    }

    void expect(char character) {
        if (!accept(character)) good = false;
    }

    bool accept(char character) {
        if (!good || !rest.starts_with(character)) return false;
        rest.remove_prefix(1);
        return true;
    }

    void require(bool condition) { good = good && condition; }
    [[nodiscard]] bool isGood() const { return good; }
    [[nodiscard]] bool isAtEnd() const { return rest.empty(); }

private:
    std::string_view rest;
    bool good = true;
};

DateComponents readDay(FixedFormReader& reader) {
    DateComponents components{
        .year = 0, .month = 0, .day = 0, .hour = 0, .minute = 0, .second = 0, .weekday = 0};
    components.year = reader.digits(4);
    reader.expect('-');
    components.month = reader.digits(2);
    reader.expect('-');
    components.day = reader.digits(2);
    return components;
}

// Seconds east of UTC: "Z", "+05:30" or "+0530".
std::int32_t readOffset(FixedFormReader& reader) {
    if (reader.accept('Z')) return 0;
    std::int32_t const sign = reader.accept('-') ? -1 : 1;
    if (sign == 1) reader.expect('+');
    auto const hours = reader.digits(2);
    reader.accept(':');
    auto const minutes = reader.digits(2);
    reader.require(hours <= 23 && minutes <= 59);
    return sign * (hours * 3600 + minutes * 60);
}

std::int32_t twelveHour(std::int32_t hour) {
    auto const rest = hour % 12;
    return rest == 0 ? 12 : rest;
}

// A moment that need not have components on the calendar.
std::optional<Date> momentOnAnyCalendar(std::string_view text, Calendar const& calendar) {
    if (auto const instant = dateFromISO8601(text)) return instant;
    // "2026-03-11T09:00Z": the seconds may be left out before an offset, too.
    constexpr std::size_t minutesEnd = 16;
    if (text.size() > minutesEnd && text[minutesEnd] != ':')
        return dateFromISO8601(std::string(text.substr(0, minutesEnd)) + ":00" +
                               std::string(text.substr(minutesEnd)));

    FixedFormReader reader(text);
    auto components = readDay(reader);
    bool const isDay = reader.isAtEnd();
    if (!isDay) {
        reader.expect('T');
        components.hour = reader.digits(2);
        reader.expect(':');
        components.minute = reader.digits(2);
        if (reader.accept(':')) components.second = reader.digits(2);
    }
    if (!reader.isGood() || !reader.isAtEnd()) return std::nullopt;
    auto const moment = calendar.dateFromComponents(components);
    if (!moment || !isDay) return moment;
    return calendar.startOfDay(
        std::chrono::local_days(std::chrono::year(static_cast<int>(components.year)) /
                                std::chrono::month(static_cast<unsigned>(components.month)) /
                                std::chrono::day(static_cast<unsigned>(components.day))));
}

} // namespace

std::string weekdayName(Date date, Calendar const& calendar, Locale const& locale) {
    UErrorCode status = U_ZERO_ERROR;
    icu::DateFormatSymbols const symbols(icu::Locale(locale.identifier.c_str()), "gregorian", status);
    if (U_FAILURE(status)) fatalError("the locale library has no names of weekdays");
    std::int32_t count = 0;
    auto const* names =
        symbols.getWeekdays(count, icu::DateFormatSymbols::FORMAT, icu::DateFormatSymbols::WIDE);
    auto const weekday = calendar.components(date).weekday;
    if (weekday >= count) fatalError("the locale library has no names of weekdays");
    std::string name;
    names[weekday].toUTF8String(name);
    return name;
}

std::string twelveHourTimeWithMarker(Date date, Calendar const& calendar) {
    auto const marker = calendar.components(date).hour < 12 ? " a.m." : " p.m.";
    return twelveHourTime(date, calendar) + marker;
}

std::string twelveHourTime(Date date, Calendar const& calendar) {
    auto const components = calendar.components(date);
    return fmt::format("{:02}:{:02}", twelveHour(components.hour), components.minute);
}

std::string logTimestamp(Date date, Calendar const& calendar) {
    auto const components = calendar.components(date);
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", components.year, components.month,
                       components.day, components.hour, components.minute, components.second);
}

std::string iso8601(Date date) {
    // What std::chrono's years can name, with room to spare; tested before the cast.
    bool const representable = date.secondsSince1970 > -9e11 && date.secondsSince1970 < 9e11;
    if (!representable) fatalError("an instant too far from the present has no text");
    auto const seconds = static_cast<std::int64_t>(std::floor(date.secondsSince1970));
    auto const days = seconds / secondsPerDay - (seconds % secondsPerDay < 0 ? 1 : 0);
    auto const second = seconds - days * secondsPerDay;
    std::chrono::year_month_day const civil{std::chrono::sys_days(std::chrono::days(days))};
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", static_cast<int>(civil.year()),
                       static_cast<unsigned>(civil.month()), static_cast<unsigned>(civil.day()),
                       second / 3600, second / 60 % 60, second % 60);
}

std::optional<Date> dateFromISO8601(std::string_view text) {
    FixedFormReader reader(text);
    auto components = readDay(reader);
    reader.expect('T');
    components.hour = reader.digits(2);
    reader.expect(':');
    components.minute = reader.digits(2);
    reader.expect(':');
    components.second = reader.digits(2);
    auto const offset = readOffset(reader);
    if (!reader.isGood() || !reader.isAtEnd()) return std::nullopt;

    Calendar const utc(TimeZone::utc());
    auto const local = utc.dateFromComponents(components);
    if (!local) return std::nullopt;
    // The offset can carry the first and the last day into years that have no components.
    return utc.dateByAddingMinutes(0, local->addingTimeInterval(-static_cast<double>(offset)));
}

std::optional<Date> momentFromISO8601(std::string_view text, Calendar const& calendar) {
    auto const moment = momentOnAnyCalendar(text, calendar);
    // Near the ends of time an instant of these years in UTC can lie outside them on the calendar's clocks.
    return moment ? calendar.dateByAddingMinutes(0, *moment) : std::nullopt;
}

} // namespace Foundation
