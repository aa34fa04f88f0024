#include "Meetings/Remote/MeetRecurrenceRemoteMapper.h"

#include "Meetings/Remote/MeetWeekdayCodeMapper.h"

#include <ranges>

namespace Meetings::MeetRecurrenceRemoteMapper {
namespace {

constexpr std::string_view everyDay = "every_day";
constexpr std::string_view everyWeek = "every_week";
constexpr std::string_view everyMonth = "every_month";
constexpr char separator = '|';

} // namespace

std::string_view toRemoteRepeat(MeetRecurrenceFrequency frequency) {
    switch (frequency) {
    case MeetRecurrenceFrequency::none: return "never";
    case MeetRecurrenceFrequency::daily: return everyDay;
    case MeetRecurrenceFrequency::weekly: return everyWeek;
    case MeetRecurrenceFrequency::monthly: return everyMonth;
    }
    return "never";
}

MeetRecurrenceFrequency toLocalFrequency(std::optional<std::string_view> code) {
    if (code == everyDay) return MeetRecurrenceFrequency::daily;
    if (code == everyWeek) return MeetRecurrenceFrequency::weekly;
    if (code == everyMonth) return MeetRecurrenceFrequency::monthly;
    return MeetRecurrenceFrequency::none;
}

std::string toRemoteCustomRepeat(std::set<std::int64_t> const& weekdays) {
    std::string text;
    for (auto const weekday : MeetWeekdayCodeMapper::weekdayOrder) {
        if (!weekdays.contains(weekday)) continue;
        if (!text.empty()) text += separator;
        text += MeetWeekdayCodeMapper::code(weekday).value();
    }
    return text;
}

std::set<std::int64_t> toLocalWeekdays(std::optional<std::string_view> codes) {
    std::set<std::int64_t> weekdays;
    for (auto const piece : std::views::split(codes.value_or(""), separator)) {
        auto const weekday = MeetWeekdayCodeMapper::weekday(std::string_view(piece.begin(), piece.end()));
        if (weekday) weekdays.insert(*weekday);
    }
    return weekdays;
}

} // namespace Meetings::MeetRecurrenceRemoteMapper
