#include "Applications/Front/QuickCommands.h"

#include "Applications/Companion/Commands.h"
#include "Applications/Companion/DayRequest.h"
#include "Applications/Companion/PrintedDay.h"

#include <utility>
#include <variant>

namespace Front {

using Companion::CommandToRun;

Companion::Commands quickCommands() {
    static std::vector<Companion::Command> const commands = {
        Companion::dayCommand(Companion::showDay),
        Companion::nextCommand(),
        Companion::previousCommand(),
        Companion::todayCommand(),
        Companion::sourcesGroup(),
        Companion::sourcesRefreshCommand(),
    };
    return commands;
}

std::optional<CommandToRun> quickCommand(std::vector<std::string> const& words) {
    if (words.empty() || Companion::findCommand(words.front(), quickCommands()) == nullptr)
        return std::nullopt;
    try {
        auto line = Companion::parseCommandLine(words, quickCommands());
        auto* command = std::get_if<CommandToRun>(&line);
        if (command == nullptr || Companion::needsWholeDay(command->values)) return std::nullopt;
        return std::move(*command);
    } catch (Companion::CommandError const&) {
        return std::nullopt; // The whole companion says what is wrong, in the same words.
    }
}

} // namespace Front
