#include "Applications/Companion/Commands.h"
#include "Applications/Companion/MeetJSON.h"
#include "Applications/Companion/MeetTexts.h"
#include "Applications/Companion/NamedMeet.h"
#include "Applications/Companion/PlainJSON.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Applications/Composition/LiveHTMLReader.h"
#include "Foundation/DateFormatting.h"
#include "Foundation/Text.h"
#include "Platform/Clock/RegionSettings.h"
#include "Platform/WidgetHost/CallingThreadMainExecutor.h"
#include "WidgetExtension/MeetSummary.h"

#include <utility>

namespace Companion {

namespace JSON = Foundation::JSON;
using Meetings::MeetEntity;

namespace {

// A meet with what is told of it beside its own fields.
struct MeetPage {
    MeetEntity meet;
    std::vector<std::string> summary; ///< What the widget's tooltip tells, harmless.
    std::string repetition;
};

std::vector<std::string> summaryOf(MeetEntity const& meet, Composition::LiveServices& services) {
    Platform::CallingThreadMainExecutor main;
    auto lines = WidgetExtension::meetSummaryLines(meet, services.region()->currentCalendar(),
                                                   Composition::liveHTMLReader(), main);
    for (auto& line : lines)
        line = Foundation::Text::neutralized(Foundation::Text::sanitizedUTF8(line));
    return lines;
}

// The store knows more of a rule than the meet does: its interval, its end, a yearly one.
std::string repetitionOf(MeetEntity const& meet, Composition::LiveServices& services,
                         MeetWords const& words) {
    auto const event = eventBehind(meet, *services.eventKitStore(), services.region()->currentCalendar());
    auto const rules = event ? event->recurrenceRules : rulesOf(meet);
    if (!rules.empty()) return words.repetition(rules);
    return event && event->occurrenceKey ? Texts::changedOccurrence() : Texts::doesNotRepeat();
}

std::string pageText(MeetPage const& page, MeetWords const& words) {
    auto const& meet = page.meet;
    std::string text;
    for (auto const& line : page.summary)
        text += line + "\n";
    auto const day = words.days(meet.metDate, endOf(meet));
    std::vector<std::vector<std::string>> rows = {
        {Texts::dayLabel(), meet.metIsAllDay ? words.when(meet) : day},
        {Texts::calendarLabel(), Texts::calendarNamed(meet.metCalendarName, meet.metCalendarIdentifier)},
        {Texts::repeatsLabel(), page.repetition}};
    if (meet.metUrl) rows.push_back({Texts::linkLabel(), meet.metUrl->absoluteString});
    rows.push_back({Texts::identifierLabel(), meet.metId.uuidString()});
    return text + "\n" + alignedColumns(rows);
}

JSON::Object pageJSON(MeetPage const& page) {
    JSON::Array summary;
    for (auto const& line : page.summary)
        summary.emplace_back(line);
    return {{"version", 1},
            {"meet", meetJSON(page.meet)},
            {"summary", std::move(summary)},
            {"repetition", page.repetition}};
}

void showDay(Invocation const& invocation, MeetsOfDay const& day, MeetWords const& words) {
    if (invocation.values.has("--json")) {
        JSON::Array list;
        for (auto const& meet : day.meetings)
            list.emplace_back(meetJSON(meet));
        invocation.console.writeLine(plainJSON(JSON::Object{
            {"version", 1}, {"date", Foundation::iso8601(day.date)}, {"meetings", std::move(list)}}));
        return;
    }
    if (day.meetings.empty()) {
        invocation.console.writeLine(Texts::noMeetsOn(words.dayInSentence(day.date)));
        return;
    }
    invocation.console.writeLine(words.day(day.date));
    invocation.console.write(meetList(day.meetings, words));
}

ExitCode run(Invocation const& invocation) {
    auto const choice = dayChoice(invocation.values);
    auto const services = liveServices(invocation);
    auto const words = meetWords(*services);
    auto const day = meetsOfDay(*services, choice);
    auto const& arguments = invocation.values.arguments();
    if (arguments.empty()) {
        showDay(invocation, day, words);
        return ExitCode::done;
    }
    auto const meet = meetCalled(arguments.front(), day, invocation, words);
    MeetPage const page = {.meet = meet,
                           .summary = summaryOf(meet, *services),
                           .repetition = repetitionOf(meet, *services, words)};
    if (invocation.values.has("--json")) {
        invocation.console.writeLine(plainJSON(pageJSON(page)));
    } else {
        invocation.console.write(pageText(page, words));
    }
    return ExitCode::done;
}

} // namespace

Command meetGroup() {
    return {
        .path = "meet",
        .summary = Texts::text("meet-summary"),
        .description = Texts::text("meet-description"),
    };
}

Command meetShowCommand() {
    return {
        .path = "meet show",
        .summary = Texts::text("meet-show-summary"),
        .description = Texts::text("meet-show-description"),
        .options = withDayChoice({{.name = "--json", .help = Texts::text("option-json")}}),
        .arguments = {{.name = "ID",
                       .help = Texts::text("meet-argument-id"),
                       .count = CommandArgument::Count::atMostOne}},
        .examples = {{"quillora meet show", Texts::text("meet-show-example-1")},
                     {"quillora meet show 8558", Texts::text("meet-show-example-2")},
                     {"quillora meet show --offset 1", Texts::text("meet-show-example-3")}},
        .run = run,
    };
}

} // namespace Companion
