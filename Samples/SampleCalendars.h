#pragma once

#include "Foundation/TimeZone.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

namespace Samples {

/// Which calendars to make. Equal requests give equal bytes.
struct SampleRequest {
    std::chrono::local_days day;     ///< The day that all is dated around.
    Foundation::TimeZone zone;       ///< The viewer's, in which that day is meant.
    std::int64_t archivedEvents = 0; ///< So many more events, spread from 20 years before to a year after.
    std::uint64_t seed = 1;
};

/// One file of the calendars.
struct SampleFile {
    std::string folder; ///< Of its calendar; empty for a file beside the folders.
    std::string name;
    std::string content;
};

/// Makes the calendars as a vdir root (a folder each, with `displayname` and `color`, one event a file) and
/// hands every file to `take`, one at a time: the size of the request costs no memory.
///
/// The day itself has two all-day events and eleven timed ones that do not overlap; the two weeks around it
/// are filled, too.
void makeSampleCalendars(SampleRequest const& request, std::function<void(SampleFile const&)> const& take);

} // namespace Samples
