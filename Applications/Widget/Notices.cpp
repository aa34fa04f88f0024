#include "Applications/Widget/Notices.h"

#include "Applications/Widget/Texts.h"
#include "Foundation/DateFormatting.h"

namespace Widget {

namespace {

std::string textOf(CalendarTrouble const& trouble, Foundation::Calendar const& calendar) {
    if (!trouble.lastRead) {
        return Texts::notRead(trouble.path, trouble.cause);
    }
    constexpr std::size_t toTheMinute = 16; // "2026-03-11 09:05"
    auto const since = Foundation::logTimestamp(*trouble.lastRead, calendar).substr(0, toTheMinute);
    return Texts::notReadSince(since, trouble.path, trouble.cause);
}

} // namespace

std::string Notices::text(Foundation::Calendar const& calendar) const {
    std::string lines;
    if (calendarTrouble) {
        lines = textOf(*calendarTrouble, calendar);
    }
    if (refusedDay) {
        lines += (lines.empty() ? "" : "\n") + Texts::storedDayIsOutOfRange(*refusedDay);
    }
    return lines;
}

} // namespace Widget
