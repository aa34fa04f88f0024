#pragma once

#include "Foundation/Date.h"
#include "Foundation/Task.h"
#include "Meetings/EventKit/EventKitSourceRepresentable.h"
#include "Platform/EventStore/EKEventStore.h"

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace Meetings {

/// What this package asks of the calendar store.
class EventKitStoring {
public:
    virtual ~EventKitStoring() = default;

    /// All accounts.
    virtual std::vector<std::shared_ptr<EventKitSourceRepresentable const>> sources() = 0;

    /// All calendars that may hold such entries, of every account, in the store's order.
    virtual std::vector<Platform::EKCalendar> calendarsForEntityType(Platform::EKEntityType type) = 0;

    /// Absent when the store has no calendar of that identifier.
    virtual std::optional<Platform::EKCalendar> calendarWithIdentifier(std::string_view identifier) = 0;

    /// The calendar that takes new events; absent when none can be written to.
    virtual std::optional<Platform::EKCalendar> defaultCalendarForNewEvents() = 0;

    /// A query for the events that overlap the interval. Absent calendars mean all, an empty list none.
    virtual Platform::EKEventPredicate
    predicateForEvents(Foundation::Date start, Foundation::Date end,
                       std::optional<std::vector<Platform::EKCalendar>> const& calendars) = 0;

    /// Runs the query; occurrences of repeating events come expanded.
    virtual std::vector<Platform::EKEvent> eventsMatching(Platform::EKEventPredicate const& predicate) = 0;

    /// The event, or the first occurrence of the series; absent when there is none of that identifier.
    virtual std::optional<Platform::EKEvent> eventWithIdentifier(std::string_view identifier) = 0;

    /// Stores `event` and fills in what the store assigns. Throws when the store refuses.
    virtual void save(Platform::EKEvent& event, Platform::EKSpan span) = 0;

    /// Deletes the event, or as much of its series as `span` says. Throws when the store refuses.
    virtual void remove(Platform::EKEvent const& event, Platform::EKSpan span) = 0;

    /// A new, unsaved event of this store.
    virtual Platform::EKEvent makeEvent() = 0;

    /// What the user has decided so far. Asks nobody.
    virtual Platform::EKAuthorizationStatus authorizationStatus() = 0;

    /// Asks the user and yields whether access was granted. Throws when the request itself fails.
    virtual Foundation::Task<bool> requestFullAccessToEvents() = 0;
};

} // namespace Meetings
