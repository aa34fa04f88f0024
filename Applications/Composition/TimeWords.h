#pragma once

#include "Foundation/Calendar.h"
#include "Foundation/Date.h"
#include "Foundation/Locale.h"

#include <string>

namespace Composition {

/// Says in words when something is. The words hold nothing of a calendar's own.
class TimeWords {
public:
    /// Days and clocks are those of `calendar`, weekdays in the language of `locale`.
    TimeWords(Foundation::Calendar calendar, Foundation::Locale locale);

    /// "Wednesday 2026-03-11"
    [[nodiscard]] std::string day(Foundation::Date date) const;

    /// The same inside a sentence, where many languages write weekdays small.
    [[nodiscard]] std::string dayInSentence(Foundation::Date date) const;

    /// The day, or the first and the last one. `end` is exclusive.
    [[nodiscard]] std::string days(Foundation::Date start, Foundation::Date end) const;

    /// Days and times: "Wednesday 2026-03-11, 09:00 a.m. – 09:15 a.m.", "Wednesday 2026-03-11, all day".
    [[nodiscard]] std::string when(Foundation::Date start, Foundation::Date end, bool isAllDay) const;

private:
    Foundation::Calendar calendar;
    Foundation::Locale locale;
};

} // namespace Composition
