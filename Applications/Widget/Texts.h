#pragma once

#include "Platform/Desktop/ConsentDialog.h"
#include "Platform/Desktop/DetailDialog.h"
#include "Platform/Desktop/FaceWindow.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The program's own texts, from the tables in Resources/; those of the face come from the extension's.
namespace Widget::Texts {

/// Speaks these languages from now on, best first. English until then. Once, before other threads are
/// started.
void useLanguages(std::vector<std::string> const& languages);

/// Whole pages, each ending with a line feed.
std::string help();
std::string version();

// Errors, one line each without its end.
std::string noDisplay();
std::string placementsExclude();
std::string missingValue(std::string_view option);
std::string unexpectedValue(std::string_view option);
std::string repeatedOption(std::string_view option);
std::string unknownWord(std::string_view word);
std::string unknownFamily(std::string_view name);
std::string unknownScheme(std::string_view name);
std::string unreadableMoment(std::string_view text);

// Notices beside the face. `since` is the day and time when all calendars were
// last read.
std::string notRead(std::string_view path, std::string_view cause);
std::string notReadSince(std::string_view since, std::string_view path, std::string_view cause);
std::string storedDayIsOutOfRange(std::int64_t storedDay);
std::string dayNotSaved(std::string_view path, std::string_view cause);

// For the log: what was remembered of size and place.
std::string stateNotRead(std::string_view path, std::string_view cause);
std::string stateNotTaken(std::string_view path);
std::string stateNotSaved(std::string_view path, std::string_view cause);

// What is told of a meet. Names and hosts come harmless.
std::string ofCalendar(std::string_view name);
std::string openLink(std::string_view host);
std::string linkNotOpened(std::string_view cause);

// What is told where the person's calendar program did not open; titles and lines.
std::string noCalendarProgram();
std::string noCalendarProgramFor(std::string_view contentType);
std::string chooseProgram(std::string_view contentType);
std::string calendarProgramNotOpened();

Platform::FaceWindowTexts window();
Platform::ConsentDialogTexts consent();
Platform::DetailDialogTexts meetDialog();

} // namespace Widget::Texts
