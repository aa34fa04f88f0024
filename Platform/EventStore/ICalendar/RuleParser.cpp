#include "Platform/EventStore/ICalendar/ContentLine.h"
#include "Platform/EventStore/ICalendar/ValueParser.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace Platform::ICalendar {
namespace {

constexpr auto frequencies = std::to_array<std::pair<std::string_view, Frequency>>({
    {"SECONDLY", Frequency::secondly},
    {"MINUTELY", Frequency::minutely},
    {"HOURLY", Frequency::hourly},
    {"DAILY", Frequency::daily},
    {"WEEKLY", Frequency::weekly},
    {"MONTHLY", Frequency::monthly},
    {"YEARLY", Frequency::yearly},
});

constexpr auto weekdays = std::to_array<std::string_view>({"SU", "MO", "TU", "WE", "TH", "FR", "SA"});

struct ListPart {
    std::string_view name;
    std::vector<std::int32_t> RecurrenceRule::* list;
    std::int32_t lowest;
    std::int32_t highest;
    bool isSigned; // Negative values count from the end.
};
constexpr auto listParts = std::to_array<ListPart>({
    {"BYSECOND", &RecurrenceRule::bySecond, 0, 60, false},
    {"BYMINUTE", &RecurrenceRule::byMinute, 0, 59, false},
    {"BYHOUR", &RecurrenceRule::byHour, 0, 23, false},
    {"BYMONTHDAY", &RecurrenceRule::byMonthDay, 1, 31, true},
    {"BYYEARDAY", &RecurrenceRule::byYearDay, 1, 366, true},
    {"BYWEEKNO", &RecurrenceRule::byWeekNumber, 1, 53, true},
    {"BYMONTH", &RecurrenceRule::byMonth, 1, 12, false},
    {"BYSETPOS", &RecurrenceRule::bySetPosition, 1, 366, true},
});

std::optional<std::int64_t> integer(std::string_view text) {
    if (text.starts_with('+')) text.remove_prefix(1);
    if (text.starts_with('+')) return std::nullopt;
    std::int64_t number = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

std::optional<std::int32_t> weekday(std::string_view text) {
    for (std::size_t day = 0; day < weekdays.size(); ++day) {
        if (equalsIgnoringCase(text, weekdays[day])) return static_cast<std::int32_t>(day);
    }
    return std::nullopt;
}

// Calls `take` with each element between commas; false as soon as one call is.
template <typename Take>
bool forEachElement(std::string_view text, Take take) {
    for (;;) {
        auto const comma = text.find(',');
        if (!take(trimmed(text.substr(0, comma)))) return false;
        if (comma == std::string_view::npos) return true;
        text.remove_prefix(comma + 1);
    }
}

// A hostile list may be as long as its file; what is kept is bounded by the values allowed.
template <typename Element>
void insertSorted(std::vector<Element>& list, Element element) {
    auto const place = std::ranges::lower_bound(list, element);
    if (place == list.end() || *place != element) list.insert(place, element);
}

bool readList(RecurrenceRule& rule, ListPart const& part, std::string_view value) {
    return forEachElement(value, [&](std::string_view element) {
        auto const number = integer(element);
        if (!number) return false;
        auto const magnitude = *number < 0 && part.isSigned ? -*number : *number;
        if (magnitude < part.lowest || magnitude > part.highest) return false;
        insertSorted(rule.*part.list, static_cast<std::int32_t>(*number));
        return true;
    });
}

bool readWeekdays(RecurrenceRule& rule, std::string_view value) {
    return forEachElement(value, [&](std::string_view element) {
        if (element.size() < 2) return false;
        auto const day = weekday(element.substr(element.size() - 2));
        auto const ordinalText = element.substr(0, element.size() - 2);
        auto const ordinal = ordinalText.empty() ? std::optional<std::int64_t>(0) : integer(ordinalText);
        bool const isZero = !ordinalText.empty() && ordinal == 0;
        if (!day || !ordinal || isZero || *ordinal < -53 || *ordinal > 53) return false;
        insertSorted(rule.byDay, {.weekday = *day, .ordinal = static_cast<std::int32_t>(*ordinal)});
        return true;
    });
}

bool readFrequency(RecurrenceRule& rule, std::string_view value) {
    for (auto const& [name, frequency] : frequencies) {
        if (!equalsIgnoringCase(value, name)) continue;
        rule.frequency = frequency;
        return true;
    }
    return false;
}

// Far more than the years 1…9999 hold of anything, and far from overflow in any unit.
constexpr std::int64_t largestNumber = 1'000'000'000'000;

bool readPositive(std::int64_t& target, std::string_view value) {
    auto const number = integer(value);
    if (!number || *number < 1) return false;
    target = std::min(*number, largestNumber);
    return true;
}

enum class PartResult : std::uint8_t { read, wrongValue, unknown };

PartResult result(bool isRead) {
    return isRead ? PartResult::read : PartResult::wrongValue;
}

PartResult readPart(RecurrenceRule& rule, std::string_view name, std::string_view value) {
    if (equalsIgnoringCase(name, "FREQ")) return result(readFrequency(rule, value));
    if (equalsIgnoringCase(name, "INTERVAL")) return result(readPositive(rule.interval, value));
    if (equalsIgnoringCase(name, "COUNT")) return result(readPositive(rule.count.emplace(1), value));
    if (equalsIgnoringCase(name, "BYDAY")) return result(readWeekdays(rule, value));
    if (equalsIgnoringCase(name, "UNTIL")) {
        rule.until = parseTime(value, {});
        return result(rule.until.has_value());
    }
    if (equalsIgnoringCase(name, "WKST")) {
        auto const day = weekday(value);
        rule.weekStart = day.value_or(1);
        return result(day.has_value());
    }
    // The calendar that the rest of the format counts in anyway.
    if (equalsIgnoringCase(name, "RSCALE") && equalsIgnoringCase(value, "GREGORIAN")) return PartResult::read;
    // What a rule without it does, too (RFC 7529).
    if (equalsIgnoringCase(name, "SKIP") && equalsIgnoringCase(value, "OMIT")) return PartResult::read;
    // Other programs' own parts, which older calendars may bear (RFC 2445), say nothing about when.
    if (name.starts_with("X-")) return PartResult::read;
    for (auto const& part : listParts) {
        if (equalsIgnoringCase(name, part.name)) return result(readList(rule, part, value));
    }
    return PartResult::unknown;
}

} // namespace

std::expected<RecurrenceRule, std::string> parseRule(std::string_view text) {
    RecurrenceRule rule{.frequency = Frequency::daily};
    std::vector<std::string> seen;
    for (auto rest = trimmed(text); !rest.empty();) {
        auto const semicolon = std::min(rest.find(';'), rest.size());
        auto const part = trimmed(rest.substr(0, semicolon));
        rest.remove_prefix(std::min(semicolon + 1, rest.size()));
        if (part.empty()) continue;
        auto const equals = std::min(part.find('='), part.size());
        auto const value = trimmed(part.substr(std::min(equals + 1, part.size())));
        std::string name;
        for (char const byte : trimmed(part.substr(0, equals))) {
            name += byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - 'a' + 'A') : byte;
        }
        switch (readPart(rule, name, value)) {
        case PartResult::read: break;
        case PartResult::wrongValue: return std::unexpected("its " + name + " is not usable");
        case PartResult::unknown:
            return std::unexpected("its part " + name.substr(0, 40) + " is not understood");
        }
        if (std::ranges::find(seen, name) != seen.end())
            return std::unexpected("it has two " + name + " parts");
        seen.push_back(std::move(name));
    }
    if (std::ranges::find(seen, "FREQ") == seen.end()) return std::unexpected("it has no FREQ");
    return rule;
}

} // namespace Platform::ICalendar
