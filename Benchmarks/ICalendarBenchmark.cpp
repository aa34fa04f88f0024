// What it costs to read a calendar and to ask it for three weeks: quillora_bench_icalendar

#include "Platform/EventStore/ICalendar/SeriesSet.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <memory>
#include <string>

namespace {

using namespace Platform::ICalendar;

constexpr Foundation::Date windowStart{.secondsSince1970 = 1773014400}; // 2026-03-09T00:00:00Z
constexpr double threeWeeks = 21 * 86400;

std::string calendarOf(std::string const& events) {
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n" + events + "END:VCALENDAR\r\n";
}

std::string event(int number, std::string const& rule) {
    return fmt::format("BEGIN:VEVENT\r\n"
                       "UID:{0:08x}-benchmark@example.org\r\n"
                       "DTSTAMP:20260101T120000Z\r\n"
                       "DTSTART;TZID=Europe/Berlin:{1}{2:02}{3:02}T090000\r\n"
                       "DTEND;TZID=Europe/Berlin:{1}{2:02}{3:02}T100000\r\n"
                       "{4}"
                       "SUMMARY:Planning number {0}\r\n"
                       "LOCATION:Room 4\\, third floor\r\n"
                       "DESCRIPTION:Please bring the printed agenda and the numbers from the last\r\n"
                       "  quarter\\, so that we can decide.\\nThe rest is below.\r\n"
                       "ATTENDEE;CN=One;PARTSTAT=ACCEPTED;ROLE=REQ-PARTICIPANT:mailto:one@example.org\r\n"
                       "ATTENDEE;CN=Two;PARTSTAT=ACCEPTED;ROLE=REQ-PARTICIPANT:mailto:two@example.org\r\n"
                       "BEGIN:VALARM\r\nACTION:DISPLAY\r\nTRIGGER:-PT15M\r\nEND:VALARM\r\n"
                       "END:VEVENT\r\n",
                       number, 2005 + number % 21, 1 + number % 12, 1 + number % 28, rule);
}

std::string calendarOfEvents(int count) {
    std::string events;
    for (int number = 0; number < count; ++number) {
        events += event(number, number % 10 == 0 ? "RRULE:FREQ=WEEKLY;BYDAY=MO,WE\r\n" : "");
    }
    return calendarOf(events);
}

void readCalendar(benchmark::State& state) {
    auto const bytes = calendarOfEvents(static_cast<int>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(read(bytes));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}
BENCHMARK(readCalendar)->Arg(1)->Arg(10'000);

// Reading and asking once, so that nothing is remembered from an earlier question.
void firstWindow(benchmark::State& state, std::string const& rule) {
    auto const file = read(calendarOf(event(0, rule)));
    auto const zones = std::make_shared<ZoneCatalog>();
    auto const viewer = Foundation::TimeZone::named("Europe/Berlin").value_or(Foundation::TimeZone::utc());
    for (auto _ : state) {
        SeriesSet const series({file}, zones);
        benchmark::DoNotOptimize(
            series.occurrences(windowStart, windowStart.addingTimeInterval(threeWeeks), viewer));
    }
}
BENCHMARK_CAPTURE(firstWindow, single, "");
BENCHMARK_CAPTURE(firstWindow, dailySince2005, "RRULE:FREQ=DAILY\r\n");
BENCHMARK_CAPTURE(firstWindow, dailyCount20000, "RRULE:FREQ=DAILY;COUNT=20000\r\n");
BENCHMARK_CAPTURE(firstWindow, monthlyCount20000, "RRULE:FREQ=MONTHLY;BYDAY=-1FR;COUNT=20000\r\n");
BENCHMARK_CAPTURE(firstWindow, everySecondOfNoDay, "RRULE:FREQ=SECONDLY;BYMONTH=2;BYMONTHDAY=30\r\n");
BENCHMARK_CAPTURE(firstWindow, everySecond, "RRULE:FREQ=SECONDLY\r\n");

void windowOfCalendar(benchmark::State& state) {
    SeriesSet const series({read(calendarOfEvents(static_cast<int>(state.range(0))))},
                           std::make_shared<ZoneCatalog>());
    auto const viewer = Foundation::TimeZone::named("Europe/Berlin").value_or(Foundation::TimeZone::utc());
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            series.occurrences(windowStart, windowStart.addingTimeInterval(threeWeeks), viewer));
    }
}
BENCHMARK(windowOfCalendar)->Arg(1'000)->Arg(10'000);

} // namespace

BENCHMARK_MAIN();
