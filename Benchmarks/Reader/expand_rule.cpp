// The 21 days from 2026-03-11 of a daily series since 2005: expand_rule RRULE TIMES prints how many
// occurrences there are and the median time in microseconds. Each time the series is a new one, of which
// nothing is worked out.

#include "Platform/EventStore/ICalendar/CalendarFile.h"
#include "Platform/EventStore/ICalendar/SeriesSet.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

using namespace Platform::ICalendar;

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("expand_rule RRULE TIMES\n", stderr);
        return 2;
    }
    auto const text = std::string("BEGIN:VEVENT\nUID:a\nDTSTART;TZID=Europe/Berlin:20050101T090000\n"
                                  "DURATION:PT1H\nRRULE:") +
                      argv[1] + "\nEND:VEVENT\n";
    auto const file = read(text);
    auto const zones = std::make_shared<ZoneCatalog>();
    auto const viewer = Foundation::TimeZone::named("Europe/Berlin").value_or(Foundation::TimeZone::utc());
    constexpr double start = 1773183600; // 2026-03-11 in Berlin
    std::vector<double> microseconds;
    std::size_t count = 0;
    for (int round = 0; round < std::max(1, std::atoi(argv[2])); ++round) {
        SeriesSet const series({file}, zones);
        auto const begin = std::chrono::steady_clock::now();
        count = series.occurrences({start}, {start + 21 * 86400.0}, viewer).occurrences.size();
        microseconds.push_back(
            std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - begin).count());
    }
    std::ranges::sort(microseconds);
    std::printf("%zu occurrences, %.3f us\n", count, microseconds[microseconds.size() / 2]);
    return 0;
}
