#include "Foundation/Calendar.h"

#include "Tests/Foundation/HostileLocale.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <csignal>
#include <limits>

namespace {

using namespace Foundation;
using namespace std::chrono_literals;

Calendar calendarIn(std::string_view zone) {
    return Calendar(TimeZone::named(zone).value());
}

Date at(double seconds) {
    return {.secondsSince1970 = seconds};
}

constexpr auto largest = std::numeric_limits<std::int64_t>::max();

TEST(CalendarDayArithmeticTests, theWallClockTimeIsKept) {
    useHostileLocale();
    struct Row {
        std::string_view name;
        std::string_view zone;
        double start;
        std::int64_t days;
        double expected;
    };
    for (auto const& row :
         {Row{"into a day of 25 hours", "America/New_York", 1730570820, 1, 1730660820},
          {"into a gap, forwards", "America/New_York", 1709969400, 1, 1710055800},
          {"into a gap, backwards", "America/New_York", 1710138600, -1, 1710055800},
          {"into a repeated hour from before", "America/New_York", 1730525400, 1, 1730611800},
          {"into a repeated hour from behind", "America/New_York", 1730701800, -1, 1730615400},
          {"within a repeated hour", "America/New_York", 1730615400, 0, 1730615400},
          {"leap day", "Europe/Madrid", 1709118000.25, 1, 1709204400.25},
          {"end of the year", "Asia/Kathmandu", 1704003300, 1, 1704089700},
          {"before 1970", "America/New_York", -86400.5, -1, -172800.5},
          {"a long way", "Europe/Berlin", 1700000000, 365 * 20, 2330720000}}) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(calendarIn(row.zone).dateByAddingDays(row.days, at(row.start)), at(row.expected));
    }
}

TEST(CalendarDayArithmeticTests, theFractionIsKeptExactly) {
    EXPECT_EQ(calendarIn("America/New_York").dateByAddingDays(-10, at(1700000000 + 1.0 / 1024)),
              at(1699132400 + 1.0 / 1024));
}

TEST(CalendarDayArithmeticTests, aDayThatNeverWasDoesNotCrash) {
    // Apia, 2011-12-29 14:07; the 30th was left out.
    EXPECT_TRUE(calendarIn("Pacific/Apia").dateByAddingDays(1, at(1325203620)).has_value());
}

TEST(CalendarDayArithmeticTests, thereIsNoDateOutsideTheYears1To9999) {
    auto const calendar = calendarIn("Europe/Berlin");
    auto const now = at(1700000000);
    for (std::int64_t const days : {largest, -largest - 1, largest / 86400, std::int64_t{2'914'000},
                                    std::int64_t{-740'000}, std::int64_t{4'000'001}}) {
        SCOPED_TRACE(days);
        EXPECT_EQ(calendar.dateByAddingDays(days, now), std::nullopt);
    }
    EXPECT_TRUE(calendar.dateByAddingDays(2'912'000, now).has_value());
    for (double const seconds : {std::nan(""), 1e300, -1e300, std::numeric_limits<double>::infinity()})
        EXPECT_EQ(calendar.dateByAddingDays(1, at(seconds)), std::nullopt);
}

TEST(CalendarMinuteArithmeticTests, minutesAreAbsoluteAcrossAChangeOfClocks) {
    auto const calendar = calendarIn("America/New_York");
    EXPECT_EQ(calendar.dateByAddingMinutes(15, at(1710053700)), at(1710054600));
    EXPECT_EQ(calendar.dateByAddingMinutes(-15, at(0.5)), at(-899.5));
    for (std::int64_t const minutes : {largest, largest / 60, -largest - 1})
        EXPECT_EQ(calendar.dateByAddingMinutes(minutes, at(0)), std::nullopt);
}

TEST(CalendarComparisonTests, theSameDayIsTheOneOfTheCalendarsZone) {
    auto const saoPaulo = calendarIn("America/Sao_Paulo");
    EXPECT_FALSE(saoPaulo.isDateInSameDay(at(1541300400), at(1541300399)));
    EXPECT_TRUE(saoPaulo.isDateInSameDay(at(1541300400), at(1541300400 + 82799)));
    EXPECT_FALSE(saoPaulo.isDateInSameDay(at(1541300400), at(1541300400 + 82800)));

    // 2024-03-06 20:00 UTC lies on 7 March in Tokyo.
    auto const tokyo = calendarIn("Asia/Tokyo");
    EXPECT_EQ(tokyo.day(at(1709755200)), std::chrono::local_days(2024y / 3 / 7));
    EXPECT_FALSE(tokyo.isDateInSameDay(at(1709755200), at(1709726400)));
    EXPECT_FALSE(tokyo.isDateInSameDay(at(std::nan("")), at(std::nan(""))));
}

TEST(CalendarComparisonTests, theSameMinuteIgnoresSeconds) {
    Calendar const utc(TimeZone::utc());
    auto const ten = 1709719200.0; // 2024-03-06 10:00
    EXPECT_TRUE(utc.isDateInSameMinute(at(ten), at(ten + 59.9)));
    EXPECT_FALSE(utc.isDateInSameMinute(at(ten + 59.9), at(ten + 60)));
    EXPECT_FALSE(utc.isDateInSameMinute(at(ten), at(ten + 86400)));
}

TEST(CalendarComponentsTests, componentsAreThoseOnTheZonesClocks) {
    EXPECT_EQ(calendarIn("America/New_York").components(at(1730615400.75)),
              (DateComponents{
                  .year = 2024, .month = 11, .day = 3, .hour = 1, .minute = 30, .second = 0, .weekday = 1}));
    EXPECT_EQ(
        Calendar(TimeZone::utc()).components(at(-0.5)),
        (DateComponents{
            .year = 1969, .month = 12, .day = 31, .hour = 23, .minute = 59, .second = 59, .weekday = 4}));
}

TEST(CalendarComponentsTests, componentsNameAnInstant) {
    auto const newYork = calendarIn("America/New_York");
    auto const components = [](std::int64_t year, std::int32_t month, std::int32_t day, std::int32_t hour,
                               std::int32_t minute) {
        return DateComponents{.year = year,
                              .month = month,
                              .day = day,
                              .hour = hour,
                              .minute = minute,
                              .second = 0,
                              .weekday = 0};
    };
    EXPECT_EQ(newYork.dateFromComponents(components(2024, 11, 3, 1, 30)), at(1730611800));
    EXPECT_EQ(newYork.dateFromComponents(components(2024, 3, 10, 2, 30)), at(1710055800));
    for (auto const& wrong :
         {components(2023, 2, 29, 0, 0), components(2024, 13, 1, 0, 0), components(2024, 0, 1, 0, 0),
          components(2024, 1, 0, 0, 0), components(2024, 1, 1, 24, 0), components(2024, 1, 1, 0, 60),
          components(0, 1, 1, 0, 0), components(10000, 1, 1, 0, 0), components(2024, -1, 1, 0, 0)})
        EXPECT_EQ(newYork.dateFromComponents(wrong), std::nullopt);
}

TEST(CalendarComponentsTests, aDayBeginsAtItsFirstInstant) {
    EXPECT_EQ(calendarIn("America/Sao_Paulo").startOfDay(std::chrono::local_days(2018y / 11 / 4)),
              at(1541300400));
    EXPECT_EQ(calendarIn("Europe/Berlin").startOfDay(std::chrono::local_days(2024y / 3 / 31)),
              at(1711839600));
    EXPECT_EQ(calendarIn("Africa/Cairo").startOfDay(std::chrono::local_days(2026y / 4 / 24)), at(1776981600));
    // From half past eleven the clocks of Toronto went on to half past midnight.
    EXPECT_EQ(calendarIn("America/Toronto").startOfDay(std::chrono::local_days(1919y / 3 / 31)),
              at(-1601753400));
}

TEST(CalendarComponentsDeathTests, aDateFarAwayHasNoComponents) {
    EXPECT_EXIT((void)Calendar(TimeZone::utc()).components(at(std::nan(""))),
                testing::KilledBySignal(SIGABRT), "outside the years 1 to 9999");
    EXPECT_EXIT((void)Calendar(TimeZone::utc()).day(at(1e13)), testing::KilledBySignal(SIGABRT),
                "outside the years 1 to 9999");
}

} // namespace
