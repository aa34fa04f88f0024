#include "Applications/Companion/MeetWords.h"

#include "Applications/Companion/MeetTexts.h"
#include "Applications/Composition/Texts.h"
#include "Foundation/DateFormatting.h"

#include <chrono>
#include <utility>

namespace Companion {

using Meetings::MeetEntity;
using Platform::EKRecurrenceFrequency;
using Platform::EKRecurrenceRule;

namespace {

EKRecurrenceFrequency frequencyOf(Meetings::MeetRecurrenceFrequency frequency) {
    switch (frequency) {
    case Meetings::MeetRecurrenceFrequency::none: break;
    case Meetings::MeetRecurrenceFrequency::daily: return EKRecurrenceFrequency::daily;
    case Meetings::MeetRecurrenceFrequency::weekly: return EKRecurrenceFrequency::weekly;
    case Meetings::MeetRecurrenceFrequency::monthly: return EKRecurrenceFrequency::monthly;
    }
    return EKRecurrenceFrequency::other;
}

} // namespace

MeetWords::MeetWords(Foundation::Calendar calendar, Foundation::Locale locale)
    : calendar(std::move(calendar)),
      locale(std::move(locale)),
      times(this->calendar, this->locale) {}

std::string MeetWords::when(MeetEntity const& meet) const {
    return when(meet.metDate, endOf(meet), meet.metIsAllDay);
}

std::string MeetWords::time(MeetEntity const& meet) const {
    if (meet.metIsAllDay) return Composition::Texts::allDay();
    return Foundation::twelveHourTimeWithMarker(meet.metDate, calendar);
}

std::string MeetWords::repetition(std::vector<EKRecurrenceRule> const& rules) const {
    std::vector<std::string> words;
    for (auto const& each : rules)
        words.push_back(rule(each));
    return Texts::listed(words);
}

std::string MeetWords::weekday(std::int64_t number) const {
    // Any week will do to name its days.
    std::chrono::local_days const sunday(std::chrono::year(2024) / 1 / 7);
    auto const date = calendar.startOfDay(sunday + std::chrono::days(number - 1));
    return Foundation::weekdayName(date, calendar, locale);
}

std::string MeetWords::rule(EKRecurrenceRule const& rule) const {
    std::string words = Texts::everyPeriod(rule.frequency, rule.interval);
    std::vector<std::string> names;
    for (auto const& each : rule.daysOfTheWeek)
        names.push_back(Texts::weekdayOfPeriod(weekday(each.dayOfTheWeek), each.weekNumber));
    if (!names.empty()) words = Texts::onDays(words, Texts::listed(names));

    std::vector<std::string> days;
    for (auto const number : rule.daysOfTheMonth)
        days.push_back(Texts::dayOfMonth(number));
    if (!days.empty()) words = Texts::onDays(words, Texts::listed(days));

    if (rule.occurrenceCount) words = Texts::timesInAll(words, *rule.occurrenceCount);
    if (rule.endDate) words = Texts::untilDay(words, dayInSentence(*rule.endDate));
    return words;
}

std::vector<EKRecurrenceRule> rulesOf(MeetEntity const& meet) {
    if (meet.metRecurrenceFrequency == Meetings::MeetRecurrenceFrequency::none) return {};
    EKRecurrenceRule rule = {.frequency = frequencyOf(meet.metRecurrenceFrequency)};
    for (auto const weekday : meet.metRecurringWeekdays)
        rule.daysOfTheWeek.push_back({.dayOfTheWeek = weekday});
    return {rule};
}

Foundation::Date endOf(MeetEntity const& meet) {
    return meet.metDate.addingTimeInterval(meet.metDuration);
}

} // namespace Companion
