#include "Applications/Widget/Notices.h"

#include "Applications/Widget/Texts.h"
#include "Foundation/DateFormatting.h"
#include "Foundation/Text.h"

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

std::optional<std::string> troubleOf(PressOutcome const& press) {
    if (press.refusedDay) {
        return Texts::storedDayIsOutOfRange(*press.refusedDay);
    }
    return press.notSaved.transform([](Platform::WriteWitness::Failure const& failure) {
        return Texts::dayNotSaved(Foundation::Text::sanitizedUTF8(failure.path.string()),
                                  failure.error.message());
    });
}

std::string Notices::text(Foundation::Calendar const& calendar) const {
    std::string lines;
    auto const add = [&](std::string const& line) { lines += (lines.empty() ? "" : "\n") + line; };
    if (calendarTrouble) {
        add(textOf(*calendarTrouble, calendar));
    }
    if (auto const trouble = troubleOf(lastPress)) {
        add(*trouble);
    }
    return lines;
}

} // namespace Widget
