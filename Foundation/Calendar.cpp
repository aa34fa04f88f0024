#include "Foundation/Calendar.h"

#include "Foundation/FatalError.h"

#include <cmath>
#include <utility>

namespace Foundation {
namespace {

using std::chrono::days;
using std::chrono::local_days;
using std::chrono::year_month_day;

constexpr std::int64_t secondsPerDay = 86400;
constexpr std::int64_t firstLocalSecond =
    local_days(std::chrono::year(1) / 1 / 1).time_since_epoch().count() * secondsPerDay;
constexpr std::int64_t endLocalSecond =
    local_days(std::chrono::year(10000) / 1 / 1).time_since_epoch().count() * secondsPerDay;

// A moment of the years 1…9999 on the zone's clocks.
struct LocalMoment {
    std::int64_t seconds; // From 1970-01-01 00:00 on these clocks.
    std::int32_t offset;
    double fraction; // 0 ≤ fraction < 1

    [[nodiscard]] local_days day() const {
        return local_days(days(seconds / secondsPerDay - (seconds % secondsPerDay < 0 ? 1 : 0)));
    }
    [[nodiscard]] std::int64_t secondOfDay() const {
        return seconds - day().time_since_epoch().count() * secondsPerDay;
    }
};

bool isInSupportedYears(std::int64_t localSeconds) {
    return localSeconds >= firstLocalSecond && localSeconds < endLocalSecond;
}

std::optional<LocalMoment> localMoment(TimeZone const& zone, Date date) {
    // Tested before the cast: NaN and what no 64-bit integer holds fail here.
    bool const representable = date.secondsSince1970 > -1e12 && date.secondsSince1970 < 1e12;
    if (!representable) return std::nullopt;
    double const whole = std::floor(date.secondsSince1970);
    auto const utcSeconds = static_cast<std::int64_t>(whole);
    auto const offset = zone.secondsFromUTC(utcSeconds);
    LocalMoment const moment{
        .seconds = utcSeconds + offset, .offset = offset, .fraction = date.secondsSince1970 - whole};
    if (!isInSupportedYears(moment.seconds)) return std::nullopt;
    return moment;
}

LocalMoment supportedMoment(TimeZone const& zone, Date date) {
    auto const moment = localMoment(zone, date);
    if (!moment) fatalError("a date outside the years 1 to 9999 has no calendar components");
    return *moment;
}

} // namespace

Calendar::Calendar(TimeZone timeZone) : zone(std::move(timeZone)) {}

TimeZone const& Calendar::timeZone() const {
    return zone;
}

std::optional<Date> Calendar::dateByAddingDays(std::int64_t dayCount, Date date) const {
    auto const moment = localMoment(zone, date);
    // The years 1…9999 have fewer days than this: tested before any arithmetic, which could overflow.
    constexpr std::int64_t mostDays = 4'000'000;
    if (!moment || dayCount > mostDays || dayCount < -mostDays) return std::nullopt;

    auto const localSeconds = moment->seconds + dayCount * secondsPerDay;
    if (!isInSupportedYears(localSeconds)) return std::nullopt;
    auto const resolution = zone.resolveLocal(localSeconds);
    auto utcSeconds = resolution.first;
    bool const repeated = resolution.kind == TimeZone::LocalTimeResolution::Kind::repeated;
    if (repeated && zone.secondsFromUTC(resolution.second) == moment->offset) utcSeconds = resolution.second;
    return Date{.secondsSince1970 = static_cast<double>(utcSeconds) + moment->fraction};
}

std::optional<Date> Calendar::dateByAddingMinutes(std::int64_t minutes, Date date) const {
    std::int64_t seconds = 0;
    if (__builtin_mul_overflow(minutes, std::int64_t{60}, &seconds)) return std::nullopt;
    auto const result = date.addingTimeInterval(static_cast<double>(seconds));
    if (!localMoment(zone, result)) return std::nullopt;
    return result;
}

bool Calendar::isDateInSameDay(Date left, Date right) const {
    auto const leftMoment = localMoment(zone, left);
    auto const rightMoment = localMoment(zone, right);
    return leftMoment && rightMoment && leftMoment->day() == rightMoment->day();
}

bool Calendar::isDateInSameMinute(Date left, Date right) const {
    auto const leftMoment = localMoment(zone, left);
    auto const rightMoment = localMoment(zone, right);
    return leftMoment && rightMoment && leftMoment->day() == rightMoment->day() &&
           leftMoment->secondOfDay() / 60 == rightMoment->secondOfDay() / 60;
}

DateComponents Calendar::components(Date date) const {
    auto const moment = supportedMoment(zone, date);
    year_month_day const civil(moment.day());
    auto const second = static_cast<std::int32_t>(moment.secondOfDay());
    auto const weekday = static_cast<std::int32_t>(std::chrono::weekday(moment.day()).c_encoding()) + 1;
    return {.year = static_cast<int>(civil.year()),
            .month = static_cast<std::int32_t>(static_cast<unsigned>(civil.month())),
            .day = static_cast<std::int32_t>(static_cast<unsigned>(civil.day())),
            .hour = second / 3600,
            .minute = second / 60 % 60,
            .second = second % 60,
            .weekday = weekday};
}

local_days Calendar::day(Date date) const {
    return supportedMoment(zone, date).day();
}

std::optional<Date> Calendar::dateFromComponents(DateComponents const& components) const {
    auto const isWithin = [](std::int64_t value, std::int64_t first, std::int64_t last) {
        return value >= first && value <= last;
    };
    if (!isWithin(components.year, 1, 9999) || !isWithin(components.month, 1, 12) ||
        !isWithin(components.day, 1, 31) || !isWithin(components.hour, 0, 23) ||
        !isWithin(components.minute, 0, 59) || !isWithin(components.second, 0, 59))
        return std::nullopt;
    year_month_day const civil(std::chrono::year(static_cast<int>(components.year)),
                               std::chrono::month(static_cast<unsigned>(components.month)),
                               std::chrono::day(static_cast<unsigned>(components.day)));
    if (!civil.ok()) return std::nullopt;

    auto const localSeconds = local_days(civil).time_since_epoch().count() * secondsPerDay +
                              components.hour * 3600 + components.minute * 60 + components.second;
    return Date{.secondsSince1970 = static_cast<double>(zone.resolveLocal(localSeconds).first)};
}

Date Calendar::startOfDay(local_days day) const {
    auto const midnight = day.time_since_epoch().count() * secondsPerDay;
    auto const resolution = zone.resolveLocal(midnight);
    bool const skipped = resolution.kind == TimeZone::LocalTimeResolution::Kind::skipped;
    return {.secondsSince1970 = static_cast<double>(skipped ? resolution.second : resolution.first)};
}

} // namespace Foundation
