#include "Applications/Companion/ExplainCommand.h"

#include "Applications/Companion/AskedOnceAppearance.h"
#include "Applications/Companion/CalendarAccess.h"
#include "Applications/Companion/ConsoleLogSink.h"
#include "Applications/Companion/DayExplanation.h"
#include "Applications/Companion/ExplainTexts.h"
#include "Applications/Companion/MeetIdentifier.h"
#include "Applications/Companion/MeetJSON.h"
#include "Applications/Companion/NamedMeet.h"
#include "Applications/Companion/PlainJSON.h"
#include "Applications/Companion/Support.h"
#include "Applications/Companion/Texts.h"
#include "Foundation/DateFormatting.h"
#include "Foundation/Text.h"
#include "Platform/EventStore/Folder/FolderEventStore.h"
#include "Platform/EventStore/Folder/StoreProblem.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Companion {

namespace JSON = Foundation::JSON;
using Meetings::MeetEntity;

namespace {

// What there is to tell: the day, or what of it was asked for.
struct Report {
    DayExplanation day;
    std::vector<ExplainedMeet> otherDays;         ///< Where what was asked for is not on the day.
    std::vector<Platform::StoreProblem> problems; ///< What of the calendars could not be read whole.
};

bool isMeant(MeetEntity const& meet, std::string const& name) {
    auto const digits = identifierDigits(name);
    if (digits && isCalled(meet, *digits)) return true;
    return Foundation::Text::lowercased(meet.metName).contains(Foundation::Text::lowercased(name));
}

std::string_view effectName(Platform::StoreProblem::Effect effect) {
    switch (effect) {
    case Platform::StoreProblem::Effect::skipped: return "skipped";
    case Platform::StoreProblem::Effect::adjusted: return "adjusted";
    case Platform::StoreProblem::Effect::ignored: return "ignored";
    }
    std::unreachable();
}

JSON::Object explainedJSON(ExplainedMeet const& explained, bool isShown) {
    JSON::Object object = {{"meet", meetJSON(explained.meet)},
                           {"isShown", isShown},
                           {"rule", Foundation::rawValue(explained.rule)},
                           {"file", explained.file},
                           {"line", explained.line}};
    if (explained.place != 0) object.emplace_back("place", static_cast<std::int64_t>(explained.place));
    if (!explained.causeFile.empty()) {
        object.emplace_back("causeFile", explained.causeFile);
        object.emplace_back("causeLine", explained.causeLine);
    }
    if (explained.movedTo) object.emplace_back("movedTo", Foundation::iso8601(*explained.movedTo));
    return object;
}

JSON::Object reportJSON(Report const& report) {
    auto const& day = report.day;
    JSON::Array meets;
    for (auto const& explained : day.meets)
        meets.emplace_back(explainedJSON(explained, day.isShown(explained)));
    JSON::Array otherDays;
    for (auto const& explained : report.otherDays)
        otherDays.emplace_back(explainedJSON(explained, false));
    JSON::Array problems;
    for (auto const& problem : report.problems)
        problems.emplace_back(JSON::Object{{"file", shownPath(problem.path)},
                                           {"line", problem.line},
                                           {"effect", effectName(problem.effect)},
                                           {"reason", problem.reason}});
    JSON::Object object = {{"version", 1},
                           {"date", Foundation::iso8601(day.date)},
                           {"dayOffset", day.dayOffset},
                           {"family", Foundation::rawValue(day.family)}};
    if (day.dayRule) object.emplace_back("dayRule", Foundation::rawValue(*day.dayRule));
    object.emplace_back("meets", std::move(meets));
    object.emplace_back("otherDays", std::move(otherDays));
    object.emplace_back("problems", std::move(problems));
    return object;
}

std::string headLine(ExplainedMeet const& explained, std::string const& when, std::string const& identifier) {
    return identifier + "  " + when + "  " +
           Foundation::Text::neutralized(Foundation::Text::sanitizedUTF8(explained.meet.metName)) + "\n";
}

std::vector<std::string> beginningsOf(std::vector<ExplainedMeet> const& list) {
    std::vector<MeetEntity> meets;
    std::ranges::transform(list, std::back_inserter(meets), &ExplainedMeet::meet);
    return identifierBeginnings(meets);
}

std::string meetsText(DayExplanation const& day, MeetWords const& words) {
    std::string page;
    auto const identifiers = beginningsOf(day.meets);
    for (std::size_t index = 0; index < day.meets.size(); ++index) {
        auto const& explained = day.meets[index];
        page += "\n" + headLine(explained, words.time(explained.meet), identifiers[index]);
        page += "  " + Texts::ruleText(explained, day, words) + "\n";
        page += "  " + Texts::calendarAndPlace(explained) + "\n";
    }
    return page;
}

std::string otherDaysText(Report const& report, std::string const& name, MeetWords const& words) {
    std::string page = "\n" + Texts::notOnTheDay(name) + "\n";
    auto const identifiers = beginningsOf(report.otherDays);
    for (std::size_t index = 0; index < report.otherDays.size(); ++index) {
        auto const& explained = report.otherDays[index];
        page += "  " + headLine(explained, words.when(explained.meet), identifiers[index]);
        if (explained.rule != ShowingRule::startsOnAnotherDay)
            page += "    " + Texts::ruleText(explained, report.day, words) + "\n";
    }
    return page;
}

std::string reportText(Report const& report, std::string const& name, MeetWords const& words,
                       Composition::LiveServices& services) {
    auto const& day = report.day;
    std::string page = Texts::explainedDayHeading(words.day(day.date), day.family) + "\n";
    auto const whyNoAccessIs = day.dayRule == ShowingRule::accessDenied
                                   ? whyNoAccess(services, Texts::accessIsMissing())
                                   : std::string();
    if (auto const text = Texts::dayRuleText(day, whyNoAccessIs)) page += *text + "\n";
    if (!report.otherDays.empty()) return page + otherDaysText(report, name, words);
    if (day.meets.empty() && !day.dayRule)
        page += (report.problems.empty() ? Texts::nothingOnTheDay() : Texts::nothingReadOnTheDay()) + "\n";
    page += meetsText(day, words);
    if (!report.problems.empty()) {
        page += "\n" + Texts::problemsHeading() + "\n";
        for (auto const& problem : report.problems)
            page += "  " + Foundation::Text::neutralized(Platform::describe(problem)) + "\n";
    }
    return page;
}

// What was left out by rule is no problem. Who may not read the calendars knows of none.
std::vector<Platform::StoreProblem> problemsOf(Composition::LiveServices& live) {
    if (live.eventStore()->authorizationStatus() != Platform::EKAuthorizationStatus::fullAccess) return {};
    auto problems = live.calendarFolders()->problems();
    std::erase_if(problems, [](Platform::StoreProblem const& problem) {
        return problem.effect == Platform::StoreProblem::Effect::ignored;
    });
    std::ranges::sort(problems);
    auto const repeated = std::ranges::unique(problems);
    problems.erase(repeated.begin(), repeated.end());
    return problems;
}

// Keeps what was asked for; what is not on the day is looked for around it.
void narrow(Report& report, std::string const& name, Composition::LiveServices& live,
            WidgetExtension::ScheduleWidgetServices const& services, MeetWords const& words) {
    auto const isAskedFor = [&name](MeetEntity const& meet) { return isMeant(meet, name); };
    std::erase_if(report.day.meets,
                  [&](ExplainedMeet const& explained) { return !isAskedFor(explained.meet); });
    bool const mayKnow = report.day.dayRule != ShowingRule::accessDenied;
    if (!report.day.meets.empty() || !mayKnow) return;
    report.otherDays = meetsOnOtherDays(live, services, report.day.date, isAskedFor);
    if (!report.otherDays.empty()) return;
    // It may be among what could not be read, of which the log tells whatever was not told yet.
    (void)problemsOf(live);
    throw CommandError::failed(Texts::foundNowhere(name, words.day(report.day.date)));
}

ExitCode run(Invocation const& invocation) {
    auto const& values = invocation.values;
    auto const choice = dayChoice(values);
    auto const family =
        *Foundation::fromRawValue<Platform::WidgetFamily>(values.option("--family").value_or("large"));
    Foundation::Calendar const calendar(Foundation::TimeZone::current(invocation.environment));
    std::optional<Foundation::Date> at;
    if (auto const text = values.option("--at")) at = moment("--at", *text, calendar);

    auto const name = values.arguments().empty() ? std::string() : values.arguments().front();

    // A whole day bears the problems itself.
    auto const telling = name.empty() ? ConsoleLogSink::CalendarProblems::leftToTheCommand
                                      : ConsoleLogSink::CalendarProblems::told;
    auto const live = liveServices(invocation, {.fixedMoment = at,
                                                .logSink = std::make_shared<ConsoleLogSink>(
                                                    invocation.console, invocation.environment, telling)});
    (void)requiredConfiguration(*live); // Without a home there is nothing to explain.
    Foundation::TaskLoop loop;
    auto services = live->scheduleWidgetServices(loop.executor());
    // Nothing here shows a colour, so no desktop need be asked for its scheme.
    services.appearance =
        std::make_shared<AskedOnceAppearance>(services.appearance, Platform::ColorScheme::light);
    auto const words = meetWords(*live);

    Report report = {.day = explainedDay(*live, services, loop, offsetOf(choice, services), family),
                     .otherDays = {},
                     .problems = {}};
    if (!name.empty()) narrow(report, name, *live, services, words);
    if (name.empty() || values.has("--json")) report.problems = problemsOf(*live);
    if (values.has("--json")) {
        invocation.console.writeLine(plainJSON(reportJSON(report)));
    } else {
        invocation.console.write(reportText(report, name, words, *live));
    }
    return ExitCode::done;
}

} // namespace

Command explainCommand() {
    return {
        .path = "explain",
        .summary = Texts::text("explain-summary"),
        .description = Texts::text("explain-description"),
        .options = withDayChoice({{.name = "--family",
                                   .valueName = "FAMILY",
                                   .help = Texts::text("explain-option-family"),
                                   .choices = {"small", "medium", "large"}},
                                  {.name = "--at",
                                   .valueName = "MOMENT",
                                   .help = Texts::text("day-option-at"),
                                   .kind = ValueKind::moment},
                                  {.name = "--json", .help = Texts::text("option-json")}}),
        .arguments = {{.name = "WHICH",
                       .help = Texts::text("explain-argument-which"),
                       .count = CommandArgument::Count::atMostOne}},
        .examples = {{"quillora explain", Texts::text("explain-example-1")},
                     {"quillora explain stand-up --offset 1", Texts::text("explain-example-2")},
                     {"quillora explain --day 2026-03-11 --family small", Texts::text("explain-example-3")}},
        .run = run,
    };
}

} // namespace Companion
