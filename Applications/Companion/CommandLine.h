#pragma once

#include "Applications/Companion/Command.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Companion {

/// The values of one command line, as typed.
class ArgumentValues {
public:
    ArgumentValues(std::map<std::string, std::string, std::less<>> options,
                   std::vector<std::string> arguments);

    /// The value of an option, empty for a switch; absent when it was not given.
    [[nodiscard]] std::optional<std::string> option(std::string_view name) const;

    /// Whether the option or switch was given.
    [[nodiscard]] bool has(std::string_view name) const;

    /// What stood outside options, in order. As many as the command's table asks for.
    [[nodiscard]] std::vector<std::string> const& arguments() const { return positional; }

private:
    std::map<std::string, std::string, std::less<>> options;
    std::vector<std::string> positional;
};

/// A command to run, with its values.
struct CommandToRun {
    Command const* command;
    ArgumentValues values;
};

/// A request for help on a command or group; nullptr stands for the whole program.
struct HelpRequest {
    Command const* command;
};

struct VersionRequest {};

using CommandLine = std::variant<CommandToRun, HelpRequest, VersionRequest>;

/// Reads a command line, the program's own name left out, as one of `commands`. Throws CommandError with
/// ExitCode::wrongUse and one line that names what was not understood and where to look.
CommandLine parseCommandLine(std::vector<std::string> const& words, Commands commands);

} // namespace Companion
