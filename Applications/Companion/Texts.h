#pragma once

#include "Applications/Companion/TableText.h"
#include "Applications/Composition/Texts.h"
#include "Platform/EventStore/EKEventStore.h"
#include "Platform/EventStore/Folder/TerminalConsentPrompt.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What the program says, in one place. The words stand in the tables in Resources/, a table a language; here
/// each text has its name and the values that it tells. Errors tell what failed, with the value that matters,
/// and what the person can do. None ends with a line feed.
namespace Companion::Texts {

/// Speaks these languages from now on, best first. English until then. Once, before other threads are
/// started.
void useLanguages(std::vector<std::string> const& languages);

/// What the parts of the platform say, in the person's language.
using Composition::Texts::told;

/// The text of `key`, for what the command table says of commands and options. `key` is a literal.
TableText text(std::string_view key);

// Help.
std::string programDescription();
std::string firstSteps();
std::string usageHeading();
std::string commandsHeading();
std::string argumentsHeading();
std::string optionsHeading();
std::string examplesHeading();
std::string exitCodesHeading();
std::string exitDone();
std::string exitFailed();
std::string exitWrongUse();
std::string exitInterrupted();
std::string helpOption();
std::string usageCommand();
std::string usageCommandHelp();
std::string usageMembers();
std::string version();

// Questions on the terminal.
std::string askHint();
/// Whether `answer` is a yes, or a no, in the language of the texts or in English; absent when it is neither.
std::optional<bool> yesOrNo(std::string_view answer);
/// The question whether the calendars may be read.
Platform::TerminalConsentTexts consent();

// The command line.
std::string unknownCommand(std::string_view path);
std::string missingSubcommand(std::string_view group, std::vector<std::string> const& members);
std::string unknownOption(std::string_view command, std::string_view option);
std::string missingOption(std::string_view command, std::string_view option);
std::string unknownChoice(std::string_view option, std::string_view value,
                          std::vector<std::string> const& choices);
std::string optionsExclude(std::string_view option, std::string_view other);
std::string missingValue(std::string_view command, std::string_view option, std::string_view value);
std::string repeatedOption(std::string_view option);
std::string unexpectedValue(std::string_view command, std::string_view option);
std::string missingArgument(std::string_view command, std::string_view argument);
std::string unexpectedArgument(std::string_view command, std::string_view argument);
std::string notANumber(std::string_view option, std::string_view value);
std::string notAMoment(std::string_view option, std::string_view value);
std::string notADay(std::string_view option, std::string_view value);
std::string noSuchDay(std::int64_t offset);
std::string unknownZone(std::string_view value);
std::string intervalIsBackwards();
std::string badScale(std::string_view value, double largest);
std::string oneOutputAtATime();
std::string sameOutput(std::string_view option, std::string_view other);
std::string blankTitle();

// Files and folders. Paths come as they may be shown.
std::string cannotResolvePath(std::string_view path, std::string_view reason);
std::string noSuchPath(std::string_view path);
std::string noSuchFolder(std::string_view path);
std::string notAFolder(std::string_view path);
std::string unreadableFolder(std::string_view path, std::string_view reason);
std::string unreadableFile(std::string_view path, std::string_view reason);
std::string outputIsAFolder(std::string_view path);
std::string cannotWrite(std::string_view path, std::string_view reason);
std::string unwritableFile(std::string_view path, std::string_view reason);
std::string changedElsewhere();
std::string settingNotSaved(std::string_view reason);
std::string neitherFileNorFolder(std::string_view path);
std::string cannotWriteOutput(std::string_view reason);
std::string cannotWriteWhatIsDone(std::string_view reason, std::string_view whatWasDone);
std::string unreadableInput(std::string_view reason);
std::string inputIsTooLarge(std::size_t mostMebibytes);
std::string cannotEncodeJSON();
std::string noHome();
/// A program that belongs to this one cannot be started.
std::string partIsMissing(std::string_view path, std::string_view reason);
std::string unexpectedFailure(std::string_view reason);

// Access.
std::string accessStatus(Platform::EKAuthorizationStatus status);
std::string storeRefuses();
std::string folderIsRefused(std::string_view path, std::string_view wordToOpen);
std::string folderIsRefusedByOther(std::string_view path, std::string_view closed);
std::string accessIsMissing();
std::string accessNotGranted();
std::string accessNotAnswered();
std::string accessHasNobodyToAsk();
std::string accessRecordHoldsNoAnswer(std::string_view path);
std::string accessRecordIsUnreadable(std::string_view path, std::string_view reason);
std::string calendarsAreNotSetUp();
std::string enabledCalendarsAreUnreadable(std::string_view path, std::string_view reason);

// Sources and calendars.
std::string problemOf(std::string_view path, std::string_view problem);
std::string noSources();
std::string sourceIsKnown(std::string_view path, std::string_view title);
std::string sourceIsOwnCalendar(std::string_view path);
std::string sourcesAreNested(std::string_view inner, std::string_view outer, std::string_view id);
std::string sourceAdded(std::string_view title, std::string_view path, std::string_view id);
std::string sourceRemoved(std::string_view title, std::string_view path);
std::string calendarsRefreshed(std::int64_t filesRead);
std::string calendarsNotWhollyRefreshed();
std::string unknownSource(std::string_view name);
std::string folderHoldsNoCalendars(std::string_view path);
std::string noCalendars();
std::string hiddenMark();
std::string accountWithoutCalendars();
std::string unknownCalendar(std::string_view identifier);
std::string calendarHidden(std::string_view title);
std::string calendarShown(std::string_view title);
std::string hiddenCalendarsNotSaved(std::string_view why);
std::string moreProblems(std::size_t count);

// The day.
std::string dayShown(std::string_view weekday, std::string_view date, std::int64_t offset,
                     std::int64_t furthest);
std::string dayNotSaved(std::string_view why);
std::string storedDayIsOutOfRange(std::int64_t offset);

} // namespace Companion::Texts
