#include "Applications/Alarms/Alarm.h"

#include <algorithm>
#include <tuple>

namespace Alarms {

bool ringsBefore(Alarm const& left, Alarm const& right) {
    return std::tie(left.at, left.meet.metName, left.identifier) <
           std::tie(right.at, right.meet.metName, right.identifier);
}

std::vector<Alarm> alarmsOf(std::vector<Meetings::MeetEntity> const& meets,
                            std::set<std::string> const& calendarIdentifiers) {
    std::vector<Alarm> alarms;
    std::set<std::string> known;
    for (auto const& meet : meets) {
        if (meet.metIsAllDay || !calendarIdentifiers.contains(meet.metCalendarIdentifier)) continue;
        auto identifier = meet.metId.uuidString();
        if (!known.insert(identifier).second) continue;
        alarms.push_back({.identifier = std::move(identifier), .meet = meet, .at = meet.metDate});
    }
    std::ranges::sort(alarms, ringsBefore);
    return alarms;
}

} // namespace Alarms
