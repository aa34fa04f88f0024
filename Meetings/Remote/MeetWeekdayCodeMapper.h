#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

/// The backend's codes of the weekdays.
namespace Meetings::MeetWeekdayCodeMapper {

/// The order of codes in a text: Monday first, Sunday last.
inline constexpr std::array<std::int64_t, 7> weekdayOrder = {2, 3, 4, 5, 6, 7, 1};

/// "sun" for 1 … "sat" for 7; absent for any other number.
std::optional<std::string_view> code(std::int64_t weekday);

/// The number of a code, matched byte for byte; absent for an unknown one.
std::optional<std::int64_t> weekday(std::string_view code);

} // namespace Meetings::MeetWeekdayCodeMapper
