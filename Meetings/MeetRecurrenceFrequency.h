#pragma once

#include "Foundation/RawValue.h"

#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

namespace Meetings {

/// How often a meet repeats. What the calendar store repeats in another rhythm counts as `none`.
enum class MeetRecurrenceFrequency : std::uint8_t { none, daily, weekly, monthly };

} // namespace Meetings

template <>
inline constexpr auto Foundation::rawValues<Meetings::MeetRecurrenceFrequency> =
    std::to_array<std::pair<Meetings::MeetRecurrenceFrequency, std::string_view>>({
        {Meetings::MeetRecurrenceFrequency::none, "none"},
        {Meetings::MeetRecurrenceFrequency::daily, "daily"},
        {Meetings::MeetRecurrenceFrequency::weekly, "weekly"},
        {Meetings::MeetRecurrenceFrequency::monthly, "monthly"},
    });
