#include "Samples/SampleArchive.h"

#include "Samples/SampleEvent.h"
#include "Samples/SampleRandom.h"

#include <array>
#include <fmt/format.h>
#include <optional>
#include <string_view>

namespace Samples {

namespace {

using namespace std::chrono_literals;
using std::chrono::days;
using std::chrono::local_days;
using std::chrono::minutes;

constexpr std::int64_t calendars = 8;
constexpr std::array<std::string_view, calendars> colors = {"#B0413E", "#3F7D58", "#2F6DB5", "#7A5FB0",
                                                            "#C98A1B", "#A0407A", "#1F7A8C", "#6B7280"};
constexpr auto adjectives = std::to_array<std::string_view>(
    {"Weekly", "Quarterly", "Yearly", "First", "Final", "Open", "Joint", "Remote", "Short", "Internal",
     "External", "Spring", "Autumn", "Evening", "Team"});
constexpr auto nouns = std::to_array<std::string_view>(
    {"planning", "review", "lunch", "workshop", "interview", "training", "call", "walk-through", "rehearsal",
     "lesson", "check-up", "visit", "dinner", "inspection", "demo"});
constexpr auto places =
    std::to_array<std::string_view>({"", "", "Room 4.12", "Main hall", "Café Zürich", "Office, third floor",
                                     "Online", "会議室 B", "12 High Street; back door"});
constexpr auto words = std::to_array<std::string_view>(
    {"please", "bring",   "the", "printed", "agenda", "and",   "numbers", "from",
     "last",   "quarter", "so",  "that",    "we",     "can",   "decide",  "on",
     "next",   "steps",   "for", "release", "größer", "naïve", "予定",    "встреча"});
constexpr auto people = std::to_array<std::string_view>(
    {"Ada Birch", "Ben Cole", "Chloé Dax", "Dora Elm", "Emil Fenn", "Farid Gale", "Greta Holt"});
constexpr auto zoneNames =
    std::to_array<std::string_view>({"Europe/Berlin", "Europe/Berlin", "Europe/Berlin", "America/New_York",
                                     "Asia/Shanghai", "Australia/Sydney"});
constexpr auto weekdays = std::to_array<std::string_view>({"SU", "MO", "TU", "WE", "TH", "FR", "SA"});

std::string_view weekdayOf(LocalMinutes time) {
    return weekdays.at(std::chrono::weekday(std::chrono::floor<days>(time)).c_encoding());
}

std::string notes(SampleRandom& random) {
    std::string text;
    for (auto left = 8 + random.below(82); left > 0; --left) {
        text += random.pick(std::span(words));
        text += ' ';
    }
    return text + "\n\nRegards, the organiser";
}

// The days from one occurrence to the next, and the rule that says so.
struct Repetition {
    days step;
    std::string rule;
};

Repetition repetition(SampleRandom& random, LocalMinutes start) {
    bool const isDaily = random.chance(25);
    auto const step = isDaily ? days(1) : days(random.chance(20) ? 14 : 7);
    auto rule = isDaily ? std::string("FREQ=DAILY") : fmt::format("FREQ=WEEKLY;BYDAY={}", weekdayOf(start));
    if (step == days(14)) rule += ";INTERVAL=2";
    if (!random.chance(5)) rule += fmt::format(";COUNT={}", 4 + random.below(36));
    return {.step = step, .rule = rule};
}

SampleEvent archivedEvent(SampleRandom& random, std::int64_t number, local_days day) {
    SampleEvent event{.uid = fmt::format("{:016x}-{}@samples.example", random.next(), number),
                      .title = fmt::format("{} {} {}", random.pick(std::span(adjectives)),
                                           random.pick(std::span(nouns)), number),
                      .start = day,
                      .length = 24h};
    auto const kind = random.below(100);
    if (kind < 17) {
        event.isAllDay = true;
        event.length = (random.chance(85) ? 1 : 1 + random.below(7)) * 24h;
    } else {
        event.start += minutes(7 * 60 + 15 * random.below(14 * 4));
        event.length = 15min * (1 + random.below(8));
        if (kind >= 20) event.zone = Foundation::TimeZone::named(random.pick(std::span(zoneNames)));
        if (kind >= 90) event.zone = Foundation::TimeZone::utc();
    }
    event.location = random.pick(std::span(places));
    if (random.chance(45)) event.description = notes(random);
    if (random.chance(12)) event.link = fmt::format("https://meet.example/{:x}", random.next() % 0xFFFFFFFFU);
    if (random.chance(25)) {
        for (auto left = 1 + random.below(6); left > 0; --left) {
            event.attendees.emplace_back(random.pick(std::span(people)));
        }
    }
    event.hasAlarm = random.chance(40);
    if (!random.chance(10)) return event;

    auto const repeats = repetition(random, event.start);
    event.rule = repeats.rule;
    if (random.chance(30)) event.exceptions.push_back(event.start + 2 * repeats.step);
    if (random.chance(10)) {
        auto const original = event.start + repeats.step;
        event.changes.push_back({.original = original,
                                 .start = event.isAllDay ? original : original + 2h,
                                 .length = event.length,
                                 .title = event.title + " (moved)",
                                 .isCancelled = random.chance(20)});
    }
    return event;
}

} // namespace

void makeSampleArchive(SampleRequest const& request, std::function<void(SampleFile const&)> const& take) {
    if (request.archivedEvents <= 0) return;
    auto const folderOf = [](std::int64_t number) {
        return fmt::format("archive-{}", number % calendars + 1);
    };
    for (std::int64_t calendar = 0; calendar < std::min(calendars, request.archivedEvents); ++calendar) {
        take({.folder = folderOf(calendar),
              .name = "displayname",
              .content = fmt::format("Archive {}", calendar + 1)});
        take({.folder = folderOf(calendar),
              .name = "color",
              .content = std::string(colors.at(static_cast<std::size_t>(calendar)))});
    }
    constexpr std::int64_t daysBefore = 20 * 365;
    constexpr std::int64_t daysAfter = 365;
    SampleRandom random(request.seed ^ 0xA5C41EU);
    for (std::int64_t number = 0; number < request.archivedEvents; ++number) {
        auto const day = request.day + days(random.below(daysBefore + daysAfter) - daysBefore);
        auto const event = archivedEvent(random, number, day);
        take({.folder = folderOf(number),
              .name = fmt::format("event-{:07}.ics", number),
              .content = fileOfEvent(event, day - days(30), ZoneDefinition::included)});
    }
}

} // namespace Samples
