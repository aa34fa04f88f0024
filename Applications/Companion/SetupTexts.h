#pragma once

#include <string>
#include <vector>

/// What the set-up says in its special cases.
namespace Companion::Texts {

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
