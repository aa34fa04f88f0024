#pragma once

#include "Applications/Companion/CommandError.h"
#include "Applications/Companion/TableText.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Companion {

struct Invocation;

/// What a value stands for, so that a shell can complete it and a reader knows what to type.
enum class ValueKind : std::uint8_t { text, number, day, moment, zone, file, folder, path, calendar, source };

/// One option of a command. Without `valueName` it is a switch.
struct CommandOption {
    std::string name; ///< "--family"
    std::string valueName = {};
    TableText help;
    ValueKind kind = ValueKind::text;
    std::vector<std::string> choices = {}; ///< The only values it takes; empty when it is open.
    bool isRequired = false;
    std::vector<std::string> excludes = {}; ///< Options that make no sense beside it.
};

/// What stands after a command's name without an option's name.
struct CommandArgument {
    enum class Count : std::uint8_t { atMostOne, one, oneOrMore };
    std::string name; ///< "FILE"
    TableText help;
    ValueKind kind = ValueKind::text;
    Count count = Count::one;
    std::vector<std::string> choices = {}; ///< The only values it takes; empty when it is open.
};

/// A command line worth showing, with what it does.
struct CommandExample {
    std::string commandLine;
    TableText meaning;
};

/// What runs a command.
using CommandRun = ExitCode (*)(Invocation const& invocation);

/// One command, or a group of commands when it runs nothing itself. Help, manual pages and completions are
/// all made from these records, so that they cannot disagree with what the program accepts.
struct Command {
    std::string path;      ///< "sources add"
    TableText summary;     ///< One line without a full stop.
    TableText description; ///< Whole sentences; blank lines part paragraphs.
    std::vector<CommandOption> options = {};
    std::vector<CommandArgument> arguments = {};
    std::vector<CommandExample> examples = {};
    CommandRun run = nullptr;
};

/// Commands in the order in which help lists them, each group before its members.
using Commands = std::span<Command const>;

/// The command of exactly that path; nullptr when there is none.
Command const* findCommand(std::string_view path, Commands commands);

/// The commands and groups directly below `path`; those at the top for an empty one.
std::vector<Command const*> commandsBelow(std::string_view path, Commands commands);

} // namespace Companion
