#pragma once

#include <string>
#include <string_view>
#include <vector>

/// What the set-up says.
namespace Companion::Texts {

std::string ownCalendarMade(std::string_view path);
std::string ownCalendarIsThere(std::string_view path);
std::string keychainChosen(bool isFile);
std::string offerKeyFile(std::string_view reason);
std::string notSwitchedOn(bool isForWantOfAKeyring);
std::string offerEnabling(std::string_view name);
std::string calendarsRefuse();
std::string notRegisteredWithoutAccess();
std::string setupChangedNothing();
std::string thisComputersCalendars();
std::string offerFolder(std::string_view path);
std::string folderIsAdded(std::string_view path);
std::string folderLeftOut(std::string_view path);
std::string nestedFolderLeftOut(std::string_view path, std::string_view title, std::string_view otherPath);
std::string setupIsDone();
std::string nobodyAnsweredSetup();
std::string setupHasNobodyToAsk();

/// The registrations are there, and their key is in a keyring that cannot be used.
std::string notSwitchedOnWithoutTheKey();

/// A line for who ended the program at a question.
std::string interruptedAtAQuestion();

// The same for who ended it elsewhere.
std::string interrupted();
/// `done` are the parts of the set-up that are done, as below.
std::string interruptedInTheSetup(std::vector<std::string> const& done);
std::string setUpOwnCalendar();
std::string setUpAccess();
std::string setUpRegistration();
std::string interruptedBeforeRegistrations();
std::string interruptedInRegistrations();
std::string interruptedKeepingAToken();
std::string interruptedRemovingAToken();

// What a line tells that is waited for.
std::string keyringToWaitFor();
std::string registrationsToWaitFor();

} // namespace Companion::Texts
