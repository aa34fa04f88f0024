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

    /// Unique among the accounts, and the same at every reading.
    [[nodiscard]] virtual std::string sourceIdentifier() const = 0;

    /// The account's name, as a person gave it; may be empty.
    [[nodiscard]] virtual std::string title() const = 0;

    /// Where the account lives.
    [[nodiscard]] virtual Platform::EKSourceType sourceType() const = 0;

    /// Its calendars that hold events, in the store's order.
    [[nodiscard]] virtual std::vector<Platform::EKCalendar> eventCalendars() const = 0;
};

} // namespace Meetings
