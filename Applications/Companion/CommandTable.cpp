#include "Applications/Companion/CommandTable.h"

#include "Applications/Companion/Commands.h"
#include "Applications/Companion/ExplainCommand.h"
#include "Applications/Companion/WholeDay.h"

namespace Companion {

Commands commandTable() {
    static std::vector<Command> const table = {
        setupCommand(),
        dayCommand(showWholeDay),
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
    return findCommand(path, commandTable());
}

std::vector<Command const*> commandsBelow(std::string_view path) {
    return commandsBelow(path, commandTable());
}

} // namespace Companion
