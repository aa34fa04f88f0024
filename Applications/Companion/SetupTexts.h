#pragma once

#include <string>

/// What the set-up says in its special cases.
namespace Companion::Texts {

/// The registrations are there, and their key is in a keyring that cannot be used.
std::string notSwitchedOnWithoutTheKey();

/// A line for who ended the program at a question.
std::string interruptedAtAQuestion();

} // namespace Companion::Texts
