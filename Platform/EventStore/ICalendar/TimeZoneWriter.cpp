#include "Platform/EventStore/ICalendar/TimeZoneWriter.h"

#include "Platform/EventStore/ICalendar/CalendarSplice.h"
#include "Platform/EventStore/ICalendar/CivilDays.h"
#include "Platform/EventStore/ICalendar/ContentLineWriter.h"
#include "Platform/EventStore/ICalendar/RuleText.h"
#include "Platform/EventStore/ICalendar/ZoneCatalog.h"

#include <algorithm>
#include <compare>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace Platform::ICalendar {
namespace {

constexpr std::int32_t yearsDescribed = 40;

/// One change of a clock. Its local time is on the clock that ran until then.
struct Change {
    std::int64_t localSeconds;
    std::int32_t before;
    std::int32_t after;

    [[nodiscard]] CivilDay day() const { return civilDay(floorDivide(localSeconds, secondsPerDay)); }
    [[nodiscard]] std::int64_t timeOfDay() const { return floorModulo(localSeconds, secondsPerDay); }
    [[nodiscard]] std::int32_t weekday() const { return weekdayOf(floorDivide(localSeconds, secondsPerDay)); }
    [[nodiscard]] std::int32_t ordinal() const { return (day().day - 1) / 7 + 1; }
    [[nodiscard]] bool isLastOfMonth() const {
        auto const civil = day();
        return civil.day + 7 > daysInMonth(civil.year, civil.month);
    }
};

std::int64_t startOfYear(std::int32_t year) {
    return dayNumber({.year = year, .month = 1, .day = 1}) * secondsPerDay;
}

std::vector<Change> changesBetween(Foundation::TimeZone const& zone, std::int64_t from, std::int64_t to) {
    std::vector<Change> changes;
    // No zone has ever gone back on a change within two days.
    constexpr std::int64_t step = 2 * secondsPerDay;
    for (auto start = from; start < to; start += step) {
        auto const before = zone.secondsFromUTC(start);
        auto const after = zone.secondsFromUTC(start + step);
        if (before == after) continue;
        auto early = start;
        auto late = start + step;
        while (late - early > 1) {
            auto const middle = early + (late - early) / 2;
            (zone.secondsFromUTC(middle) == before ? early : late) = middle;
        }
        changes.push_back({.localSeconds = late + before, .before = before, .after = after});
    }
    return changes;
}

/// How the same change comes every year.
struct YearlyRule {
    std::int32_t month;
    std::int32_t weekday;
    std::int32_t ordinal; ///< -1 for the last of the month.

    [[nodiscard]] std::string text() const {
        return "FREQ=YEARLY;BYMONTH=" + std::to_string(month) + ";BYDAY=" + std::to_string(ordinal) +
               std::string(weekdayName(weekday));
    }
};

std::optional<YearlyRule> yearlyRule(std::vector<Change> const& changes) {
    auto const& first = changes.front();
    bool isLast = true;
    bool isSameOrdinal = true;
    for (auto const& change : changes) {
        bool const isAlike = change.day().month == first.day().month && change.weekday() == first.weekday() &&
                             change.timeOfDay() == first.timeOfDay() && change.before == first.before &&
                             change.after == first.after;
        if (!isAlike) return std::nullopt;
        isLast = isLast && change.isLastOfMonth();
        isSameOrdinal = isSameOrdinal && change.ordinal() == first.ordinal();
    }
    if (!isLast && !isSameOrdinal) return std::nullopt;
    return YearlyRule{
        .month = first.day().month, .weekday = first.weekday(), .ordinal = isLast ? -1 : first.ordinal()};
}

std::string offsetText(std::int32_t seconds) {
    auto const magnitude = std::abs(seconds);
    auto const twoDigits = [](std::int32_t number) {
        auto text = std::to_string(number);
        return text.size() < 2 ? "0" + text : text;
    };
    auto text = (seconds < 0 ? "-" : "+") + twoDigits(magnitude / 3600) + twoDigits(magnitude / 60 % 60);
    if (magnitude % 60 != 0) text += twoDigits(magnitude % 60);
    return text;
}

std::string localText(std::int64_t localSeconds) {
    return CalendarTime{.form = TimeForm::floating, .zone = 0, .localSeconds = localSeconds}.text();
}

class ZoneDescription {
public:
    ZoneDescription(Foundation::TimeZone const& zone, std::int32_t firstYear, std::string_view lineBreak)
        : zone(zone),
          firstYear(firstYear),
          lineBreak(lineBreak) {}

    std::string text() {
        auto const changes =
            changesBetween(zone, startOfYear(firstYear - 1), startOfYear(firstYear + yearsDescribed));
        add("BEGIN", "VTIMEZONE");
        add("TZID", escapedText(zone.identifier()));
        // What holds before the first change, for events that lie there.
        if (changes.empty() || changes.front().day().year >= firstYear) {
            auto const offset = zone.secondsFromUTC(startOfYear(firstYear - 1));
            addObservance(
                {.localSeconds = startOfYear(firstYear - 1) + offset, .before = offset, .after = offset},
                false, std::nullopt);
        }
        auto const regular = firstRegularYear(changes);
        for (auto const& change : changes) {
            if (change.day().year < regular) {
                addObservance(change, change.after > change.before, std::nullopt);
            }
        }
        for (auto const& change : changes) {
            if (change.day().year != regular) continue;
            addObservance(change, change.after > change.before, yearlyRule(alike(changes, change, regular)));
        }
        add("END", "VTIMEZONE");
        return std::move(result);
    }

private:
    // From which year on the same two changes come every year; past the end for a clock without such order.
    [[nodiscard]] std::int32_t firstRegularYear(std::vector<Change> const& changes) const {
        auto const end = firstYear + yearsDescribed;
        auto regular = end;
        for (auto year = end - 1; year >= firstYear - 1; --year) {
            std::vector<Change> ofYear;
            std::ranges::copy_if(changes, std::back_inserter(ofYear),
                                 [year](Change const& change) { return change.day().year == year; });
            bool const isRegular =
                ofYear.size() == 2 && std::ranges::all_of(ofYear, [&](Change const& change) {
                    auto const others = alike(changes, change, year);
                    return std::ssize(others) == end - year && yearlyRule(others).has_value();
                });
            if (!isRegular) break;
            regular = year;
        }
        constexpr std::int32_t enoughToSeeARule = 3;
        return end - regular >= enoughToSeeARule ? regular : end;
    }

    // The changes from that year on that lead to the same offset.
    static std::vector<Change> alike(std::vector<Change> const& changes, Change const& like,
                                     std::int32_t year) {
        std::vector<Change> found;
        std::ranges::copy_if(changes, std::back_inserter(found), [&](Change const& change) {
            return change.day().year >= year && change.after == like.after;
        });
        return found;
    }

    void addObservance(Change const& change, bool isDaylight, std::optional<YearlyRule> const& rule) {
        auto const* const name = isDaylight ? "DAYLIGHT" : "STANDARD";
        add("BEGIN", name);
        add("DTSTART", localText(change.localSeconds));
        add("TZOFFSETFROM", offsetText(change.before));
        add("TZOFFSETTO", offsetText(change.after));
        if (rule) add("RRULE", rule->text());
        add("END", name);
    }

    void add(std::string_view name, std::string_view value) {
        result += contentLine(name, {}, value, lineBreak);
    }

    Foundation::TimeZone const& zone;
    std::int32_t firstYear;
    std::string_view lineBreak;
    std::string result;
};

std::int32_t firstYearOf(CalendarFile const& file) {
    std::int32_t year = 9999;
    for (auto const& event : file.events)
        year = std::min(year, civilDay(floorDivide(event.start.localSeconds, secondsPerDay)).year);
    return std::clamp(year, 2, 9000);
}

} // namespace

std::string timeZoneComponent(Foundation::TimeZone const& zone, std::int32_t firstYear,
                              std::string_view lineBreak) {
    return ZoneDescription(zone, firstYear, lineBreak).text();
}

std::string missingTimeZones(std::string_view components, ZoneSources const& sources,
                             std::string_view lineBreak) {
    auto const* const target = sources.target;
    auto const named = read(newCalendar(components, lineBreak));
    auto const componentIn = [](CalendarFile const* file,
                                std::string const& name) -> TimeZoneComponent const* {
        if (file == nullptr) return nullptr;
        auto const found = std::ranges::find(file->timeZones, name, &TimeZoneComponent::identifier);
        return found == file->timeZones.end() ? nullptr : &*found;
    };
    std::string result;
    for (auto const& name : named->zoneNames) {
        // A name that the target gets by with already needs no more.
        bool const isKnown =
            target != nullptr && std::ranges::find(target->zoneNames, name) != target->zoneNames.end();
        if (isKnown || componentIn(target, name) != nullptr) continue;
        if (auto const* const known = componentIn(sources.origin, name)) {
            result += known->bytes;
        } else if (auto const zone = ZoneCatalog::systemZone(name)) {
            result += timeZoneComponent(*zone, firstYearOf(*named), lineBreak);
        } else if (sources.viewer && sources.viewer->identifier() == name) {
            result += timeZoneComponent(*sources.viewer, firstYearOf(*named), lineBreak);
        }
    }
    return result;
}

} // namespace Platform::ICalendar
