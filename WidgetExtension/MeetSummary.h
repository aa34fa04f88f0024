#pragma once

#include "Foundation/Calendar.h"
#include "Meetings/MeetEntity.h"
#include "Platform/HTMLReader/HTMLReader.h"
#include "Platform/WidgetHost/MainExecutor.h"

#include <string>
#include <vector>

namespace WidgetExtension {

/// What one wants to know of a meet at a glance. The texts are the calendar's own: whoever shows them makes
/// them harmless.
struct MeetSummary {
    std::string title;       ///< Whole.
    std::string times;       ///< On the calendar's clocks; empty for a meet of whole days.
    std::string place;       ///< Empty where the meet has none.
    std::string description; ///< The first line of it that says something, cut where it is overlong.

    bool operator==(MeetSummary const&) const = default;
};

MeetSummary meetSummary(Meetings::MeetEntity const& meeting, Foundation::Calendar const& calendar,
                        Platform::HTMLReader const& reader, Platform::MainExecutor& mainExecutor);

/// The same, a line each; lines that would be blank are left out.
std::vector<std::string> meetSummaryLines(Meetings::MeetEntity const& meeting,
                                          Foundation::Calendar const& calendar,
                                          Platform::HTMLReader const& reader,
                                          Platform::MainExecutor& mainExecutor);

} // namespace WidgetExtension
