#pragma once

#include <string>
#include <string_view>

/// Where a person or a script hands a token over: never as an argument, which every user of the computer
/// could see.
namespace Companion {

/// The first line of the open descriptor of that number. Throws CommandError with ExitCode::wrongUse when it
/// is none, is not open or cannot be read, and for what is no token: nothing, a control character, or more
/// than 64 KiB.
std::string tokenFromDescriptor(std::string_view number);

/// Asks on the terminal, which does not show what is typed. Throws as above, also where there is no terminal;
/// with ExitCode::interrupted on Ctrl-C.
std::string tokenFromTerminal(std::string_view question);

} // namespace Companion
