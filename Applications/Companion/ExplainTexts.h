#pragma once

#include "Applications/Companion/DayExplanation.h"
#include "Applications/Companion/MeetWords.h"

#include <string>
#include <string_view>

/// What `explain` says.
namespace Companion::Texts {

/// Which day, of which size of widget.
std::string explainedDayHeading(std::string_view day, Platform::WidgetFamily family);

/// Why nothing of the day is shown. `whyNoAccess` is told where access is what is missing. Absent for a day
/// like any other.
std::optional<std::string> dayRuleText(DayExplanation const& day, std::string_view whyNoAccess);

/// Whether a meet is shown, and why.
std::string ruleText(ExplainedMeet const& explained, DayExplanation const& day, MeetWords const& words);

/// The calendar of a meet, and where it is written.
std::string calendarAndPlace(ExplainedMeet const& explained);

std::string nothingOnTheDay();
std::string nothingReadOnTheDay();
std::string notOnTheDay(std::string_view name);
std::string foundNowhere(std::string_view name, std::string_view day);
std::string problemsHeading();

} // namespace Companion::Texts
