#pragma once

#include "Applications/Companion/CommandLine.h"

#include <optional>
#include <string>
#include <vector>

/// The program that people start as `quillora`. It answers itself what needs no large library, and becomes
/// the whole companion for everything else.
namespace Front {

/// The commands that it has itself: records of the companion's own table.
Companion::Commands quickCommands();

/// The command that these words name, where it is one of those and asked for something quick. Absent for all
/// that is the whole companion's: other commands, help, and words that make no sense.
std::optional<Companion::CommandToRun> quickCommand(std::vector<std::string> const& words);

} // namespace Front
