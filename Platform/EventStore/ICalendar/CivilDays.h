#pragma once

#include <chrono>
#include <cstdint>

/// Days of the Gregorian calendar as plain numbers, counted from 1970-01-01, for the expander's inner loops.
namespace Platform::ICalendar {

inline constexpr std::int64_t secondsPerDay = 86400;

struct CivilDay {
    std::int32_t year;
    std::int32_t month; ///< 1…12
    std::int32_t day;   ///< 1…31
};

constexpr std::int64_t floorDivide(std::int64_t value, std::int64_t divisor) {
    return value / divisor - (value % divisor < 0 ? 1 : 0);
}

/// Not negative for a positive divisor.
constexpr std::int64_t floorModulo(std::int64_t value, std::int64_t divisor) {
    return value - floorDivide(value, divisor) * divisor;
}

constexpr bool isLeapYear(std::int32_t year) {
    return std::chrono::year(year).is_leap();
}

constexpr std::int32_t daysInYear(std::int32_t year) {
    return isLeapYear(year) ? 366 : 365;
}

constexpr std::int32_t daysInMonth(std::int32_t year, std::int32_t month) {
    if (month == 2) return isLeapYear(year) ? 29 : 28;
    return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

constexpr std::int64_t dayNumber(CivilDay civil) {
    std::chrono::year_month_day const date(std::chrono::year(civil.year),
                                           std::chrono::month(static_cast<unsigned>(civil.month)),
                                           std::chrono::day(static_cast<unsigned>(civil.day)));
    return std::chrono::local_days(date).time_since_epoch().count();
}

constexpr CivilDay civilDay(std::int64_t dayNumber) {
    std::chrono::local_days const day{std::chrono::days(dayNumber)};
    std::chrono::year_month_day const date(day);
    return {.year = static_cast<int>(date.year()),
            .month = static_cast<std::int32_t>(static_cast<unsigned>(date.month())),
            .day = static_cast<std::int32_t>(static_cast<unsigned>(date.day()))};
}

/// 0 = Sunday … 6 = Saturday
constexpr std::int32_t weekdayOf(std::int64_t dayNumber) {
    return static_cast<std::int32_t>(floorModulo(dayNumber + 4, 7));
}

/// All that the calendar format can name: 0001-01-01 to 9999-12-31.
inline constexpr std::int64_t firstDayNumber = dayNumber({.year = 1, .month = 1, .day = 1});
inline constexpr std::int64_t lastDayNumber = dayNumber({.year = 9999, .month = 12, .day = 31});
inline constexpr std::int64_t firstSecond = firstDayNumber * secondsPerDay;
inline constexpr std::int64_t lastSecond = lastDayNumber * secondsPerDay + secondsPerDay - 1;

} // namespace Platform::ICalendar
