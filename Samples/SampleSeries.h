#pragma once

#include "Samples/SampleDays.h"

#include <string>
#include <vector>

namespace Samples {

/// Repeating events: the stand-up, which is on the day itself, and a team's series with occurrences that
/// were moved, renamed, cancelled and taken out, none of which touch that day.
std::vector<SampleDayEvent> sampleSeries(SampleRequest const& request);

/// One file of many yearly all-day events, a calendar of its own.
std::string holidayFile(SampleRequest const& request);

} // namespace Samples
