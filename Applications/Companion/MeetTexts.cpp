#include "Applications/Companion/MeetTexts.h"

#include "Applications/Companion/TextLookup.h"
#include "Foundation/Text.h"

namespace Companion::Texts {

using Platform::EKRecurrenceFrequency;

std::string listed(std::vector<std::string> const& words) {
    std::string list;
    for (std::size_t index = 0; index < words.size(); ++index) {
        bool const isLast = index + 1 == words.size();
        list = index == 0 ? words[index]
               : isLast   ? text("listed-last", list, words[index])
                          : text("listed-next", list, words[index]);
    }
    return list;
}

std::string everyPeriod(EKRecurrenceFrequency frequency, std::int64_t interval) {
    switch (frequency) {
    case EKRecurrenceFrequency::daily: return counted("every-days", interval);
    case EKRecurrenceFrequency::weekly: return counted("every-weeks", interval);
    case EKRecurrenceFrequency::monthly: return counted("every-months", interval);
    case EKRecurrenceFrequency::yearly: return counted("every-years", interval);
    case EKRecurrenceFrequency::other: break;
    }
    return text("several-times-a-day");
}

std::string weekdayOfPeriod(std::string_view weekday, std::int64_t weekNumber) {
    switch (weekNumber) {
    case 0: return std::string(weekday);
    case 1: return text("weekday-first", weekday);
    case 2: return text("weekday-second", weekday);
    case 3: return text("weekday-third", weekday);
    case 4: return text("weekday-fourth", weekday);
    case 5: return text("weekday-fifth", weekday);
    case -1: return text("weekday-last", weekday);
    default: break;
    }
    if (weekNumber > 0) return text("weekday-number", weekday, std::to_string(weekNumber));
    return text("weekday-number-from-end", weekday, std::to_string(-weekNumber));
}

std::string dayOfMonth(std::int64_t number) {
    if (number == -1) return text("month-day-last");
    if (number < 0) return text("month-day-from-end", std::to_string(-number));
    return text("month-day", std::to_string(number));
}

std::string onDays(std::string_view rhythm, std::string_view days) {
    return text("rhythm-on-days", rhythm, days);
}

std::string timesInAll(std::string_view rhythm, std::int64_t count) {
    return counted("rhythm-times-in-all", count, rhythm);
}

std::string untilDay(std::string_view rhythm, std::string_view day) {
    return text("rhythm-until", rhythm, day);
}

std::string dayLabel() {
    return text("meet-label-day");
}

std::string calendarLabel() {
    return text("meet-label-calendar");
}

std::string repeatsLabel() {
    return text("meet-label-repeats");
}

std::string linkLabel() {
    return text("meet-label-link");
}

std::string identifierLabel() {
    return text("meet-label-id");
}

std::string doesNotRepeat() {
    return text("meet-does-not-repeat");
}

std::string changedOccurrence() {
    return text("meet-changed-occurrence");
}

std::string noMeetsOn(std::string_view day) {
    return text("no-meets-on", day);
}

std::string notAnIdentifier(std::string_view value) {
    return text("not-a-meet-id", quoted(value));
}

std::string noSuchMeet(std::string_view beginning, std::string_view day) {
    return text("no-such-meet", day, quoted(beginning));
}

std::string severalMeets(std::string_view beginning, std::size_t count, std::string_view day) {
    return counted("several-meets", static_cast<std::int64_t>(count), day, quoted(beginning));
}

std::string notATime(std::string_view option, std::string_view value) {
    return text("not-a-time", option, quoted(value));
}

std::string endsBeyondTheYears() {
    return text("ends-beyond-the-years");
}

std::string needsATime(std::string_view option) {
    return text("needs-a-time", option);
}

std::string needsADay(std::string_view option) {
    return text("needs-a-day", option);
}

std::string needsAStart() {
    return text("needs-a-start");
}

std::string notADuration(std::string_view value) {
    return text("not-a-duration", quoted(value));
}

std::string wholeDaysHaveNoDuration() {
    return text("whole-days-have-no-duration");
}

std::string notAWeekday(std::string_view value) {
    return text("not-a-weekday", quoted(value));
}

std::string weekdaysNeedWeekly() {
    return text("weekdays-need-weekly");
}

std::string needsRepeat(std::string_view option) {
    return text("needs-repeat", option);
}

std::string notACount(std::string_view value) {
    return text("not-a-count", quoted(value));
}

std::string untilLiesBefore() {
    return text("until-lies-before");
}

std::string notALink(std::string_view value) {
    return text("not-a-link", quoted(value));
}

std::string nothingToChange() {
    return text("meet-nothing-to-change");
}

std::string repetitionNeedsFuture() {
    return text("meet-repetition-needs-future");
}

std::string movedTooFar() {
    return text("meet-moved-too-far");
}

std::string seriesMovesAlone() {
    return text("meet-series-moves-alone");
}

std::string inThatCalendarAlready(std::string_view name) {
    return text("meet-in-that-calendar-already", quoted(name));
}

std::string titleLabel() {
    return text("meet-label-title");
}

std::string whenLabel() {
    return text("meet-label-when");
}

std::string descriptionLabel() {
    return text("meet-label-description");
}

std::string placeLabel() {
    return text("meet-label-place");
}

std::string calendarNamed(std::string_view title, std::string_view identifier) {
    return text("meet-calendar-named", title, identifier);
}

std::string shortened(std::string_view value) {
    constexpr std::size_t longest = 70;
    auto const line = Foundation::Text::trimmingWhitespacesAndNewlines(value);
    return line.empty() ? text("meet-nothing") : Foundation::Text::truncated(line, longest);
}

std::string changesMeet(std::string_view name, std::string_view when) {
    return text("changes-meet", quoted(name), when);
}

std::string changesOccurrence(std::string_view name, std::string_view when) {
    return text("changes-occurrence", quoted(name), when);
}

std::string changesFuture(std::string_view name, std::string_view when) {
    return text("changes-future", quoted(name), when);
}

std::string movesSeries(std::string_view name) {
    return text("moves-series", quoted(name));
}

std::string changesLaterOnes() {
    return text("changes-later-ones");
}

std::string deletesMeet(std::string_view name, std::string_view when, std::string_view calendar) {
    return text("deletes-meet", quoted(name), when, quoted(calendar));
}

std::string deletesOccurrence(std::string_view name, std::string_view when, std::string_view calendar) {
    return text("deletes-occurrence", quoted(name), when, quoted(calendar));
}

std::string deletesFuture(std::string_view name, std::string_view when, std::string_view calendar) {
    return text("deletes-future", quoted(name), when, quoted(calendar));
}

std::string deletesSeries(std::string_view name, std::string_view when, std::string_view calendar) {
    return text("deletes-series", quoted(name), when, quoted(calendar));
}

std::string goAhead() {
    return text("go-ahead");
}

std::string nobodyAgreed() {
    return text("nobody-agreed");
}

std::string questionNotAnswered() {
    return text("question-not-answered");
}

std::string nothingWasChanged() {
    return text("nothing-was-changed");
}

std::string meetAdded(std::string_view name, std::string_view when, std::string_view calendar,
                      std::string_view id) {
    return text("meet-added", quoted(name), when, quoted(calendar), id);
}

std::string meetNotAdded() {
    return text("meet-not-added");
}

std::string meetChanged(std::string_view name, std::string_view when, std::string_view id) {
    return text("meet-changed", quoted(name), when, id);
}

std::string meetIsSoAlready(std::string_view name) {
    return text("meet-is-so-already", quoted(name));
}

std::string meetNotChanged(std::string_view name) {
    return text("meet-not-changed", quoted(name));
}

std::string meetDeleted(std::string_view name) {
    return text("meet-deleted", quoted(name));
}

std::string meetNotDeleted(std::string_view name) {
    return text("meet-not-deleted", quoted(name));
}

} // namespace Companion::Texts
