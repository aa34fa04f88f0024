#include "Applications/Companion/Texts.h"

#include "Applications/Companion/TextLookup.h"
#include "Foundation/Text.h"

#include <algorithm>
#include <cstdlib>
#include <fmt/format.h>
#include <ranges>

namespace Companion::Texts {

using Platform::EKAuthorizationStatus;

namespace {

std::string seeHelp(std::string_view command) {
    return command.empty() ? Texts::text("see-help") : text("see-help-of", command);
}

// "a, b or c"
std::string alternatives(std::vector<std::string> const& words) {
    std::string list;
    for (std::size_t index = 0; index < words.size(); ++index) {
        bool const isLast = index + 1 == words.size();
        list = index == 0 ? words[index]
               : isLast   ? text("alternatives-last", list, words[index])
                          : text("alternatives-next", list, words[index]);
    }
    return list;
}

} // namespace

std::string version() {
    return "quillora " QUILLORA_VERSION;
}

std::string programDescription() {
    return text("program-description");
}

std::string firstSteps() {
    return text("first-steps");
}

std::string usageHeading() {
    return text("usage-heading");
}

std::string commandsHeading() {
    return text("commands-heading");
}

std::string argumentsHeading() {
    return text("arguments-heading");
}

std::string optionsHeading() {
    return text("options-heading");
}

std::string examplesHeading() {
    return text("examples-heading");
}

std::string exitCodesHeading() {
    return text("exit-codes-heading");
}

std::string exitDone() {
    return text("exit-done");
}

std::string exitFailed() {
    return text("exit-failed");
}

std::string exitWrongUse() {
    return text("exit-wrong-use");
}

std::string exitInterrupted() {
    return text("exit-interrupted");
}

std::string helpOption() {
    return text("help-option");
}

std::string usageCommand() {
    return text("usage-command");
}

std::string usageCommandHelp() {
    return text("usage-command-help");
}

std::string usageMembers() {
    return text("usage-members");
}

std::string askHint() {
    return text("ask-hint");
}

std::optional<bool> yesOrNo(std::string_view answer) {
    auto const given = Foundation::Text::lowercased(Foundation::Text::sanitizedUTF8(answer));
    auto const isOneOf = [&](std::string const& answers) {
        return std::ranges::any_of(std::views::split(answers, ' '),
                                   [&](auto const& accepted) { return std::ranges::equal(accepted, given); });
    };
    if (isOneOf(text("ask-yes"))) return true;
    if (isOneOf(text("ask-no"))) return false;
    return std::nullopt;
}

Platform::TerminalConsentTexts consent() {
    return {.question = text("consent-question"), .again = text("consent-again"), .yesOrNo = yesOrNo};
}

std::string unknownCommand(std::string_view path) {
    return text("unknown-command", quoted(path), seeHelp(""));
}

std::string missingSubcommand(std::string_view group, std::vector<std::string> const& members) {
    return text("missing-subcommand", group, alternatives(members), seeHelp(group));
}

std::string unknownOption(std::string_view command, std::string_view option) {
    return text("unknown-option", quoted(option), seeHelp(command));
}

std::string missingOption(std::string_view command, std::string_view option) {
    return text("missing-option", command, option, seeHelp(command));
}

std::string unknownChoice(std::string_view option, std::string_view value,
                          std::vector<std::string> const& choices) {
    return text("unknown-choice", option, alternatives(choices), quoted(value));
}

std::string optionsExclude(std::string_view option, std::string_view other) {
    return text("options-exclude", option, other);
}

std::string missingValue(std::string_view command, std::string_view option, std::string_view value) {
    return text("missing-value", option, value, seeHelp(command));
}

std::string repeatedOption(std::string_view option) {
    return text("repeated-option", option);
}

std::string unexpectedValue(std::string_view command, std::string_view option) {
    return text("unexpected-value", option, seeHelp(command));
}

std::string missingArgument(std::string_view command, std::string_view argument) {
    return text("missing-argument", command, argument, seeHelp(command));
}

std::string unexpectedArgument(std::string_view command, std::string_view argument) {
    return text("unexpected-argument", command, quoted(argument), seeHelp(command));
}

std::string notANumber(std::string_view option, std::string_view value) {
    return text("not-a-number", option, quoted(value));
}

std::string notAMoment(std::string_view option, std::string_view value) {
    return text("not-a-moment", option, quoted(value));
}

std::string notADay(std::string_view option, std::string_view value) {
    return text("not-a-day", option, quoted(value));
}

std::string noSuchDay(std::int64_t offset) {
    return text("no-such-day", std::to_string(offset));
}

std::string unknownZone(std::string_view value) {
    return text("unknown-zone", quoted(value));
}

std::string intervalIsBackwards() {
    return text("interval-is-backwards");
}

std::string badScale(std::string_view value, double largest) {
    return text("bad-scale", fmt::format("{}", largest), quoted(value));
}

std::string oneOutputAtATime() {
    return text("one-output-at-a-time");
}

std::string sameOutput(std::string_view option, std::string_view other) {
    return text("same-output", option, other);
}

std::string blankTitle() {
    return text("blank-title");
}

std::string cannotResolvePath(std::string_view path, std::string_view reason) {
    return text("cannot-resolve-path", quoted(path), told(reason));
}

std::string noSuchPath(std::string_view path) {
    return text("no-such-path", path);
}

std::string noSuchFolder(std::string_view path) {
    return text("no-such-folder", path);
}

std::string notAFolder(std::string_view path) {
    return text("not-a-folder", path);
}

std::string unreadableFolder(std::string_view path, std::string_view reason) {
    return text("unreadable-folder", path, told(reason));
}

std::string unreadableFile(std::string_view path, std::string_view reason) {
    return text("unreadable-file", path, told(reason));
}

std::string outputIsAFolder(std::string_view path) {
    return text("output-is-a-folder", path);
}

std::string cannotWrite(std::string_view path, std::string_view reason) {
    return text("cannot-write", path, told(reason));
}

std::string unwritableFile(std::string_view path, std::string_view reason) {
    return text("unwritable-file", path, told(reason));
}

std::string changedElsewhere() {
    return text("changed-elsewhere");
}

std::string neitherFileNorFolder(std::string_view path) {
    return text("neither-file-nor-folder", path);
}

std::string cannotWriteOutput(std::string_view reason) {
    return text("cannot-write-output", told(reason));
}

std::string cannotWriteWhatIsDone(std::string_view reason, std::string_view whatWasDone) {
    return text("cannot-write-what-is-done", told(reason), whatWasDone);
}

std::string unreadableInput(std::string_view reason) {
    return text("unreadable-input", told(reason));
}

std::string inputIsTooLarge(std::size_t mostMebibytes) {
    return text("input-is-too-large", std::to_string(mostMebibytes));
}

std::string cannotEncodeJSON() {
    return text("cannot-encode-json");
}

std::string noHome() {
    return text("no-home");
}

std::string settingNotSaved(std::string_view reason) {
    return text("setting-not-saved", told(reason));
}

std::string partIsMissing(std::string_view path, std::string_view reason) {
    return text("part-is-missing", path, told(reason));
}

std::string unexpectedFailure(std::string_view reason) {
    return text("unexpected-failure", told(reason));
}

std::string accessStatus(EKAuthorizationStatus status) {
    switch (status) {
    case EKAuthorizationStatus::notDetermined: return text("access-not-determined");
    case EKAuthorizationStatus::restricted: return text("access-restricted");
    case EKAuthorizationStatus::denied: return text("access-denied");
    case EKAuthorizationStatus::fullAccess: return text("access-granted");
    case EKAuthorizationStatus::writeOnly: return text("access-write-only");
    }
    // A record of a newer version.
    return text("access-unknown", std::to_string(static_cast<std::int64_t>(status)));
}

std::string storeRefuses() {
    return text("access-store-refuses");
}

std::string folderIsRefused(std::string_view path, std::string_view wordToOpen) {
    return text("folder-is-refused", path, wordToOpen);
}

std::string folderIsRefusedByOther(std::string_view path, std::string_view closed) {
    return text("folder-is-refused-by-other", path, closed);
}

std::string accessIsMissing() {
    return text("access-is-missing");
}

std::string accessNotGranted() {
    return text("access-not-granted");
}

std::string accessNotAnswered() {
    return text("access-not-answered");
}

std::string accessHasNobodyToAsk() {
    return text("access-not-asked");
}

std::string accessRecordHoldsNoAnswer(std::string_view path) {
    return text("access-record-holds-no-answer", path);
}

std::string accessRecordIsUnreadable(std::string_view path, std::string_view reason) {
    return text("access-record-is-unreadable", path, told(reason));
}

std::string calendarsAreNotSetUp() {
    return text("calendars-are-not-set-up");
}

std::string enabledCalendarsAreUnreadable(std::string_view path, std::string_view reason) {
    return text("enabled-calendars-are-unreadable", path, told(reason));
}

std::string problemOf(std::string_view path, std::string_view problem) {
    return text("problem-of", path, told(problem));
}

std::string noSources() {
    return text("no-sources");
}

std::string sourceIsKnown(std::string_view path, std::string_view title) {
    return text("source-is-known", path, quoted(title));
}

std::string sourceIsOwnCalendar(std::string_view path) {
    return text("source-is-own-calendar", path);
}

std::string sourcesAreNested(std::string_view inner, std::string_view outer, std::string_view id) {
    return text("sources-are-nested", inner, outer, id);
}

std::string sourceAdded(std::string_view title, std::string_view path, std::string_view id) {
    return text("source-added", quoted(title), path, id);
}

std::string sourceRemoved(std::string_view title, std::string_view path) {
    return text("source-removed", quoted(title), path);
}

std::string calendarsRefreshed(std::int64_t filesRead) {
    return text("calendars-refreshed", std::to_string(filesRead));
}

std::string calendarsNotWhollyRefreshed() {
    return text("calendars-not-wholly-refreshed");
}

std::string unknownSource(std::string_view name) {
    return text("unknown-source", quoted(name));
}

std::string folderHoldsNoCalendars(std::string_view path) {
    return text("folder-holds-no-calendars", path);
}

std::string noCalendars() {
    return text("no-calendars");
}

std::string hiddenMark() {
    return text("hidden-mark");
}

std::string accountWithoutCalendars() {
    return text("account-without-calendars");
}

std::string unknownCalendar(std::string_view identifier) {
    return text("unknown-calendar", quoted(identifier));
}

std::string calendarHidden(std::string_view title) {
    return text("calendar-hidden", quoted(title));
}

std::string calendarShown(std::string_view title) {
    return text("calendar-shown", quoted(title));
}

std::string hiddenCalendarsNotSaved(std::string_view why) {
    return text("hidden-calendars-not-saved", why);
}

std::string moreProblems(std::size_t count) {
    return counted("more-problems", static_cast<std::int64_t>(count));
}

std::string dayShown(std::string_view weekday, std::string_view date, std::int64_t offset,
                     std::int64_t furthest) {
    if (offset == 0) return text("day-shown-today", weekday, date);
    // The smallest 64-bit number has no opposite; such an offset comes from a file by another hand.
    auto const days = offset < 0 ? -std::max(offset, -INT64_MAX) : offset;
    if (offset > 0)
        return days == furthest ? counted("day-shown-furthest-ahead", days, weekday, date)
                                : counted("day-shown-ahead", days, weekday, date);
    return days == furthest ? counted("day-shown-furthest-back", days, weekday, date)
                            : counted("day-shown-back", days, weekday, date);
}

std::string dayNotSaved(std::string_view why) {
    return text("day-not-saved", why);
}

std::string storedDayIsOutOfRange(std::int64_t offset) {
    return text("stored-day-is-out-of-range", std::to_string(offset));
}

} // namespace Companion::Texts
