#pragma once

#include "Samples/SampleCalendars.h"

namespace Samples {

/// Hands the request's archived events to `take`: eight calendars with the mix that years of use leave
/// behind (single, all-day, floating, repeating, changed and cancelled occurrences, long notes, attendees).
void makeSampleArchive(SampleRequest const& request, std::function<void(SampleFile const&)> const& take);

} // namespace Samples
