#pragma once

#include "Foundation/Date.h"
#include "Meetings/MeetEntity.h"

#include <set>
#include <string>
#include <vector>

namespace Alarms {

/// One meet that is to be announced.
struct Alarm {
    /// That of the meet, which tells its start, too: a meet that is moved has another alarm.
    std::string identifier;
    Meetings::MeetEntity meet;
    Foundation::Date at; ///< The meet's start, or when a snooze ends.

    bool operator==(Alarm const&) const = default;
};

/// The order in which alarms ring: by their times, those of one time by their names.
bool ringsBefore(Alarm const& left, Alarm const& right);

/// The alarms of those meets that lie in these calendars, in the order in which they ring, each once. Meets
/// that last whole days have none: they begin at midnight.
std::vector<Alarm> alarmsOf(std::vector<Meetings::MeetEntity> const& meets,
                            std::set<std::string> const& calendarIdentifiers);

} // namespace Alarms
