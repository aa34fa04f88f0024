#pragma once

#include "Applications/Composition/TimeWords.h"
#include "Foundation/Calendar.h"
#include "Foundation/Locale.h"
#include "Meetings/MeetEntity.h"
#include "Platform/EventStore/EKRecurrenceRule.h"

#include <string>
#include <vector>

namespace Companion {

/// Says in words when meets are and how they repeat. The texts hold nothing of a calendar's own.
class MeetWords {
public:
    /// Days and clocks are those of `calendar`, weekdays in the language of `locale`.
    MeetWords(Foundation::Calendar calendar, Foundation::Locale locale);

    /// As Composition::TimeWords says them.
    [[nodiscard]] std::string day(Foundation::Date date) const { return times.day(date); }
    [[nodiscard]] std::string dayInSentence(Foundation::Date date) const { return times.dayInSentence(date); }
    [[nodiscard]] std::string days(Foundation::Date start, Foundation::Date end) const {
        return times.days(start, end);
    }
    [[nodiscard]] std::string when(Foundation::Date start, Foundation::Date end, bool isAllDay) const {
        return times.when(start, end, isAllDay);
    }
    [[nodiscard]] std::string when(Meetings::MeetEntity const& meet) const;

    /// The time of day, or that it lasts all day.
    [[nodiscard]] std::string time(Meetings::MeetEntity const& meet) const;

    /// "every 2 weeks on Monday and Wednesday, until Friday 2026-05-01". Empty without rules.
    [[nodiscard]] std::string repetition(std::vector<Platform::EKRecurrenceRule> const& rules) const;

private:
    [[nodiscard]] std::string weekday(std::int64_t number) const;
    [[nodiscard]] std::string rule(Platform::EKRecurrenceRule const& rule) const;

    Foundation::Calendar calendar;
    Foundation::Locale locale;
    Composition::TimeWords times;
};

/// The rule that a meet's own fields tell; none for a meet that does not repeat.
std::vector<Platform::EKRecurrenceRule> rulesOf(Meetings::MeetEntity const& meet);

/// When a meet ends, exclusive.
Foundation::Date endOf(Meetings::MeetEntity const& meet);

} // namespace Companion
