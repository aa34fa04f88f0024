#pragma once

#include "Applications/Companion/CommandLine.h"
#include "Applications/Companion/Console.h"
#include "Foundation/Environment.h"

#include <functional>

namespace Companion {

/// What a program of the companion does around what it is for: sees to it that a reader who goes away and a
/// full disk are errors to report, speaks the person's language, and turns what `body` throws into one line
/// on standard error. Yields what the process ends with.
int runProgram(std::function<ExitCode(Console const&, Foundation::Environment const&)> const& body);

/// Runs a command.
ExitCode runCommand(CommandToRun const& command, Console const& console,
                    Foundation::Environment const& environment);

} // namespace Companion
