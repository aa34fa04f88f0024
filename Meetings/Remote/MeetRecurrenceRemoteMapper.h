#pragma once

#include "Meetings/MeetRecurrenceFrequency.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>

/// A meet's repetition in the backend's codes.
namespace Meetings::MeetRecurrenceRemoteMapper {

std::string_view toRemoteRepeat(MeetRecurrenceFrequency frequency);

/// None for an absent or unknown code; letter case matters.
MeetRecurrenceFrequency toLocalFrequency(std::optional<std::string_view> code);

/// The weekdays' codes, Monday first, joined by "|"; numbers outside 1…7 are left out.
std::string toRemoteCustomRepeat(std::set<std::int64_t> const& weekdays);

/// The weekdays of a joined text; unknown codes are left out.
std::set<std::int64_t> toLocalWeekdays(std::optional<std::string_view> codes);

} // namespace Meetings::MeetRecurrenceRemoteMapper
