#include "Samples/SampleSeries.h"

#include <array>
#include <fmt/format.h>
#include <string_view>

namespace Samples {

namespace {

using namespace std::chrono_literals;
using std::chrono::days;
using std::chrono::minutes;
using std::chrono::weeks;

constexpr auto weekdayNames = std::to_array<std::string_view>({"SU", "MO", "TU", "WE", "TH", "FR", "SA"});

std::string_view weekdayName(std::chrono::local_days day) {
    return weekdayNames.at(std::chrono::weekday(day).c_encoding());
}

SampleDayEvent series(SampleRequest const& request, std::string name, std::chrono::local_days first,
                      minutes time, minutes length, std::string title, std::string rule) {
    SampleEvent event{.uid = name + "@samples.example",
                      .title = std::move(title),
                      .start = first + time,
                      .length = length,
                      .zone = namedZone(request.zone),
                      .rule = std::move(rule)};
    return {.calendar = "team", .file = std::move(name), .event = std::move(event)};
}

SampleDayEvent standUp(SampleRequest const& request) {
    auto const day = weekdayName(request.day);
    // The day that is shown may be a weekend's: the sample stand-up takes place all the same.
    std::string rule = "FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR";
    if (day == "SA" || day == "SU") rule += fmt::format(",{}", day);
    auto entry = series(request, "stand-up", request.day - weeks(8), 9h, 15min, "Stand-up", std::move(rule));
    entry.calendar = "work";
    entry.event.attendees = {"Ada Birch", "Ben Cole", "Dora Elm"};
    entry.event.link = "https://meet.example/stand-up";
    return entry;
}

SampleDayEvent teamSync(SampleRequest const& request) {
    auto const first = request.day - weeks(10) + days(1);
    auto entry = series(request, "team-sync", first, 8h, 50min, "Team sync",
                        fmt::format("FREQ=WEEKLY;BYDAY={}", weekdayName(first)));
    auto const occurrence = [&](int week) { return first + weeks(week) + 8h; };
    entry.event.location = "Room 4.12";
    entry.event.exceptions = {occurrence(11)};
    entry.event.changes = {
        {.original = occurrence(8),
         .start = occurrence(8) + days(1) + 30min,
         .length = 50min,
         .title = "Team sync (moved)"},
        {.original = occurrence(9),
         .start = occurrence(9),
         .length = 50min,
         .title = "Team sync",
         .isCancelled = true},
        {.original = occurrence(10),
         .start = occurrence(10) + 15min,
         .length = 35min,
         .title = "Team sync, short: half of us are travelling"},
    };
    return entry;
}

SampleDayEvent retrospective(SampleRequest const& request) {
    auto const first = request.day - weeks(12) + days(4);
    auto entry = series(request, "retrospective", first, 16h, 60min, "Retrospective",
                        fmt::format("FREQ=WEEKLY;INTERVAL=2;BYDAY={};COUNT=20", weekdayName(first)));
    entry.event.zone = Foundation::TimeZone::named("America/New_York");
    return entry;
}

SampleDayEvent rent(SampleRequest const& request) {
    auto const isFirst = std::chrono::year_month_day(request.day).day() == std::chrono::day(1);
    auto const first = std::chrono::local_days(std::chrono::year_month_day(request.day - days(400)).year() /
                                               std::chrono::January / (isFirst ? 2 : 1));
    auto entry = series(request, "rent", first, 0min, 24h, "Rent is due",
                        isFirst ? "FREQ=MONTHLY;BYMONTHDAY=2" : "FREQ=MONTHLY;BYMONTHDAY=1");
    entry.calendar = "home";
    entry.event.isAllDay = true;
    return entry;
}

} // namespace

std::vector<SampleDayEvent> sampleSeries(SampleRequest const& request) {
    std::vector<SampleDayEvent> entries;
    entries.push_back(standUp(request));
    entries.push_back(teamSync(request));
    entries.push_back(retrospective(request));
    entries.push_back(rent(request));
    return entries;
}

std::string holidayFile(SampleRequest const& request) {
    struct Holiday {
        std::string_view name;
        std::chrono::month_day date;
        std::string_view rule;
    };
    auto const year = std::chrono::year_month_day(request.day).year() - std::chrono::years(5);
    auto soon = std::chrono::year_month_day(request.day + days(6));
    if (soon.month() / soon.day() == std::chrono::February / 29)
        soon = std::chrono::year_month_day(request.day + days(7));
    // The first Sunday of October of the year in which the rule begins.
    auto const harvest = std::chrono::year_month_day(
        std::chrono::local_days(year / std::chrono::October / std::chrono::Sunday[1]));
    auto const holidays = std::to_array<Holiday>({
        {"New Year's Day", std::chrono::January / 1, "FREQ=YEARLY"},
        {"Kite Day", std::chrono::March / 19, "FREQ=YEARLY"},
        {"Labour Day", std::chrono::May / 1, "FREQ=YEARLY"},
        {"Midsummer", std::chrono::June / 24, "FREQ=YEARLY"},
        {"Harvest Festival", harvest.month() / harvest.day(), "FREQ=YEARLY;BYMONTH=10;BYDAY=1SU"},
        {"Lantern Night", std::chrono::December / 13, "FREQ=YEARLY"},
        {"Founders' Day", soon.month() / soon.day(), "FREQ=YEARLY"},
    });
    ICalendarText text;
    text.beginCalendar();
    text.line("X-WR-CALNAME:Holidays");
    text.line("COLOR:goldenrod");
    for (std::size_t number = 0; number < holidays.size(); ++number) {
        auto const& holiday = holidays.at(number);
        SampleEvent const event{.uid = fmt::format("holiday-{}@samples.example", number + 1),
                                .title = std::string(holiday.name),
                                .start = std::chrono::local_days(year / holiday.date),
                                .length = 24h,
                                .isAllDay = true,
                                .rule = std::string(holiday.rule)};
        appendEvent(text, event, std::chrono::local_days(year / std::chrono::January / 1));
    }
    text.end("VCALENDAR");
    return text.text();
}

} // namespace Samples
