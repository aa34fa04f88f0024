#include "Meetings/Remote/MeetWeekdayCodeMapper.h"

#include <algorithm>

namespace Meetings::MeetWeekdayCodeMapper {
namespace {

constexpr std::array<std::string_view, 7> codes = {"sun", "mon", "tue", "wed", "thu", "fri", "sat"};

} // namespace

std::optional<std::string_view> code(std::int64_t weekday) {
    if (weekday < 1 || weekday > 7) return std::nullopt;
    return codes[static_cast<std::size_t>(weekday - 1)];
}

std::optional<std::int64_t> weekday(std::string_view code) {
    auto const* const found = std::ranges::find(codes, code);
    if (found == codes.end()) return std::nullopt;
    return found - codes.begin() + 1;
}

} // namespace Meetings::MeetWeekdayCodeMapper
