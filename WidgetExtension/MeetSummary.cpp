#include "WidgetExtension/MeetSummary.h"

#include "Foundation/DateFormatting.h"
#include "Foundation/Text.h"
#include "WidgetExtension/HTMLAttributedTextUtil.h"

#include <utility>

namespace WidgetExtension {

namespace {

namespace Text = Foundation::Text;

std::string timesOf(Meetings::MeetEntity const& meeting, Foundation::Calendar const& calendar) {
    if (meeting.metIsAllDay) return {};
    auto const end = meeting.metDate.addingTimeInterval(meeting.metDuration);
    auto times = Foundation::twelveHourTimeWithMarker(meeting.metDate, calendar);
    if (end > meeting.metDate) times += " – " + Foundation::twelveHourTimeWithMarker(end, calendar);
    return times;
}

bool isBlank(std::string_view text) {
    return Text::trimmingWhitespacesAndNewlines(text).empty();
}

// A plain description comes back whole from the parser.
std::string firstLine(std::string const& description) {
    constexpr std::size_t longest = 200;
    for (auto const& line : Text::componentsSeparatedByNewlines(description)) {
        if (!isBlank(line)) return Text::truncated(Text::trimmingWhitespaces(line), longest);
    }
    return {};
}

} // namespace

MeetSummary meetSummary(Meetings::MeetEntity const& meeting, Foundation::Calendar const& calendar,
                        Platform::HTMLReader const& reader, Platform::MainExecutor& mainExecutor) {
    auto const description = HTMLAttributedTextUtil::parse(meeting.metDescription, reader, mainExecutor)
                                 .value_or(AttributedString{});
    return {.title = meeting.metName,
            .times = timesOf(meeting, calendar),
            .place = meeting.metLocation.value_or(""),
            .description = firstLine(description.string)};
}

std::vector<std::string> meetSummaryLines(Meetings::MeetEntity const& meeting,
                                          Foundation::Calendar const& calendar,
                                          Platform::HTMLReader const& reader,
                                          Platform::MainExecutor& mainExecutor) {
    auto summary = meetSummary(meeting, calendar, reader, mainExecutor);
    std::vector<std::string> lines = {std::move(summary.title), std::move(summary.times),
                                      std::move(summary.place), std::move(summary.description)};
    std::erase_if(lines, isBlank);
    return lines;
}

} // namespace WidgetExtension
