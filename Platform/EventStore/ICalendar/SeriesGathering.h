#pragma once

#include "Platform/EventStore/ICalendar/FileClocks.h"
#include "Platform/EventStore/ICalendar/Series.h"

#include <cstddef>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Platform::ICalendar {

/// The events of some files brought together by UID. The files must outlive it.
struct SeriesGathering {
    SeriesGathering(std::vector<std::shared_ptr<CalendarFile const>> const& files, ZoneCatalog& zones);

    std::vector<FileClocks> clocks; ///< One a file; the series point to them.
    std::vector<Series> series;     ///< In the order in which the files first name them.
    std::unordered_map<std::string_view, std::size_t> indices; ///< Of the series, by UID.
    std::vector<ClockedEvent> displaced; ///< Events of which another version was found that counts more.
};

} // namespace Platform::ICalendar
