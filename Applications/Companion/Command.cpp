#include "Applications/Companion/Command.h"

#include <algorithm>

namespace Companion {

Command const* findCommand(std::string_view path, Commands commands) {
    auto const found = std::ranges::find(commands, path, &Command::path);
    return found == commands.end() ? nullptr : &*found;
}

std::vector<Command const*> commandsBelow(std::string_view path, Commands commands) {
    std::vector<Command const*> members;
    for (auto const& command : commands) {
        auto const blank = command.path.rfind(' ');
        auto const parent = blank == std::string::npos ? "" : command.path.substr(0, blank);
        if (parent == path) members.push_back(&command);
    }
    return members;
}

} // namespace Companion
