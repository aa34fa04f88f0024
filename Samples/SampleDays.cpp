#include "Samples/SampleDays.h"

#include "Samples/SampleRandom.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fmt/format.h>
#include <string_view>

namespace Samples {

namespace {

using namespace std::chrono_literals;
using std::chrono::days;
using std::chrono::minutes;

// The same instant on another zone's clock.
LocalMinutes onClockOf(Foundation::TimeZone const& other, LocalMinutes time,
                       Foundation::TimeZone const& viewer) {
    auto const local = std::chrono::duration_cast<std::chrono::seconds>(time.time_since_epoch()).count();
    auto const instant = viewer.resolveLocal(local).first;
    auto const there =
        std::chrono::local_seconds(std::chrono::seconds(instant + other.secondsFromUTC(instant)));
    return std::chrono::floor<minutes>(there);
}

SampleDayEvent timed(SampleRequest const& request, std::string calendar, std::string name, minutes start,
                     minutes length, std::string title) {
    SampleEvent event{.uid = name + "@samples.example",
                      .title = std::move(title),
                      .start = request.day + start,
                      .length = length,
                      .zone = namedZone(request.zone)};
    return {.calendar = std::move(calendar), .file = std::move(name), .event = std::move(event)};
}

// Written as somebody in `zone` would have: on that zone's clock.
SampleDayEvent timedElsewhere(SampleRequest const& request, std::string_view zone, SampleDayEvent entry) {
    auto const other = Foundation::TimeZone::named(zone);
    if (!other) return entry;
    entry.event.start = onClockOf(*other, entry.event.start, request.zone);
    entry.event.zone = *other;
    return entry;
}

SampleDayEvent allDay(SampleRequest const& request, std::string calendar, std::string name, days length,
                      std::string title) {
    auto entry = timed(request, std::move(calendar), std::move(name), 0min, length, std::move(title));
    entry.event.isAllDay = true;
    return entry;
}

struct Template {
    std::string_view calendar;
    std::string_view title;
    minutes length;
    std::string_view location;
};

constexpr auto onWeekdays = std::to_array<Template>({
    {"work", "Budget check with finance", 45min, "Room 3.07"},
    {"work", "Deep work: no meetings, please", 120min, ""},
    {"work", "1:1 with Ada", 30min, "Café Zürich"},
    {"design", "Colour and type critique", 60min, "Studio"},
    {"design", "Prototype walk-through of the onboarding for people who have never used a calendar", 60min,
     ""},
    {"tokyo", "製品レビュー", 45min, "会議室 B"},
    {"partners", "مراجعة خطة الربع القادم", 45min, "Online"},
    {"hiring", "Interview: data engineer", 60min, "Room 2.01"},
    {"hiring", "Debrief 🧑‍💻", 30min, "Room 2.01"},
    {"team", "Release rehearsal", 60min, "War room"},
    {"home", "Parents' evening", 90min, "School"},
    {"health", "Physiotherapy", 40min, "12 High Street, back door"},
    {"home", "Choir rehearsal 🎶", 90min, "Town hall"},
});

constexpr auto onWeekends = std::to_array<Template>({
    {"home", "Farmers' market", 60min, "Market square"},
    {"home", "Noa's football match ⚽", 90min, "Pitch 2"},
    {"home", "Lunch with the neighbours", 120min, "Garden"},
    {"health", "Long run", 75min, "Along the river"},
    {"birthdays", "Geburtstagsfeier bei Jürgen 🎂", 120min, "Grüner Weg 4"},
    {"home", "קפה עם דוד", 60min, "Harbour"},
    {"home", "Film night: 七人の侍", 120min, "Home"},
});

std::string describedDay(std::int64_t offset) {
    return fmt::format("{}{:02}", offset < 0 ? "before" : "after", std::abs(offset));
}

bool isWeekend(std::chrono::local_days day) {
    std::chrono::weekday const weekday(day);
    return weekday == std::chrono::Saturday || weekday == std::chrono::Sunday;
}

// Events one after another with a pause between them, so that none overlap.
void appendDay(SampleRequest const& request, std::int64_t offset, std::vector<SampleDayEvent>& events) {
    SampleRandom random((request.seed << 8U) + static_cast<std::uint64_t>(offset + 128));
    auto dated = request;
    dated.day += days(offset);
    auto const pool =
        isWeekend(dated.day) ? std::span<Template const>(onWeekends) : std::span<Template const>(onWeekdays);
    // Four events of at most two hours with the longest pauses end before midnight.
    auto const count = 2 + random.below(3);
    minutes start = 10h + 15min * random.below(4);
    for (std::int64_t number = 1; number <= count; ++number) {
        auto const& chosen = random.pick(pool);
        auto entry =
            timed(dated, std::string(chosen.calendar), fmt::format("{}-{}", describedDay(offset), number),
                  start, chosen.length, std::string(chosen.title));
        entry.event.location = chosen.location;
        entry.event.hasAlarm = random.chance(30);
        events.push_back(std::move(entry));
        start += chosen.length + 15min * (1 + random.below(3));
    }
}

} // namespace

std::optional<Foundation::TimeZone> namedZone(Foundation::TimeZone const& zone) {
    auto const isPlain = [](char character) {
        return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
               (character >= '0' && character <= '9') || character == '/' || character == '_' ||
               character == '-' || character == '+';
    };
    auto const& name = zone.identifier();
    if (name.empty() || name.starts_with('/') || !std::ranges::all_of(name, isPlain)) return std::nullopt;
    return zone;
}

std::vector<SampleDayEvent> eventsOfTheDay(SampleRequest const& request) {
    std::vector<SampleDayEvent> events;
    events.push_back(allDay(request, "partners", "release-week", days(5), "Release week"));
    events.push_back(allDay(request, "team", "anna-on-leave", days(2), "Anna on leave"));

    auto review = timed(request, "design", "design-review", 9h + 30min, 60min,
                        "Design review of the quarterly roadmap with every team lead");
    review.event.location = "Studio, first floor";
    review.event.link = "https://meet.example/design-review";
    review.event.description =
        "<p><b>Bring</b> the printed boards.</p><ul><li>Roadmap</li><li>Type</li></ul>";
    review.event.attendees = {"Ada Birch", "Chloé Dax", "Emil Fenn"};
    events.push_back(std::move(review));

    events.push_back(
        timedElsewhere(request, "Asia/Tokyo",
                       timed(request, "tokyo", "planning-lunch", 11h, 90min, "昼食会議 新しい企画について")));
    events.push_back(
        timed(request, "birthdays", "cake-and-coffee", 12h + 30min, 30min, "Birthday 🎂 cake & coffee"));
    events.push_back(
        timed(request, "partners", "development-team", 13h + 15min, 45min, "اجتماع مع فريق التطوير"));
    auto interview =
        timed(request, "hiring", "platform-engineer", 14h, 60min, "Interview: platform engineer");
    interview.event.description = "Portfolio first, then questions.\nThe form is in the shared folder.";
    interview.event.hasAlarm = true;
    events.push_back(std::move(interview));
    events.push_back(timed(request, "home", "pick-up-noa", 15h + 40min, 20min, "Pick up Noa from school"));
    auto dentist = timed(request, "health", "dentist", 17h + 30min, 30min, "Dentist");
    dentist.event.location = "Dr. Müller, 12 High Street; back door";
    events.push_back(std::move(dentist));
    events.push_back(timedElsewhere(
        request, "Europe/Lisbon",
        timed(request, "work", "lisbon-office", 18h + 15min, 30min, "Call with the Lisbon office")));
    events.push_back(timed(request, "home", "dinner", 19h + 15min, 75min, "Dinner with Ben & Chloé"));
    events.push_back(timed(request, "health", "evening-run", 21h, 45min, "Evening run"));
    return events;
}

std::vector<SampleDayEvent> eventsAroundTheDay(SampleRequest const& request) {
    std::vector<SampleDayEvent> events;
    for (std::int64_t offset = -14; offset <= 14; ++offset) {
        if (offset != 0) appendDay(request, offset, events);
    }
    auto train =
        timed(request, "home", "night-train", days(3) + 21h + 40min, 10h + 30min, "Night train to Vienna");
    events.push_back(timedElsewhere(request, "Europe/Berlin", std::move(train)));
    auto offsite = allDay(request, "team", "offsite", days(3), "Team off-site");
    offsite.event.start += days(8);
    events.push_back(std::move(offsite));
    return events;
}

} // namespace Samples
