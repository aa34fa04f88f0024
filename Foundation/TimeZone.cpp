#include "Foundation/TimeZone.h"

#include "Foundation/Environment.h"
#include "Foundation/ZoneRuleText.h"

#include <glib.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iterator>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

namespace Foundation {
namespace {

using std::chrono::sys_days;

constexpr std::int64_t secondsPerDay = 86400;

constexpr std::int64_t utcSecondsOfYear(int year) {
    return sys_days(std::chrono::year(year) / 1 / 1).time_since_epoch().count() * secondsPerDay;
}

// The table of changes ends here. Explicit rules of tzdata reach 2087 (Morocco), so the 28 years before the
// end follow the zone's closing rule alone, and every later year has a twin among them: one with the same
// length that begins on the same weekday.
constexpr int firstTwinYear = 2101;
constexpr std::int64_t tableStart = utcSecondsOfYear(0);
constexpr std::int64_t tableEnd = utcSecondsOfYear(firstTwinYear + 28);
// To find the changes of all years takes a millisecond a zone, of these a tenth of that. Calendars seldom
// speak of others.
constexpr std::int64_t nearbyStart = utcSecondsOfYear(1990);
constexpr std::int64_t nearbyEnd = utcSecondsOfYear(2041);
// No offset is wider than this, so a wall-clock time lies this close to its instant.
constexpr std::int64_t widestOffset = 26 * 3600;

// Where an offset begins to apply, in UTC seconds.
struct Change {
    std::int64_t start;
    std::int32_t offset;
};

std::int64_t floorDivide(std::int64_t value, std::int64_t divisor) {
    return value / divisor - (value % divisor < 0 ? 1 : 0);
}

// How far before `seconds` its twin lies, a whole number of days; zero inside the table.
std::int64_t distanceToTwin(std::int64_t seconds) {
    if (seconds < tableEnd) return 0;
    // The calendar repeats every 400 years, exactly: first into 2101…2500, where std::chrono can name it.
    constexpr std::int64_t cycle = 146097 * secondsPerDay;
    std::int64_t distance = (seconds - utcSecondsOfYear(firstTwinYear)) / cycle * cycle;
    std::chrono::days const days(floorDivide(seconds - distance, secondsPerDay));
    auto const year = std::chrono::year_month_day(sys_days(days)).year();
    sys_days const newYear(year / 1 / 1);
    for (auto twin = std::chrono::year(firstTwinYear); twin < std::chrono::year(firstTwinYear + 28); ++twin) {
        sys_days const twinNewYear(twin / 1 / 1);
        bool const sameWeekday = std::chrono::weekday(newYear) == std::chrono::weekday(twinNewYear);
        if (!sameWeekday || year.is_leap() != twin.is_leap()) continue;
        distance += (newYear - twinNewYear).count() * secondsPerDay;
        break;
    }
    return distance;
}

struct GTimeZoneDeleter {
    void operator()(GTimeZone* zone) const { g_time_zone_unref(zone); }
};
using GTimeZonePointer = std::unique_ptr<GTimeZone, GTimeZoneDeleter>;

// Finds every change of a zone by asking in which interval an instant lies. The library answers only that,
// and slowly: it goes through the intervals from the first one. So it is asked as seldom as can be.
class ChangeFinder {
public:
    ChangeFinder(GTimeZone* zone, std::int64_t searchStart, std::int64_t searchEnd)
        : zone(zone),
          searchStart(searchStart),
          searchEnd(searchEnd) {}

    std::vector<Change> find() {
        auto const lastInterval = intervalAt(searchEnd);
        auto interval = intervalAt(searchStart);
        changes.push_back({.start = searchStart, .offset = offset(interval)});
        for (auto known = searchStart; interval != lastInterval;) {
            known = startOfNext(known, interval);
            interval = intervalAt(known);
            starts.push_back(known);
            // A change of name or of daylight saving alone moves no clock.
            if (changes.back().offset != offset(interval))
                changes.push_back({.start = known, .offset = offset(interval)});
        }
        return std::move(changes);
    }

private:
    // The first instant after `known` that lies in another interval.
    std::int64_t startOfNext(std::int64_t known, gint interval) const {
        if (auto const guess = guessedStart(known, interval)) return *guess;
        auto low = known;
        auto step = 256 * secondsPerDay;
        auto high = std::min(low + step, searchEnd);
        while (intervalAt(high) == interval) {
            low = high;
            step *= 2;
            high = std::min(low + step, searchEnd);
        }
        return startBetween(low, high, interval);
    }

    // Rules name a weekday, so the change before the last one comes again after 52 or 53 whole weeks.
    std::optional<std::int64_t> guessedStart(std::int64_t known, gint interval) const {
        if (starts.size() < 2) return std::nullopt;
        for (auto const weeks : {52, 53}) {
            auto const guess = starts[starts.size() - 2] + weeks * 7 * secondsPerDay;
            if (guess > known && guess <= searchEnd && intervalAt(guess) != interval &&
                intervalAt(guess - 1) == interval)
                return guess;
        }
        return std::nullopt;
    }

    // `low` lies in `interval`, `high` no longer does. Nearly all changes lie on a quarter of an hour.
    std::int64_t startBetween(std::int64_t low, std::int64_t high, gint interval) const {
        while (high - low > 1) {
            if (high - low <= 900 && intervalAt(high - 1) == interval) return high;
            auto middle = low + (high - low) / 2;
            if (high - low > 900) middle = std::max(floorDivide(middle, 900) * 900, low + 1);
            (intervalAt(middle) == interval ? low : high) = middle;
        }
        return high;
    }

    gint intervalAt(std::int64_t seconds) const {
        return g_time_zone_find_interval(zone, G_TIME_TYPE_UNIVERSAL, seconds);
    }
    std::int32_t offset(gint interval) const { return g_time_zone_get_offset(zone, interval); }

    GTimeZone* zone;
    std::int64_t searchStart;
    std::int64_t searchEnd;
    std::vector<Change> changes;
    std::vector<std::int64_t> starts; // Of all intervals but the first, whether clocks moved or not.
};

} // namespace

struct TimeZone::Rules {
    using Changes = std::vector<Change>; // Never empty; the first one stands for all time before.

    /// Of all times.
    Rules(std::string identifier, Changes whole)
        : identifier(std::move(identifier)),
          whole(std::move(whole)) {}
    /// Of the nearby years; the others are found when they are asked for.
    static std::shared_ptr<Rules const> nearbyOnes(std::string identifier, Changes nearby) {
        auto rules = std::make_shared<Rules>(std::move(identifier), Changes());
        rules->nearby = std::move(nearby);
        return rules;
    }

    // Those that bear on times a day or two around `seconds`, which lies inside the table.
    Changes const& changesAround(std::int64_t seconds) const {
        constexpr auto margin = 3 * widestOffset;
        bool const isNearby =
            !nearby.empty() && seconds >= nearbyStart + margin && seconds < nearbyEnd - margin;
        if (isNearby) return nearby;
        std::call_once(search, [this] {
            if (whole.empty()) whole = changesOf(identifier);
            if (whole.empty()) whole = nearby; // The system has lost the zone meanwhile.
        });
        return whole;
    }

    // The last change at or before `seconds`.
    static Changes::const_iterator changeAt(Changes const& changes, std::int64_t seconds) {
        auto const next = std::ranges::upper_bound(changes, seconds, {}, &Change::start);
        return next == changes.begin() ? next : std::prev(next);
    }

    // The library reads a rule whose saving time lies behind its standard time (Ireland's) an hour or two
    // wrong, so such a rule is given to it the other way round.
    static std::shared_ptr<Rules const> load(std::string const& identifier) {
        if (auto const exchanged = ZoneRuleText::exchangingNegativeSaving(identifier)) {
            auto changes = changesOf(*exchanged);
            return changes.empty() ? nullptr : std::make_shared<Rules const>(identifier, std::move(changes));
        }
        GTimeZonePointer const zone(g_time_zone_new_identifier(identifier.c_str()));
        if (!zone) return nullptr;
        auto const closingRule = ZoneRuleText::ofZoneFile(zoneFile(identifier));
        auto const exchanged =
            closingRule ? ZoneRuleText::exchangingNegativeSaving(*closingRule) : std::nullopt;
        if (!exchanged)
            return nearbyOnes(identifier, ChangeFinder(zone.get(), nearbyStart, nearbyEnd).find());
        auto changes = changesOf(identifier);
        mend(changes, changesOf(*exchanged));
        return std::make_shared<Rules const>(identifier, std::move(changes));
    }

    // Empty when the system does not know the zone.
    static Changes changesOf(std::string const& identifier) {
        GTimeZonePointer const zone(g_time_zone_new_identifier(identifier.c_str()));
        if (!zone) return {};
        return ChangeFinder(zone.get(), tableStart, tableEnd + 2 * secondsPerDay).find();
    }

    static std::string zoneFile(std::string const& identifier) {
        return identifier.starts_with('/') ? identifier : "/usr/share/zoneinfo/" + identifier;
    }

    // From the year on in which `changes` first name an offset that the closing rule does not have, the
    // rule's own changes take their place.
    static void mend(Changes& changes, Changes const& ruleChanges) {
        auto const isOfRule = [&](Change const& change) {
            return change.start < utcSecondsOfYear(1972) ||
                   std::ranges::find(ruleChanges, change.offset, &Change::offset) != ruleChanges.end();
        };
        auto const firstWrong = std::ranges::find_if_not(changes, isOfRule);
        if (firstWrong == changes.end()) return;
        std::chrono::days const day(floorDivide(firstWrong->start, secondsPerDay));
        auto const year = static_cast<int>(std::chrono::year_month_day(sys_days(day)).year());
        auto const begin = utcSecondsOfYear(year);
        std::erase_if(changes, [&](Change const& change) { return change.start >= begin; });
        std::ranges::copy_if(ruleChanges, std::back_inserter(changes),
                             [&](Change const& change) { return change.start >= begin; });
    }

    // Loading takes a while, and the same few zones are asked for all the time. Unknown names
    // are not kept: foreign data must not make the cache grow.
    static std::shared_ptr<Rules const> cached(std::string_view identifier) {
        static std::mutex mutex;
        static std::map<std::string, std::shared_ptr<Rules const>, std::less<>> loaded;
        {
            std::lock_guard const lock(mutex);
            auto const entry = loaded.find(identifier);
            if (entry != loaded.end()) return entry->second;
        }
        auto rules = load(std::string(identifier));
        if (!rules) return nullptr;
        std::lock_guard const lock(mutex);
        return loaded.try_emplace(std::string(identifier), std::move(rules)).first->second;
    }

    std::string identifier;

private:
    Changes nearby; // Empty where all are known from the start.
    mutable Changes whole;
    mutable std::once_flag search;
};

namespace {

// A name that leaves the zone folder, or an offset that the library would read as a zone, is neither an IANA
// name nor a POSIX rule text.
bool isZoneName(std::string_view identifier) {
    if (identifier.empty() || identifier.size() > 255) return false;
    char const first = identifier.front();
    if (first == '/' || first == ':' || first == '+' || first == '-' || (first >= '0' && first <= '9'))
        return false;
    if (identifier.find("..") != std::string_view::npos || identifier.back() == '/') return false;
    return std::ranges::all_of(identifier,
                               [](char character) { return character > ' ' && character < 0x7F; });
}

// "Europe/Madrid" of "/usr/share/zoneinfo/Europe/Madrid".
std::optional<std::string_view> nameInZonePath(std::string_view path) {
    constexpr std::string_view folder = "zoneinfo/";
    auto const position = path.rfind(folder);
    if (position == std::string_view::npos) return std::nullopt;
    return path.substr(position + folder.size());
}

} // namespace

TimeZone::TimeZone(std::shared_ptr<Rules const> rules) : rules(std::move(rules)) {}

std::optional<TimeZone> TimeZone::named(std::string_view identifier) {
    if (!isZoneName(identifier)) return std::nullopt;
    auto rules = Rules::cached(identifier);
    if (!rules) return std::nullopt;
    return TimeZone(std::move(rules));
}

TimeZone TimeZone::utc() {
    static auto const rules =
        std::make_shared<Rules const>("UTC", Rules::Changes{{.start = tableStart, .offset = 0}});
    return TimeZone(rules);
}

TimeZone TimeZone::fixedOffset(std::int32_t secondsEast) {
    auto const magnitude = secondsEast < 0 ? -secondsEast : secondsEast;
    auto const twoDigits = [](std::int32_t number) {
        return (number < 10 ? "0" : "") + std::to_string(number);
    };
    std::string identifier = (secondsEast < 0 ? "UTC-" : "UTC+") + twoDigits(magnitude / 3600) + ":" +
                             twoDigits(magnitude / 60 % 60);
    if (magnitude % 60 != 0) identifier += ":" + twoDigits(magnitude % 60);
    return TimeZone(std::make_shared<Rules const>(
        std::move(identifier), Rules::Changes{{.start = tableStart, .offset = secondsEast}}));
}

TimeZone TimeZone::current(Environment const& environment, std::filesystem::path const& systemZoneFile) {
    if (auto const variable = environment.value("TZ")) {
        std::string_view text = *variable;
        // POSIX: a TZ that is set to nothing means UTC.
        if (text.empty()) return utc();
        if (text.starts_with(':')) text.remove_prefix(1);
        if (text.starts_with('/')) text = nameInZonePath(text).value_or("");
        if (auto zone = named(text)) return *std::move(zone);
    }

    std::error_code failure;
    auto const target = std::filesystem::read_symlink(systemZoneFile, failure);
    if (!failure) {
        if (auto const name = nameInZonePath(target.native())) {
            if (auto zone = named(*name)) return *std::move(zone);
        }
    }
    // A copy in place of the link bears no name; its rules are as good.
    if (std::filesystem::is_regular_file(systemZoneFile, failure)) {
        if (auto rules = Rules::load(std::filesystem::absolute(systemZoneFile, failure).native()))
            return TimeZone(std::move(rules));
    }
    return utc();
}

std::string const& TimeZone::identifier() const {
    return rules->identifier;
}

std::int32_t TimeZone::secondsFromUTC(std::int64_t utcSeconds) const {
    auto const twin = utcSeconds - distanceToTwin(utcSeconds);
    return Rules::changeAt(rules->changesAround(twin), twin)->offset;
}

TimeZone::LocalTimeResolution TimeZone::resolveLocal(std::int64_t localSeconds) const {
    using Kind = LocalTimeResolution::Kind;
    auto const distance = distanceToTwin(localSeconds);
    auto const local = localSeconds - distance;

    std::optional<std::int64_t> earlier;
    auto const& changes = rules->changesAround(local);
    auto change = Rules::changeAt(changes, local - widestOffset);
    for (; change != changes.end() && change->start <= local + widestOffset; ++change) {
        auto const next = std::next(change);
        bool const isLast = next == changes.end();
        auto const instant = local - change->offset;
        bool const begun = instant >= change->start || change == changes.begin();
        bool const over = !isLast && instant >= next->start;
        if (begun && !over) {
            if (earlier)
                return {.kind = Kind::repeated, .first = *earlier + distance, .second = instant + distance};
            earlier = instant;
        }
        // Past the end with this offset and before the beginning with the next one: the clocks jumped over
        // it.
        if (!earlier && begun && over && local - next->offset < next->start)
            return {.kind = Kind::skipped, .first = instant + distance, .second = next->start + distance};
    }
    auto const instant = earlier.value_or(local - Rules::changeAt(changes, local)->offset) + distance;
    return {.kind = Kind::unique, .first = instant, .second = instant};
}

bool operator==(TimeZone const& left, TimeZone const& right) {
    return left.rules == right.rules || left.rules->identifier == right.rules->identifier;
}

} // namespace Foundation
