#pragma once

#include "Platform/EventStore/EKEventStore.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What the program says in its own words, in one place; what commands and options mean stands in the command
/// table. Errors tell what failed, with the value that matters, and what the person can do. None ends with a
/// line feed.
namespace Companion::Texts {

// Help.
inline constexpr std::string_view programDescription = "Quillora shows your day on the desktop. This program "
                                                       "sets it up and does from a terminal or a script what "
                                                       "the widget does with its buttons.";
inline constexpr std::string_view firstSteps =
    "To begin: \"quillora setup\", then \"quillora sources add DIR\" for a folder of calendars, then "
    "\"quillora day\". Each command explains itself with --help.";
inline constexpr std::string_view usageHeading = "Usage:";
inline constexpr std::string_view commandsHeading = "Commands:";
inline constexpr std::string_view argumentsHeading = "Arguments:";
inline constexpr std::string_view optionsHeading = "Options:";
inline constexpr std::string_view examplesHeading = "Examples:";
inline constexpr std::string_view exitCodesHeading = "Exit codes:";
inline constexpr std::string_view exitDone = "done";
inline constexpr std::string_view exitFailed = "it failed; standard error says why";
inline constexpr std::string_view exitWrongUse =
    "wrong use: an unknown option, family, date, folder and the like; nothing was changed";
inline constexpr std::string_view helpOption = "print this help";
std::string version();

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
std::string badOptions(std::string_view command, std::string_view reason);
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
std::string cannotWriteOutput(std::string_view reason);
std::string unreadableInput(std::string_view reason);
std::string inputIsTooLarge(std::size_t mostMebibytes);
std::string cannotEncodeJSON();
std::string noHome();
std::string unexpectedFailure(std::string_view reason);

// Access.
std::string accessStatus(Platform::EKAuthorizationStatus status);
std::string accessIsMissing();
std::string accessNotGranted();
std::string calendarsAreNotSetUp();
std::string nobodyWasAsked();

// Set-up.
std::string ownCalendarMade(std::string_view path);
std::string ownCalendarIsThere(std::string_view path);
std::string accountEnabled();
std::string accountsNotSaved();
std::string keychainChosen(bool isFile);
std::string thisComputersCalendars();
std::string offerFolder(std::string_view path);
std::string folderIsAdded(std::string_view path);
std::string folderLeftOut(std::string_view path);
std::string setupIsDone();

// Sources and calendars.
std::string problemOf(std::string_view path, std::string_view problem);
std::string noSources();
std::string sourceIsKnown(std::string_view path, std::string_view title);
std::string sourceAdded(std::string_view title, std::string_view path, std::string_view id);
std::string sourceRemoved(std::string_view title, std::string_view path);
std::string unknownSource(std::string_view name);
std::string folderHoldsNoCalendars(std::string_view path);
std::string noCalendars();
std::string hiddenMark();
std::string unknownCalendar(std::string_view identifier);
std::string calendarHidden(std::string_view title);
std::string calendarShown(std::string_view title);
std::string hiddenCalendarsNotSaved();
std::string moreProblems(std::size_t count);

// Providers.
std::string noProviders();
std::string providerState(bool isEnabled);
std::string providersNotRead();
std::string providerNotRegistered(std::string_view id);
std::string providerRegistered(std::string_view name, std::string_view email, std::string_view id);
std::string nothingToEdit();
std::string providerNotChanged(std::string_view id);
std::string providerChanged(std::string_view name, std::string_view email);
std::string providerSwitched(std::string_view name, bool isEnabled);
std::string providerNotRemoved(std::string_view id);
std::string providerRemoved(std::string_view name);
std::string providerIsGone(std::string_view id);
std::string mirrorNotSaved();

// The day.
std::string dayShown(std::string_view weekday, std::string_view date, std::int64_t offset,
                     std::int64_t furthest);
std::string dayNotSaved();
std::string storedDayIsOutOfRange(std::int64_t offset);

} // namespace Companion::Texts
