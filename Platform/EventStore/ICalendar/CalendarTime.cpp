#include "Platform/EventStore/ICalendar/CalendarTime.h"

#include "Platform/EventStore/ICalendar/CivilDays.h"

namespace Platform::ICalendar {
namespace {

void appendPadded(std::string& text, std::int64_t number, std::size_t width) {
    auto const first = text.size();
    text.append(width, '0');
    for (auto place = first + width; place > first; number /= 10) {
        text[--place] = static_cast<char>('0' + number % 10);
    }
}

} // namespace

std::chrono::local_days CalendarTime::day() const {
    return std::chrono::local_days(std::chrono::days(floorDivide(localSeconds, secondsPerDay)));
}

std::string CalendarTime::text() const {
    auto const civil = civilDay(floorDivide(localSeconds, secondsPerDay));
    std::string text;
    appendPadded(text, civil.year, 4);
    appendPadded(text, civil.month, 2);
    appendPadded(text, civil.day, 2);
    if (form == TimeForm::date) return text;
    auto const time = floorModulo(localSeconds, secondsPerDay);
    text += 'T';
    appendPadded(text, time / 3600, 2);
    appendPadded(text, time / 60 % 60, 2);
    appendPadded(text, time % 60, 2);
    if (form == TimeForm::utc) text += 'Z';
    return text;
}

} // namespace Platform::ICalendar
