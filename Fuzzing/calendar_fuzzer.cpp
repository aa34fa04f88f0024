// Any bytes are a calendar file: reading and expanding it ends, quickly, with occurrences that make sense.

#include "Foundation/Date.h"
#include "Foundation/TimeZone.h"
#include "Platform/EventStore/ICalendar/CalendarFile.h"
#include "Platform/EventStore/ICalendar/SeriesSet.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace {

void require(bool holds, char const* what) {
    if (holds) return;
    std::fprintf(stderr, "not so: %s\n", what);
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    using namespace Platform::ICalendar;
    if (size > 65536) return 0;
    auto const file = read(std::string(reinterpret_cast<char const*>(data), size), "fuzzed.ics");
    SeriesSet const calendar({file}, std::make_shared<ZoneCatalog>());
    auto const viewer = Foundation::TimeZone::utc();
    Foundation::Date const from{1767225600}; // 2026-01-01
    Foundation::Date const to{1769904000};   // 2026-02-01
    ExpansionLimits const limits{
        .occurrencesPerSeries = 1000, .occurrences = 10000, .stepsPerSeries = 100000};
    auto const found = calendar.occurrences(from, to, viewer, limits);

    for (std::size_t index = 0; index < found.occurrences.size(); ++index) {
        auto const& occurrence = found.occurrences[index];
        require(occurrence.start <= occurrence.end, "an occurrence ends no earlier than it starts");
        require(occurrence.start < to, "an occurrence starts before the end of the window");
        require(occurrence.end > from || occurrence.end == occurrence.start,
                "an occurrence reaches into the window");
        if (index > 0) {
            require(found.occurrences[index - 1].start <= occurrence.start,
                    "occurrences come in the order of their starts");
        }
    }
    return 0;
}
