#pragma once

#include "Applications/Companion/Command.h"

/// The commands that the table lists, each defined in a file of its own topic.
namespace Companion {

Command setupCommand();

Command accessGroup();
Command accessStatusCommand();
Command accessRequestCommand();
Command accessGrantCommand();
Command accessDenyCommand();
Command accessResetCommand();

/// What runs it is `showDay`, or `showWholeDay` where all is linked that a day can be shown with.
Command dayCommand(CommandRun run);
Command nextCommand();
Command previousCommand();
Command todayCommand();

Command meetGroup();
Command meetShowCommand();
Command meetAddCommand();
Command meetEditCommand();
Command meetDeleteCommand();

Command calendarsGroup();
Command calendarsListCommand();
Command calendarsHideCommand();
Command calendarsShowCommand();

Command sourcesGroup();
Command sourcesListCommand();
Command sourcesAddCommand();
Command sourcesRemoveCommand();
Command sourcesRefreshCommand();

Command providersGroup();
Command providersListCommand();
Command providersAddCommand();
Command providersEditCommand();
Command providersEnableCommand();
Command providersDisableCommand();
Command providersRemoveCommand();

Command alarmGroup();
Command alarmModeCommand();
Command alarmVoiceCommand();
Command alarmTemplateCommand();
Command alarmCalendarsGroup();
Command alarmCalendarsListCommand();
Command alarmCalendarsAddCommand();
Command alarmCalendarsRemoveCommand();
Command alarmPreviewCommand();

Command backendGroup();
Command backendLoginCommand();
Command backendLogoutCommand();
Command backendListCommand();
Command backendAddCommand();
Command backendEditCommand();
Command backendDeleteCommand();
Command backendLogGroup();
Command backendLogOnCommand();
Command backendLogOffCommand();
Command backendLogShowCommand();

Command occurrencesCommand();
Command htmlLineCommand();

Command doctorCommand();

} // namespace Companion
