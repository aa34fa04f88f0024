#include "Applications/Composition/TimeWords.h"

#include "Applications/Composition/Texts.h"
#include "Foundation/DateFormatting.h"
#include "Foundation/Text.h"

#include <fmt/format.h>
#include <utility>

namespace Composition {

namespace {

// The last instant of an interval whose end is exclusive.
Foundation::Date lastOf(Foundation::Date start, Foundation::Date end) {
    auto const last = end.addingTimeInterval(-1);
    return last > start ? last : start;
}

std::string dateText(Foundation::DateComponents const& day) {
    return fmt::format("{:04}-{:02}-{:02}", day.year, day.month, day.day);
}

} // namespace

TimeWords::TimeWords(Foundation::Calendar calendar, Foundation::Locale locale)
    : calendar(std::move(calendar)),
      locale(std::move(locale)) {}

std::string TimeWords::day(Foundation::Date date) const {
    auto const name = Foundation::Text::capitalized(Foundation::weekdayName(date, calendar, locale));
    return name + " " + dateText(calendar.components(date));
}

std::string TimeWords::dayInSentence(Foundation::Date date) const {
    return Foundation::weekdayName(date, calendar, locale) + " " + dateText(calendar.components(date));
}

std::string TimeWords::days(Foundation::Date start, Foundation::Date end) const {
    auto const last = lastOf(start, end);
    if (calendar.isDateInSameDay(start, last)) return day(start);
    return Texts::fromTo(day(start), day(last));
}

std::string TimeWords::when(Foundation::Date start, Foundation::Date end, bool isAllDay) const {
    if (isAllDay) return Texts::dayAndTime(days(start, end), Texts::allDay());
    auto const from = Foundation::twelveHourTimeWithMarker(start, calendar);
    if (!(end > start)) return Texts::dayAndTime(day(start), from);
    auto const to = Foundation::twelveHourTimeWithMarker(end, calendar);
    if (calendar.isDateInSameDay(start, lastOf(start, end)))
        return Texts::dayAndTime(day(start), Texts::fromTo(from, to));
    return Texts::fromTo(Texts::dayAndTime(day(start), from), Texts::dayAndTime(day(end), to));
}

} // namespace Composition
