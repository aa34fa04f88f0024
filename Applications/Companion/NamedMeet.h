#pragma once

#include "Applications/Companion/Invocation.h"
#include "Applications/Companion/MeetWords.h"
#include "Applications/Companion/ShownDay.h"
#include "Applications/Composition/LiveServices.h"
#include "Meetings/EventKit/EventKitStoring.h"
#include "Meetings/MeetEntity.h"
#include "Platform/EventStore/EKEvent.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// How a meet is named on the command line: by the beginning of its `metId`, on the shown day.
namespace Companion {

struct MeetsOfDay {
    Foundation::Date date; ///< Lies on the day.
    std::vector<Meetings::MeetEntity> meetings;
};

/// The meets of that day, as the widget would have them, earliest first; on its outermost days also those
/// that it leaves out. Throws CommandError with ExitCode::failed, and what helps, where the calendars are not
/// switched on or may not be read.
MeetsOfDay meetsOfDay(Composition::LiveServices& services, DayChoice const& choice);

/// For each meet the shortest beginning of its `metId`, eight digits at least, that no other of them has.
std::vector<std::string> identifierBeginnings(std::vector<Meetings::MeetEntity> const& meetings);

/// The one meet whose `metId` begins so, in either letter case, with or without hyphens. Throws CommandError:
/// ExitCode::wrongUse for what begins no identifier, or those of several meets, which are listed on standard
/// error; ExitCode::failed, with the text of `eventNotFound` as the last line, when there is none.
Meetings::MeetEntity meetCalled(std::string_view beginning, MeetsOfDay const& day,
                                Invocation const& invocation, MeetWords const& words);

/// The calendar store's own record of a meet; absent when it is gone.
std::optional<Platform::EKEvent> eventBehind(Meetings::MeetEntity const& meet,
                                             Meetings::EventKitStoring& store,
                                             Foundation::Calendar const& calendar);

/// In the person's zone and language.
MeetWords meetWords(Composition::LiveServices& services);

/// One line a meet: how to name it, its time, its title and its calendar. Harmless.
std::string meetList(std::vector<Meetings::MeetEntity> const& meetings, MeetWords const& words);

} // namespace Companion
