#pragma once

#include "Applications/Companion/CommandTable.h"

#include <string>
#include <string_view>
#include <vector>

/// What the completions of all shells have in common.
namespace Manual {

/// `text` as one word of a POSIX shell, in single quotes.
std::string shellQuoted(std::string_view text);

/// The last word of a command's path.
std::string lastWord(std::string_view path);

/// How completions name what a value stands for: "file", "folder", "calendar", ...; "none" for what cannot be
/// completed.
std::string_view kindName(Companion::ValueKind kind);

/// The paths that begin a command line, groups included, the program's own "" first.
std::vector<std::string> pathsOfGroups();

/// The only values that something takes, with a blank between them; they hold none themselves.
std::string choiceWords(std::vector<std::string> const& choices);

/// A path as a part of a name: "meet show" as "meet_show".
std::string nameOf(std::string_view path);

} // namespace Manual
