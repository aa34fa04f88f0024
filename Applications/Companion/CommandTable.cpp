#include "Applications/Companion/CommandTable.h"

#include "Applications/Companion/Commands.h"
#include "Applications/Companion/ExplainCommand.h"

#include <algorithm>

namespace Companion {

std::span<Command const> commandTable() {
    static std::vector<Command> const table = {
        setupCommand(),
        dayCommand(),
        nextCommand(),
        previousCommand(),
        todayCommand(),
        explainCommand(),
        meetGroup(),
        meetShowCommand(),
        meetAddCommand(),
        meetEditCommand(),
        meetDeleteCommand(),
        calendarsGroup(),
        calendarsListCommand(),
        calendarsHideCommand(),
        calendarsShowCommand(),
        sourcesGroup(),
        sourcesListCommand(),
        sourcesAddCommand(),
        sourcesRemoveCommand(),
        sourcesRefreshCommand(),
        accessGroup(),
        accessStatusCommand(),
        accessRequestCommand(),
        accessGrantCommand(),
        accessDenyCommand(),
        accessResetCommand(),
        providersGroup(),
        providersListCommand(),
        providersAddCommand(),
        providersEditCommand(),
        providersEnableCommand(),
        providersDisableCommand(),
        providersRemoveCommand(),
        alarmGroup(),
        alarmModeCommand(),
        alarmVoiceCommand(),
        alarmTemplateCommand(),
        alarmCalendarsGroup(),
        alarmCalendarsListCommand(),
        alarmCalendarsAddCommand(),
        alarmCalendarsRemoveCommand(),
        alarmPreviewCommand(),
        doctorCommand(),
        backendGroup(),
        backendLoginCommand(),
        backendLogoutCommand(),
        backendListCommand(),
        backendAddCommand(),
        backendEditCommand(),
        backendDeleteCommand(),
        backendLogGroup(),
        backendLogOnCommand(),
        backendLogOffCommand(),
        backendLogShowCommand(),
        occurrencesCommand(),
        htmlLineCommand(),
    };
    return table;
}

Command const* findCommand(std::string_view path) {
    auto const table = commandTable();
    auto const found = std::ranges::find(table, path, &Command::path);
    return found == table.end() ? nullptr : &*found;
}

std::vector<Command const*> commandsBelow(std::string_view path) {
    std::vector<Command const*> members;
    for (auto const& command : commandTable()) {
        auto const blank = command.path.rfind(' ');
        auto const parent = blank == std::string::npos ? "" : command.path.substr(0, blank);
        if (parent == path) members.push_back(&command);
    }
    return members;
}

} // namespace Companion
