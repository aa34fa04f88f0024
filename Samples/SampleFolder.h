#pragma once

#include "Samples/SampleCalendars.h"

#include <filesystem>
#include <optional>
#include <string>

namespace Samples {

/// Writes the calendars into `folder`, which is made when it is missing. One that holds anything is refused:
/// samples of two days, or a person's own calendars, would mix. Yields why it failed, with the path at fault;
/// absent when all was written.
std::optional<std::string> writeSampleCalendars(SampleRequest const& request,
                                                std::filesystem::path const& folder);

} // namespace Samples
