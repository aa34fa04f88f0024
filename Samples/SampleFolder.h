#pragma once

#include "Samples/SampleCalendars.h"

#include <filesystem>
#include <optional>
#include <string>

namespace Samples {

/// Writes the calendars into `folder`, which is made when it is missing; files of the same names are
/// replaced, others stay. Yields why it failed, with the path at fault; absent when all was written.
std::optional<std::string> writeSampleCalendars(SampleRequest const& request,
                                                std::filesystem::path const& folder);

} // namespace Samples
