#include "Applications/Companion/MeetTyping.h"

#include "Applications/Companion/BackendTexts.h"
#include "Applications/Companion/CommandError.h"
#include "Applications/Companion/MeetArguments.h"
#include "Applications/Companion/Texts.h"
#include "Meetings/Remote/MeetRecurrenceRemoteMapper.h"
#include "Meetings/Remote/MeetWeekdayCodeMapper.h"

#include <algorithm>
#include <array>
#include <map>
#include <ranges>
#include <string_view>
#include <utility>

namespace Companion {

using Meetings::MeetEntity;
using Meetings::MeetRecurrenceFrequency;

namespace {

constexpr std::array meetOptionNames = {"--name",        "--start",  "--duration",
                                        "--description", "--repeat", "--weekdays"};

// Only what describes the meet: elsewhere --url is a meet's link, here it is the backend's address.
MeetArguments argumentsOf(ArgumentValues const& values, Foundation::Calendar const& calendar) {
    std::map<std::string, std::string, std::less<>> described;
    for (auto const* name : meetOptionNames)
        if (auto const value = values.option(name)) described.emplace(name, *value);
    auto arguments = meetArguments(ArgumentValues(std::move(described), {}), calendar);
    // The backend knows no meets of whole days.
    if (arguments.start && std::holds_alternative<std::chrono::local_days>(*arguments.start))
        throw CommandError::wrongUse(Texts::backendNeedsATime());
    return arguments;
}

void setTimes(MeetEntity& meet, MeetTimes const& times) {
    meet.metDate = times.start;
    meet.metDuration = times.end.timeIntervalSince(times.start);
}

} // namespace

std::vector<CommandOption> backendMeetOptions(MeetAge age) {
    bool const isNew = age == MeetAge::isNew;
    return {{.name = "--name",
             .valueName = "NAME",
             .help = isNew ? Texts::text("meet-add-option-name") : Texts::text("meet-edit-option-name"),
             .isRequired = isNew},
            {.name = "--start",
             .valueName = "TIME",
             .help = Texts::text("backend-option-start"),
             .isRequired = isNew},
            {.name = "--duration",
             .valueName = "LENGTH",
             .help = isNew ? Texts::text("backend-option-duration") : Texts::text("meet-option-duration")},
            {.name = "--description", .valueName = "TEXT", .help = Texts::text("meet-option-description")},
            {.name = "--repeat",
             .valueName = "RHYTHM",
             .help = Texts::text("backend-option-repeat"),
             .choices = {"none", "daily", "weekly", "monthly"}},
            {.name = "--weekdays", .valueName = "DAYS", .help = Texts::text("backend-option-weekdays")}};
}

bool describesAMeet(ArgumentValues const& values) {
    return std::ranges::any_of(meetOptionNames, [&](auto const* name) { return values.has(name); });
}

MeetEntity typedMeet(ArgumentValues const& values, Foundation::Date today,
                     Foundation::Calendar const& calendar) {
    auto const arguments = argumentsOf(values, calendar);
    MeetEntity meet = {
        .metId = Foundation::UUID{}, // The backend's identifier decides it.
        .metName = "",
        .metDate = today,
        .metDescription = "",
        .metDuration = 0,
        .metColor = {.hexValue = ""},
        .metIsAllDay = false,
        .metLocation = std::nullopt,
        .metUrl = std::nullopt,
        .metCalendarName = "",
        .metCalendarIdentifier = "",
        .metRecurrenceFrequency = MeetRecurrenceFrequency::none,
        .metRecurringWeekdays = {},
        .metOriginalIdentifier = "",
        .metSource = Meetings::MeetSource::backend,
    };
    setTimes(meet, newTimes(arguments, calendar.day(today), calendar));
    writeFields(arguments, meet);
    return meet;
}

MeetEntity changedMeet(ArgumentValues const& values, MeetEntity meet, Foundation::Calendar const& calendar) {
    auto const arguments = argumentsOf(values, calendar);
    setTimes(meet, changedTimes(arguments, meet, calendar));
    writeFields(arguments, meet);
    return meet;
}

std::optional<std::string> unknownRepetition(Meetings::EventResponseDTO const& event) {
    namespace Mapper = Meetings::MeetRecurrenceRemoteMapper;
    auto const known = Mapper::toRemoteRepeat(Mapper::toLocalFrequency(event.evtRepeat));
    // An empty text says "never" as well.
    if (!event.evtRepeat.empty() && event.evtRepeat != known) return event.evtRepeat;
    for (auto const piece : std::views::split(event.evtCustomRepeat, '|')) {
        std::string_view const code(piece);
        if (!code.empty() && !Meetings::MeetWeekdayCodeMapper::weekday(code)) return event.evtCustomRepeat;
    }
    return std::nullopt;
}

std::string repetitionText(MeetEntity const& meet) {
    if (meet.metRecurrenceFrequency == MeetRecurrenceFrequency::none) return {};
    std::string text(Foundation::rawValue(meet.metRecurrenceFrequency));
    auto const days = Meetings::MeetRecurrenceRemoteMapper::toRemoteCustomRepeat(meet.metRecurringWeekdays);
    return days.empty() ? text : text + " " + days;
}

} // namespace Companion
