#include "Applications/Companion/Texts.h"

#include "Foundation/Text.h"

#include <cstdlib>
#include <fmt/format.h>

namespace Companion::Texts {

using Platform::EKAuthorizationStatus;

namespace {

// What a person typed, made harmless and short enough for one line.
std::string quoted(std::string_view value) {
    constexpr std::size_t longest = 60;
    auto const harmless = Foundation::Text::neutralized(Foundation::Text::sanitizedUTF8(value));
    return fmt::format("\"{}\"", Foundation::Text::truncated(harmless, longest));
}

std::string seeHelp(std::string_view command) {
    return fmt::format("see \"quillora {}{}--help\"", command, command.empty() ? "" : " ");
}

// "a, b or c"
std::string alternatives(std::vector<std::string> const& words) {
    std::string list;
    for (std::size_t index = 0; index < words.size(); ++index) {
        if (index > 0) list += index + 1 == words.size() ? " or " : ", ";
        list += words[index];
    }
    return list;
}

std::string dayCount(std::int64_t days) {
    return days == 1 ? "1 day" : fmt::format("{} days", days);
}

} // namespace

std::string version() {
    return "quillora " QUILLORA_VERSION;
}

std::string unknownCommand(std::string_view path) {
    return fmt::format("there is no command {}; {}", quoted(path), seeHelp(""));
}

std::string missingSubcommand(std::string_view group, std::vector<std::string> const& members) {
    return fmt::format("{} needs a command: {}; {}", group, alternatives(members), seeHelp(group));
}

std::string unknownOption(std::string_view command, std::string_view option) {
    return fmt::format("there is no option {}; {}", quoted(option), seeHelp(command));
}

std::string missingOption(std::string_view command, std::string_view option) {
    return fmt::format("{} needs {}; {}", command, option, seeHelp(command));
}

std::string unknownChoice(std::string_view option, std::string_view value,
                          std::vector<std::string> const& choices) {
    return fmt::format("{} takes {}, not {}", option, alternatives(choices), quoted(value));
}

std::string optionsExclude(std::string_view option, std::string_view other) {
    return fmt::format("{} and {} cannot be given together", option, other);
}

std::string missingValue(std::string_view command, std::string_view option, std::string_view value) {
    return fmt::format("{} needs a value: {}; {}", option, value, seeHelp(command));
}

std::string repeatedOption(std::string_view option) {
    return fmt::format("{} can be given only once", option);
}

std::string badOptions(std::string_view command, std::string_view reason) {
    return fmt::format("{}; {}", Foundation::Text::sanitizedUTF8(reason), seeHelp(command));
}

std::string missingArgument(std::string_view command, std::string_view argument) {
    return fmt::format("{} needs {}; {}", command, argument, seeHelp(command));
}

std::string unexpectedArgument(std::string_view command, std::string_view argument) {
    return fmt::format("{} does not take {}; {}", command, quoted(argument), seeHelp(command));
}

std::string notANumber(std::string_view option, std::string_view value) {
    return fmt::format("{} takes a whole number such as 1 or -3, not {}", option, quoted(value));
}

std::string notAMoment(std::string_view option, std::string_view value) {
    return fmt::format(
        "{} takes a moment such as 2026-03-11, 2026-03-11T09:00 or 2026-03-11T09:00:00Z, not {}", option,
        quoted(value));
}

std::string notADay(std::string_view option, std::string_view value) {
    return fmt::format("{} takes a date such as 2026-03-11, not {}", option, quoted(value));
}

std::string noSuchDay(std::int64_t offset) {
    return fmt::format("the calendar has no day {} days from today; it knows the years 1 to 9999", offset);
}

std::string unknownZone(std::string_view value) {
    return fmt::format("--zone takes the name of a time zone such as Europe/Madrid, not {}", quoted(value));
}

std::string intervalIsBackwards() {
    return "--to lies before --from; exchange them";
}

std::string badScale(std::string_view value, double largest) {
    return fmt::format("--scale takes a number above 0 and at most {}, not {}", largest, quoted(value));
}

std::string oneOutputAtATime() {
    return "standard output takes one thing at a time; name files for the others";
}

std::string blankTitle() {
    return "--title takes a text that is not blank";
}

std::string cannotResolvePath(std::string_view path, std::string_view reason) {
    return fmt::format("{} cannot be made an absolute path: {}", quoted(path), reason);
}

std::string noSuchPath(std::string_view path) {
    return fmt::format("there is no file or folder {}", path);
}

std::string noSuchFolder(std::string_view path) {
    return fmt::format("there is no folder {}", path);
}

std::string notAFolder(std::string_view path) {
    return fmt::format("{} is not a folder", path);
}

std::string unreadableFolder(std::string_view path, std::string_view reason) {
    return fmt::format("the folder {} cannot be read: {}", path, reason);
}

std::string unreadableFile(std::string_view path, std::string_view reason) {
    return fmt::format("the file {} cannot be read: {}", path, reason);
}

std::string outputIsAFolder(std::string_view path) {
    return fmt::format("{} is a folder; name a file to write", path);
}

std::string cannotWrite(std::string_view path, std::string_view reason) {
    return fmt::format("{} could not be written, and stays as it was: {}", path, reason);
}

std::string cannotWriteOutput(std::string_view reason) {
    return fmt::format("standard output could not be written: {}", reason);
}

std::string unreadableInput(std::string_view reason) {
    return fmt::format("standard input could not be read: {}", reason);
}

std::string inputIsTooLarge(std::size_t mostMebibytes) {
    return fmt::format(
        "standard input holds more than {} MiB, so nothing was printed; give the description alone",
        mostMebibytes);
}

std::string cannotEncodeJSON() {
    return "a text or number of the calendars cannot be written as JSON";
}

std::string noHome() {
    return "neither HOME nor XDG_CONFIG_HOME and XDG_DATA_HOME name a folder, so there is no place for "
           "Quillora's files; set HOME";
}

std::string unexpectedFailure(std::string_view reason) {
    return fmt::format("something unexpected went wrong: {}", Foundation::Text::sanitizedUTF8(reason));
}

std::string accessStatus(EKAuthorizationStatus status) {
    switch (status) {
    case EKAuthorizationStatus::notDetermined: return "Calendar access: not asked yet";
    case EKAuthorizationStatus::restricted:
        return "Calendar access: restricted by this computer's administrator";
    case EKAuthorizationStatus::denied: return "Calendar access: denied";
    case EKAuthorizationStatus::fullAccess: return "Calendar access: granted";
    case EKAuthorizationStatus::writeOnly: return "Calendar access: write-only, which counts as denied";
    }
    // A record of a newer version.
    return fmt::format("Calendar access: unknown ({}), which counts as denied",
                       static_cast<std::int64_t>(status));
}

std::string accessIsMissing() {
    return "Quillora may not read your calendars; allow it with \"quillora setup\" or \"quillora access "
           "grant\"";
}

std::string accessNotGranted() {
    return "Quillora may not read your calendars; \"quillora access grant\" allows it without a question";
}

std::string calendarsAreNotSetUp() {
    return "the calendars of this computer are not switched on yet; run \"quillora setup\"";
}

std::string nobodyWasAsked() {
    return "calendar access was not granted, because nobody could be asked; run \"quillora setup\" in a "
           "terminal, "
           "or \"quillora setup --yes\"";
}

std::string ownCalendarMade(std::string_view path) {
    return fmt::format("Made Quillora's own calendar: {}", path);
}

std::string ownCalendarIsThere(std::string_view path) {
    return fmt::format("Quillora's own calendar is there: {}", path);
}

std::string accountEnabled() {
    return "The calendars of this computer are switched on";
}

std::string accountsNotSaved() {
    return "the calendars of this computer could not be switched on: the shared folder cannot be written";
}

std::string keychainChosen(bool isFile) {
    if (!isFile) return "The key of the registrations is kept in the desktop's keyring";
    return "The key of the registrations is kept in a file that only you can read. That protects them from "
           "other users of this computer, but not from the programs that you run, nor from who gets hold of "
           "its disk or of a backup";
}

std::string thisComputersCalendars() {
    return "Calendars on this computer";
}

std::string offerFolder(std::string_view path) {
    return fmt::format("There are calendars in {}. Show them?", path);
}

std::string folderIsAdded(std::string_view path) {
    return fmt::format("The calendars in {} are shown already", path);
}

std::string folderLeftOut(std::string_view path) {
    return fmt::format("Left out the calendars in {0}; add them with \"quillora sources add {0}\"", path);
}

std::string setupIsDone() {
    return "Add calendars with \"quillora sources add DIR\"; see your day with \"quillora day\"";
}

std::string problemOf(std::string_view path, std::string_view problem) {
    return fmt::format("{}: {}", path, problem);
}

std::string noSources() {
    return "No folder was added yet; add one with \"quillora sources add DIR\"";
}

std::string sourceIsKnown(std::string_view path, std::string_view title) {
    return fmt::format("{} is a source already, under the title {}", path, quoted(title));
}

std::string sourceAdded(std::string_view title, std::string_view path, std::string_view id) {
    return fmt::format("Added {} ({}) as {}", quoted(title), path, id);
}

std::string sourceRemoved(std::string_view title, std::string_view path) {
    return fmt::format("Removed {} ({}); its files stay", quoted(title), path);
}

std::string unknownSource(std::string_view name) {
    return fmt::format("no source has the id or path {}; \"quillora sources list\" shows them", quoted(name));
}

std::string folderHoldsNoCalendars(std::string_view path) {
    return fmt::format("{} holds no .ics file yet, neither itself nor in a folder directly below", path);
}

std::string noCalendars() {
    return "There are no calendars yet; run \"quillora setup\", then \"quillora sources add DIR\"";
}

std::string hiddenMark() {
    return "hidden";
}

std::string unknownCalendar(std::string_view identifier) {
    return fmt::format("no calendar has the identifier {}; \"quillora calendars list\" shows them",
                       quoted(identifier));
}

std::string calendarHidden(std::string_view title) {
    return fmt::format("Hid {}", quoted(title));
}

std::string calendarShown(std::string_view title) {
    return fmt::format("Shows {}", quoted(title));
}

std::string hiddenCalendarsNotSaved() {
    return "the hidden calendars could not be saved and stay as they were: the shared folder cannot be "
           "written";
}

std::string moreProblems(std::size_t count) {
    return fmt::format("{} more of these; QUILLORA_LOG=error shows them all", count);
}

std::string noProviders() {
    return "No calendar provider is registered yet; register one with \"quillora providers add\"";
}

std::string providerState(bool isEnabled) {
    return isEnabled ? "enabled" : "disabled";
}

std::string providersNotRead() {
    return "the registered providers could not be read";
}

std::string providerNotRegistered(std::string_view id) {
    return fmt::format("the provider {} was not registered", quoted(id));
}

std::string providerRegistered(std::string_view name, std::string_view email, std::string_view id) {
    return fmt::format("Registered {} ({}) as {}", quoted(name), quoted(email), quoted(id));
}

std::string nothingToEdit() {
    return "providers edit needs --email, --name or --description; see \"quillora providers edit --help\"";
}

std::string providerNotChanged(std::string_view id) {
    return fmt::format("the provider {} was not changed", quoted(id));
}

std::string providerChanged(std::string_view name, std::string_view email) {
    return fmt::format("The provider is now {} ({})", quoted(name), quoted(email));
}

std::string providerSwitched(std::string_view name, bool isEnabled) {
    return fmt::format("{} {}", isEnabled ? "Enabled" : "Disabled", quoted(name));
}

std::string providerNotRemoved(std::string_view id) {
    return fmt::format("the provider {} was not removed", quoted(id));
}

std::string providerRemoved(std::string_view name) {
    return fmt::format("Removed {}", quoted(name));
}

std::string providerIsGone(std::string_view id) {
    return fmt::format("No provider is registered as {}", quoted(id));
}

std::string mirrorNotSaved() {
    return "the registered providers were changed, but the widget could not be told: the shared folder "
           "cannot "
           "be written; make it writable, then run the same \"quillora providers enable\" or \"disable\" "
           "once more";
}

std::string dayShown(std::string_view weekday, std::string_view date, std::int64_t offset,
                     std::int64_t furthest) {
    if (offset == 0) return fmt::format("{} {} (today)", weekday, date);
    // The smallest 64-bit number has no opposite; such an offset comes from a file by another hand.
    auto const days = offset < 0 ? -std::max(offset, -INT64_MAX) : offset;
    return fmt::format("{} {} ({} {}{})", weekday, date, dayCount(days), offset > 0 ? "ahead" : "back",
                       days == furthest ? ", as far as it goes" : "");
}

std::string dayNotSaved() {
    return "the day could not be saved and stays as it was: the shared folder cannot be written";
}

std::string storedDayIsOutOfRange(std::int64_t offset) {
    return fmt::format(
        "the stored day is {} days from today, from where there is no further step; go back with "
        "\"quillora today\"",
        offset);
}

} // namespace Companion::Texts
