// The expander begins at the window that it is asked for. These tests hold it to an expander that walks
// there.

#include "Platform/EventStore/ICalendar/CivilDays.h"
#include "Platform/EventStore/ICalendar/RuleExpander.h"
#include "Tests/EventStore/ICalendar/WalkingExpander.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>

namespace Platform::ICalendar {
namespace {

constexpr std::int64_t plentyOfSteps = 10'000'000;
constexpr std::size_t plenty = 1'000'000;

class RandomRules {
public:
    explicit RandomRules(std::uint32_t seed) : random(seed) {}

    std::int64_t number(std::int64_t from, std::int64_t to) {
        return from + static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(to - from + 1));
    }

    RecurrenceRule next() {
        RecurrenceRule rule{.frequency = static_cast<Frequency>(number(0, 6))};
        rule.interval = isOneIn(2) ? 1 : number(1, rule.frequency <= Frequency::hourly ? 90 : 5);
        rule.weekStart = isOneIn(2) ? 1 : static_cast<std::int32_t>(number(0, 6));
        maybe(rule.byMonth, 4, 1, 12, false);
        maybe(rule.byMonthDay, 4, 1, 31, true);
        if (rule.frequency == Frequency::yearly || rule.frequency <= Frequency::hourly) {
            maybe(rule.byYearDay, 6, 1, 366, true);
        }
        if (rule.frequency == Frequency::yearly) maybe(rule.byWeekNumber, 4, 1, 53, true);
        if (isOneIn(3)) addWeekdays(rule);
        maybe(rule.byHour, 4, 0, 23, false);
        maybe(rule.byMinute, 5, 0, 59, false);
        maybe(rule.bySecond, 6, 0, 60, false);
        if (isOneIn(4)) maybe(rule.bySetPosition, 1, 1, 6, true);
        // Every second of every day would only test patience.
        if (rule.frequency == Frequency::secondly && rule.bySecond.empty()) rule.bySecond = {7};
        if (rule.frequency <= Frequency::minutely && rule.byHour.empty()) rule.byHour = {9, 21};
        return rule;
    }

private:
    bool isOneIn(std::int64_t count) { return number(1, count) == 1; }

    void maybe(std::vector<std::int32_t>& list, std::int64_t oneIn, std::int64_t low, std::int64_t high,
               bool isSigned) {
        if (!isOneIn(oneIn)) return;
        for (auto rest = number(1, 4); rest > 0; --rest) {
            auto const value = static_cast<std::int32_t>(number(low, high));
            list.push_back(isSigned && isOneIn(3) ? -value : value);
        }
        std::ranges::sort(list);
        auto const doubles = std::ranges::unique(list);
        list.erase(doubles.begin(), doubles.end());
    }

    void addWeekdays(RecurrenceRule& rule) {
        for (auto rest = number(1, 3); rest > 0; --rest) {
            auto const ordinal = isOneIn(2) ? 0 : number(1, rule.frequency == Frequency::yearly ? 53 : 5);
            rule.byDay.push_back({.weekday = static_cast<std::int32_t>(number(0, 6)),
                                  .ordinal = static_cast<std::int32_t>(isOneIn(3) ? -ordinal : ordinal)});
        }
        std::ranges::sort(rule.byDay);
        auto const doubles = std::ranges::unique(rule.byDay);
        rule.byDay.erase(doubles.begin(), doubles.end());
    }

    std::mt19937 random;
};

std::string described(RecurrenceRule const& rule, std::int64_t start) {
    std::ostringstream text;
    text << "frequency " << int(rule.frequency) << " interval " << rule.interval << " week start "
         << rule.weekStart << " start "
         << CalendarTime{.form = TimeForm::floating, .zone = 0, .localSeconds = start}.text();
    auto const add = [&text](char const* name, std::vector<std::int32_t> const& list) {
        if (list.empty()) return;
        text << ' ' << name;
        for (auto const value : list)
            text << ' ' << value;
    };
    add("months", rule.byMonth);
    add("month days", rule.byMonthDay);
    add("year days", rule.byYearDay);
    add("weeks", rule.byWeekNumber);
    add("hours", rule.byHour);
    add("minutes", rule.byMinute);
    add("seconds", rule.bySecond);
    add("positions", rule.bySetPosition);
    for (auto const& one : rule.byDay)
        text << " weekday " << one.ordinal << '/' << one.weekday;
    return text.str();
}

std::vector<std::int64_t> within(std::vector<std::int64_t> const& times, std::int64_t from, std::int64_t to) {
    std::vector<std::int64_t> found;
    for (auto const time : times) {
        if (time >= from && time <= to) found.push_back(time);
    }
    return found;
}

struct Sample {
    RecurrenceRule rule;
    std::int64_t start;
    std::int64_t last;
};

Sample nextSample(RandomRules& rules) {
    auto rule = rules.next();
    auto const start =
        rules.number(firstSecond / secondsPerDay / 40, 30'000) * secondsPerDay + rules.number(0, 86399);
    // Enough periods to matter, few enough to walk.
    auto const length = rule.frequency <= Frequency::minutely ? 40
                        : rule.frequency == Frequency::hourly ? 200
                        : rule.frequency == Frequency::yearly ? 4500
                                                              : 1200;
    return {.rule = std::move(rule), .start = start, .last = start + length * secondsPerDay};
}

class JumpingTests : public testing::TestWithParam<std::uint32_t> {};

TEST_P(JumpingTests, aWindowHoldsWhatWalkingFindsThere) {
    RandomRules rules(GetParam());
    std::size_t compared = 0;
    for (int round = 0; round < 60; ++round) {
        auto const [rule, start, last] = nextSample(rules);
        auto const walked = walk(rule, start, last);
        RuleExpander const expander(rule, start);
        for (int window = 0; window < 8; ++window) {
            auto const from = rules.number(start - 40 * secondsPerDay, last);
            auto const to = std::min(last, from + rules.number(0, 400 * secondsPerDay));
            std::vector<std::int64_t> jumped;
            auto steps = plentyOfSteps;
            ASSERT_TRUE(expander.expand(from, to, plenty, steps, jumped)) << described(rule, start);
            auto expected = within(walked, from, to);
            // DTSTART happens whatever the rule says, which is the series' business.
            if (!expander.yields(start)) std::erase(expected, start);
            ASSERT_EQ(jumped, expected) << described(rule, start);
            compared += expected.size();
        }
    }
    EXPECT_GT(compared, 1000U);
}

TEST_P(JumpingTests, aCountEndsWhereWalkingEndsIt) {
    RandomRules rules(GetParam() + 1000);
    std::size_t compared = 0;
    for (int round = 0; round < 60; ++round) {
        auto [rule, start, last] = nextSample(rules);
        auto const all = walk(rule, start, last);
        rule.count = rules.number(1, static_cast<std::int64_t>(all.size()));
        auto const walked = walk(rule, start, last);
        auto steps = plentyOfSteps;
        auto const end = RuleExpander(rule, start).endOfCount(*rule.count, steps);
        ASSERT_FALSE(end.isCut) << described(rule, start);
        ASSERT_EQ(end.last, walked.back()) << described(rule, start) << " count " << *rule.count;
        ++compared;
    }
    EXPECT_EQ(compared, 60U);
}

INSTANTIATE_TEST_SUITE_P(Seeds, JumpingTests, testing::Range(1U, 9U));

TEST(JumpingTests, aWindowCenturiesAwayCostsItsOwnMonthsOnly) {
    RecurrenceRule const daily{.frequency = Frequency::daily};
    auto const start = dayNumber({.year = 2005, .month = 1, .day = 3}) * secondsPerDay + 9 * 3600;
    auto const from = dayNumber({.year = 2526, .month = 11, .day = 1}) * secondsPerDay;
    std::vector<std::int64_t> times;
    auto steps = plentyOfSteps;
    RuleExpander(daily, start).expand(from, from + 21 * secondsPerDay, plenty, steps, times);
    EXPECT_EQ(times.size(), 21U);
    EXPECT_LE(plentyOfSteps - steps, 25);
}

TEST(JumpingTests, aLongCountOfDaysIsMultipliedNotCounted) {
    RecurrenceRule rule{.frequency = Frequency::daily};
    rule.count = 20'000;
    std::int64_t steps = 10;
    auto const end = RuleExpander(rule, 0).endOfCount(*rule.count, steps);
    EXPECT_EQ(end.last, 19'999 * secondsPerDay);
    EXPECT_EQ(steps, 10);
}

TEST(JumpingTests, aLongCountOfWorkdaysIsMultipliedNotCounted) {
    RecurrenceRule rule{.frequency = Frequency::weekly};
    rule.count = 20'000;
    for (std::int32_t weekday = 1; weekday <= 5; ++weekday)
        rule.byDay.push_back({.weekday = weekday, .ordinal = 0});
    std::int64_t steps = 10;
    auto const thursday = dayNumber({.year = 1970, .month = 1, .day = 1}) * secondsPerDay;
    auto const end = RuleExpander(rule, thursday).endOfCount(*rule.count, steps);
    // The first week holds two of them; 3999 whole weeks and three days follow.
    EXPECT_EQ(end.last, (4 + 3999 * 7 + 2) * secondsPerDay);
    EXPECT_EQ(steps, 10);
}

TEST(JumpingTests, aLongCountOfMonthsTakesAStepAMonth) {
    RecurrenceRule rule{.frequency = Frequency::monthly};
    rule.byMonthDay = {-1};
    rule.count = 20'000;
    auto steps = plentyOfSteps;
    auto const start = dayNumber({.year = 2005, .month = 1, .day = 31}) * secondsPerDay;
    auto const end = RuleExpander(rule, start).endOfCount(*rule.count, steps);
    EXPECT_EQ(end.last, dayNumber({.year = 3671, .month = 8, .day = 31}) * secondsPerDay);
    EXPECT_LE(plentyOfSteps - steps, 20'010);
}

} // namespace
} // namespace Platform::ICalendar
