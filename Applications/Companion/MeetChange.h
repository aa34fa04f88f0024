#pragma once

#include "Applications/Companion/Invocation.h"
#include "Applications/Companion/MeetWords.h"
#include "Applications/Composition/LiveServices.h"
#include "Meetings/MeetEntity.h"
#include "Meetings/MeetingsApplication.h"
#include "Platform/EventStore/EKEvent.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

/// What the commands that change meets do alike.
namespace Companion {

/// The use cases over the person's calendar store; new meets go into that calendar, or the store's default.
Meetings::MeetingsApplication meetingsApplication(Composition::LiveServices& services,
                                                  std::optional<std::string> calendarIdentifier = {});

/// The store's event as the packages have it.
Meetings::MeetEntity meetOf(Platform::EKEvent const& event, Composition::LiveServices& services);

/// Runs a change. What the use cases or the store refuse becomes a CommandError with ExitCode::failed: what
/// was not done, and then their own message.
void changing(std::string const& whatWasNotDone, std::function<void()> const& change);

/// What the use cases look at before a change, for one that goes to the store past them: that the calendars
/// may be read, asking where nobody has decided, and that the meet is still there. Throws
/// EventKitMeetRepositoryError.
void requireReadiness(Meetings::MeetEntity const& meet, Composition::LiveServices& services);

/// Says what is going to happen and goes on only with a yes; with `--yes` at once. `plan` is harmless, whole
/// lines. Throws CommandError with ExitCode::failed after a no, and where nobody can be asked.
void confirm(Invocation const& invocation, std::string const& plan);

/// Tells every widget, and then the person: one line, or with `--json` the meet.
void finishChange(Invocation const& invocation, Composition::LiveServices& services,
                  Meetings::MeetEntity const& meet, std::string const& whatWasDone);

/// How far a change of a repeating meet reaches.
enum class ChangeReach : std::uint8_t {
    asTheUseCaseDoes,
    thisOccurrence, ///< --this
    fromThisOneOn   ///< --future
};

ChangeReach reachOf(ArgumentValues const& values);

/// --this, --future and --yes.
std::vector<CommandOption> changeOptions(TableText thisHelp, TableText futureHelp);

} // namespace Companion
