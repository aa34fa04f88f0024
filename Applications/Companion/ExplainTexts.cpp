#include "Applications/Companion/ExplainTexts.h"

#include "Applications/Companion/TextLookup.h"
#include "Foundation/Text.h"
#include "WidgetExtension/ScheduleWidgetDayOffsetStore.h"

#include <utility>

namespace Companion::Texts {

namespace {

// The widget reads as far as its buttons lead.
std::string daysOfReach() {
    return std::to_string(WidgetExtension::ScheduleWidgetDayOffsetStore::maxOffset);
}

std::string place(std::string_view file, std::int64_t line) {
    return text("explain-place", Foundation::Text::neutralized(file), std::to_string(line));
}

std::string movedText(ExplainedMeet const& explained, MeetWords const& words) {
    auto const start = explained.movedTo.value_or(explained.meet.metDate);
    auto const end = start.addingTimeInterval(explained.meet.metDuration);
    return text("explain-moved-occurrence", words.when(start, end, explained.meet.metIsAllDay),
                place(explained.causeFile, explained.causeLine));
}

} // namespace

std::string explainedDayHeading(std::string_view day, Platform::WidgetFamily family) {
    return text("explain-day", day, Foundation::rawValue(family));
}

std::optional<std::string> dayRuleText(DayExplanation const& day, std::string_view whyNoAccess) {
    if (day.dayRule == ShowingRule::accountNotEnabled) return text("explain-account-not-enabled");
    if (day.dayRule == ShowingRule::accessDenied) return text("explain-access-denied", whyNoAccess);
    if (day.dayRule == ShowingRule::beyondButtons) return text("explain-beyond-buttons", daysOfReach());
    return std::nullopt;
}

std::string ruleText(ExplainedMeet const& explained, DayExplanation const& day, MeetWords const& words) {
    auto const family = Foundation::rawValue(day.family);
    bool const wouldBeShown = day.dayRule.has_value();
    auto const cause = place(explained.causeFile, explained.causeLine);
    switch (explained.rule) {
    case ShowingRule::card:
        return wouldBeShown ? text("explain-would-be-shown")
                            : text("explain-card", std::to_string(explained.place));
    case ShowingRule::allDayRow:
        return wouldBeShown ? text("explain-would-be-shown")
                            : text("explain-all-day-row", std::to_string(explained.place));
    case ShowingRule::didNotFit: return text("explain-did-not-fit", family, std::to_string(day.mostCards));
    case ShowingRule::noAllDaySection: return text("explain-no-all-day-section", family);
    case ShowingRule::ended: return text("explain-ended");
    case ShowingRule::hiddenCalendar:
        return text("explain-hidden-calendar",
                    Foundation::Text::neutralized(explained.meet.metCalendarIdentifier));
    case ShowingRule::startsOnAnotherDay:
        return text("explain-starts-on-another-day", words.day(explained.meet.metDate));
    case ShowingRule::outsideReach: return text("explain-outside-reach", daysOfReach());
    case ShowingRule::excludedDate: return text("explain-excluded-date", cause);
    case ShowingRule::excludedByRule: return text("explain-excluded-by-rule", cause);
    case ShowingRule::cancelledOccurrence: return text("explain-cancelled-occurrence", cause);
    case ShowingRule::cancelledEvent: return text("explain-cancelled-event", cause);
    case ShowingRule::movedOccurrence: return movedText(explained, words);
    case ShowingRule::accountNotEnabled:
    case ShowingRule::accessDenied:
    case ShowingRule::beyondButtons: return text("explain-as-nothing-is");
    }
    std::unreachable();
}

std::string calendarAndPlace(ExplainedMeet const& explained) {
    return text("explain-calendar-and-place", Foundation::Text::neutralized(explained.meet.metCalendarName),
                Foundation::Text::neutralized(explained.meet.metCalendarIdentifier),
                place(explained.file, explained.line));
}

std::string nothingOnTheDay() {
    return text("explain-nothing-there");
}

std::string nothingReadOnTheDay() {
    return text("explain-nothing-read-there");
}

std::string notOnTheDay(std::string_view name) {
    return text("explain-not-on-the-day", quoted(name));
}

std::string foundNowhere(std::string_view name, std::string_view day) {
    return text("explain-found-nowhere", quoted(name), day, daysOfReach());
}

std::string problemsHeading() {
    return text("explain-problems");
}

} // namespace Companion::Texts
