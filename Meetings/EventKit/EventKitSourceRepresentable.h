#pragma once

#include "Platform/EventStore/EKCalendar.h"
#include "Platform/EventStore/EKSource.h"

#include <string>
#include <vector>

namespace Meetings {

/// One account of the calendar store.
class EventKitSourceRepresentable {
public:
    virtual ~EventKitSourceRepresentable() = default;

    [[nodiscard]] virtual std::string sourceIdentifier() const = 0;
    [[nodiscard]] virtual std::string title() const = 0;
    [[nodiscard]] virtual Platform::EKSourceType sourceType() const = 0;

    /// Its calendars that hold events, in the store's order.
    [[nodiscard]] virtual std::vector<Platform::EKCalendar> eventCalendars() const = 0;
};

} // namespace Meetings
