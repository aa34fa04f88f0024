#pragma once

#include "Meetings/EventKitCalendarInfoEntity.h"

#include <string>
#include <vector>

namespace Meetings {

/// One account of the calendar store with its calendars, in the store's order.
struct EventKitAccountCalendarsEntity {
    std::string eacId;
    std::string eacAccountTitle;
    std::string eacAccountType; ///< The text of `EventKitSourceTypeEnum::description`.
    std::vector<EventKitCalendarInfoEntity> eacCalendars;

    [[nodiscard]] std::string const& id() const { return eacId; }

    bool operator==(EventKitAccountCalendarsEntity const&) const = default;
};

} // namespace Meetings
