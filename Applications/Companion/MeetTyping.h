#pragma once

#include "Applications/Companion/CommandLine.h"
#include "Foundation/Calendar.h"
#include "Meetings/MeetEntity.h"
#include "Meetings/Remote/EventResponseDTO.h"

#include <optional>
#include <string>
#include <vector>

/// A meet of the backend as the options of a command describe it.
namespace Companion {

enum class MeetAge : std::uint8_t { isNew, exists };

/// The options that describe a meet; a new one needs a name and a start.
std::vector<CommandOption> backendMeetOptions(MeetAge age);

/// Whether any of these options was given.
bool describesAMeet(ArgumentValues const& values);

/// The meet that the options describe: clocks are those of today, and it lasts an hour unless said. Throws
/// CommandError with ExitCode::wrongUse naming the option that makes no sense. Name and length are not
/// judged: the use cases do that.
Meetings::MeetEntity typedMeet(ArgumentValues const& values, Foundation::Date today,
                               Foundation::Calendar const& calendar);

/// `meet` with what the options say in place of what it holds; clocks are those of its day. Throws as above.
Meetings::MeetEntity changedMeet(ArgumentValues const& values, Meetings::MeetEntity meet,
                                 Foundation::Calendar const& calendar);

/// How an event repeats, as its service words it, where a meet cannot hold it whole.
std::optional<std::string> unknownRepetition(Meetings::EventResponseDTO const& event);

/// "weekly mon|wed"; empty for a meet that does not repeat.
std::string repetitionText(Meetings::MeetEntity const& meet);

} // namespace Companion
