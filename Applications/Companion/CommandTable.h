#pragma once

#include "Applications/Companion/Command.h"

#include <string_view>
#include <vector>

namespace Companion {

/// All commands of the program.
Commands commandTable();

/// The same questions as of any commands, asked of all.
Command const* findCommand(std::string_view path);
std::vector<Command const*> commandsBelow(std::string_view path);

} // namespace Companion
