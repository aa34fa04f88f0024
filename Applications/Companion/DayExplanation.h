#pragma once

#include "Applications/Companion/ShownDay.h"
#include "Applications/Composition/LiveServices.h"
#include "Foundation/Date.h"
#include "Foundation/RawValue.h"
#include "Meetings/MeetEntity.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Companion {

/// What decides whether the widget shows a meet.
enum class ShowingRule : std::uint8_t {
    card,
    allDayRow,
    didNotFit,
    noAllDaySection, ///< A small or medium widget has none.
    ended,           ///< Today's page lets go of what is over.
    hiddenCalendar,
    startsOnAnotherDay,
    outsideReach, ///< The outermost pages show what lies within ten days of this moment, to the second.
    excludedDate,
    excludedByRule,
    cancelledOccurrence,
    cancelledEvent,
    movedOccurrence,
    // These decide for a whole day.
    accountNotEnabled,
    accessDenied,
    beyondButtons, ///< The widget's buttons do not lead so far.
};

/// A meet with the rule that decides.
struct ExplainedMeet {
    Meetings::MeetEntity meet;
    ShowingRule rule;
    std::string file; ///< Where the meet is written.
    std::int64_t line;
    std::string causeFile = {}; ///< Where what omits it is written; empty where nothing does.
    std::int64_t causeLine = 0;
    std::optional<Foundation::Date> movedTo = std::nullopt;
    std::size_t place = 0; ///< Of a card or an all-day row among its kind, from 1.
};

/// A day with everything that the calendars say about it.
struct DayExplanation {
    Foundation::Date date;
    std::int64_t dayOffset;
    Platform::WidgetFamily family;
    std::size_t mostCards; ///< That the family has room for.
    /// What keeps the widget from showing the day at all, or anything on it.
    std::optional<ShowingRule> dayRule;
    std::vector<ExplainedMeet> meets; ///< By start. Empty where the calendars may not be read.

    [[nodiscard]] bool isShown(ExplainedMeet const& explained) const;
};

/// Explains a day by asking the product itself: its provider for the meets, its view for the rows, its
/// calendar store for the rest, and the calendars' files for what the store leaves out. The tasks run on
/// `loop`, which the services' executor belongs to. Throws as `shownDay` does.
DayExplanation explainedDay(Composition::LiveServices& live,
                            WidgetExtension::ScheduleWidgetServices const& services,
                            Foundation::TaskLoop& loop, std::optional<std::int64_t> offset,
                            Platform::WidgetFamily family);

/// The meets that match `isMeant` on the days that the widget's buttons lead to, the day of `date` excluded,
/// by start. Each stands with the rule `startsOnAnotherDay`; one that does not happen, with the rule that
/// omits it.
std::vector<ExplainedMeet> meetsOnOtherDays(Composition::LiveServices& live,
                                            WidgetExtension::ScheduleWidgetServices const& services,
                                            Foundation::Date date,
                                            std::function<bool(Meetings::MeetEntity const&)> const& isMeant);

} // namespace Companion

template <>
inline constexpr auto Foundation::rawValues<Companion::ShowingRule> =
    std::to_array<std::pair<Companion::ShowingRule, std::string_view>>({
        {Companion::ShowingRule::card, "card"},
        {Companion::ShowingRule::allDayRow, "allDayRow"},
        {Companion::ShowingRule::didNotFit, "didNotFit"},
        {Companion::ShowingRule::noAllDaySection, "noAllDaySection"},
        {Companion::ShowingRule::ended, "ended"},
        {Companion::ShowingRule::hiddenCalendar, "hiddenCalendar"},
        {Companion::ShowingRule::startsOnAnotherDay, "startsOnAnotherDay"},
        {Companion::ShowingRule::outsideReach, "outsideReach"},
        {Companion::ShowingRule::excludedDate, "excludedDate"},
        {Companion::ShowingRule::excludedByRule, "excludedByRule"},
        {Companion::ShowingRule::cancelledOccurrence, "cancelledOccurrence"},
        {Companion::ShowingRule::cancelledEvent, "cancelledEvent"},
        {Companion::ShowingRule::movedOccurrence, "movedOccurrence"},
        {Companion::ShowingRule::accountNotEnabled, "accountNotEnabled"},
        {Companion::ShowingRule::accessDenied, "accessDenied"},
        {Companion::ShowingRule::beyondButtons, "beyondButtons"},
    });
