#include "Platform/EventStore/ICalendar/SeriesOmissions.h"

#include "Platform/EventStore/ICalendar/SeriesExpansion.h"
#include "Platform/EventStore/ICalendar/SeriesGathering.h"

#include <algorithm>
#include <iterator>

namespace Platform::ICalendar {

std::vector<Omission> omissions(std::vector<std::shared_ptr<CalendarFile const>> const& files,
                                ZoneCatalog& zones, Foundation::Date from, Foundation::Date to,
                                Foundation::TimeZone const& viewer, ExpansionLimits const& limits) {
    std::vector<Omission> found;
    auto const window = expansionWindow(from, to);
    if (!window) return found;
    SeriesGathering const gathering(files, zones);
    EventZone const viewerZone(viewer);
    for (auto const& series : gathering.series) {
        Expansion unused{.occurrences = {}, .problems = {}, .steps = 0};
        std::vector<Omission> ofSeries;
        SeriesExpansion(series, *window, viewerZone, limits, unused, &ofSeries).run();
        std::ranges::move(ofSeries, std::back_inserter(found));
    }
    return found;
}

} // namespace Platform::ICalendar
