#pragma once

#include "Applications/Companion/CommandTable.h"

#include <string>

namespace Companion {

/// The help text of a command or group, or of the whole program for nullptr. Ends with a line feed and
/// keeps within 80 columns.
std::string helpText(Command const* command);

/// How a command is written: "quillora sources add DIR [--title TITLE]".
std::string synopsis(Command const& command);

} // namespace Companion
