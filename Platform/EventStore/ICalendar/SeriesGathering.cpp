#include "Platform/EventStore/ICalendar/SeriesGathering.h"

namespace Platform::ICalendar {

SeriesGathering::SeriesGathering(std::vector<std::shared_ptr<CalendarFile const>> const& files,
                                 ZoneCatalog& zones) {
    clocks.reserve(files.size()); // The series keep pointers into it.
    for (auto const& file : files) {
        auto const& clock = clocks.emplace_back(*file, zones);
        for (auto const& event : file->events) {
            auto const [entry, isNew] = indices.try_emplace(event.uid, series.size());
            ClockedEvent const added{.component = &event, .clocks = &clock};
            if (isNew) {
                series.emplace_back().add(added);
                continue;
            }
            auto& known = series[entry->second];
            auto const former = known.master();
            known.add(added);
            if (former && !event.recurrenceId)
                displaced.push_back(known.master()->component == &event ? *former : added);
        }
    }
    for (auto& one : series)
        one.settle();
}

} // namespace Platform::ICalendar
