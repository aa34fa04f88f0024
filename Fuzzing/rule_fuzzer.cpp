// Any text is a recurrence rule: expanding it ends, in order, and piece by piece it is what it is as a whole.

#include "Platform/EventStore/ICalendar/RuleExpander.h"
#include "Platform/EventStore/ICalendar/RuleText.h"
#include "Platform/EventStore/ICalendar/ValueParser.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace Platform::ICalendar;

void require(bool holds, char const* what) {
    if (holds) return;
    std::fprintf(stderr, "not so: %s\n", what);
    std::abort();
}

struct Expanded {
    std::vector<std::int64_t> times;
    bool isWhole;
};

Expanded expanded(RuleExpander const& expander, std::int64_t from, std::int64_t to) {
    Expanded result{.times = {}, .isWhole = false};
    std::int64_t steps = 200'000;
    result.isWhole = expander.expand(from, to, 5'000, steps, result.times);
    return result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size < 4 || size > 1024) return 0;
    std::string_view const text(reinterpret_cast<char const*>(data) + 3, size - 3);
    auto const rule = parseRule(text);
    if (!rule) return 0;
    auto const again = parseRule(RuleText(text).text());
    require(again && *again == *rule, "a rule's parts make the rule");

    // A start in the years 1970 to 2060, at any second, and a window of up to a year and a half.
    auto const start = (static_cast<std::int64_t>(data[0]) * 128 + data[1] % 128) * 86'400 + data[2] * 337;
    RuleExpander const expander(*rule, start);
    auto const from = start + data[1] * 86'400LL * 7;
    auto const middle = from + data[2] * 86'400LL;
    auto const to = middle + 86'400LL * 300;
    auto const whole = expanded(expander, from, to);
    require(std::ranges::is_sorted(whole.times), "times come in their order");
    require(std::ranges::adjacent_find(whole.times) == whole.times.end(), "no time comes twice");
    for (auto const time : whole.times)
        require(time >= from && time <= to && time >= start, "times lie in the window");
    auto first = expanded(expander, from, middle);
    auto const second = expanded(expander, middle + 1, to);
    if (!whole.isWhole || !first.isWhole || !second.isWhole) return 0;
    first.times.insert(first.times.end(), second.times.begin(), second.times.end());
    require(first.times == whole.times, "two windows make the window of both");

    if (rule->count && *rule->count <= 100) {
        std::int64_t steps = 200'000;
        auto const end = expander.endOfCount(*rule->count, steps);
        auto const counted = expanded(expander, start, end.last);
        if (end.isCut || !counted.isWhole || steps < 0) return 0;
        auto const extra = expander.yields(start) ? 0 : 1;
        require(std::ssize(counted.times) + extra <= *rule->count,
                "no more than the count happens before its end");
    }
    return 0;
}
