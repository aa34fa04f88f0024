#pragma once

#include "Applications/Composition/LiveServices.h"
#include "Meetings/EventKitAccountCalendarsEntity.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Companion {

/// The accounts with their calendars, access asked for where it was not yet. Throws CommandError with
/// ExitCode::failed, and the command that mends it, when it is not granted.
std::vector<Meetings::EventKitAccountCalendarsEntity> availableAccounts(Composition::LiveServices& services);

/// The title of the calendar with that identifier; absent when no account has it.
std::optional<std::string>
calendarTitle(std::vector<Meetings::EventKitAccountCalendarsEntity> const& accounts,
              std::string_view identifier);

} // namespace Companion
