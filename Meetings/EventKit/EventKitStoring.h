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

    virtual std::vector<Platform::EKCalendar> calendarsForEntityType(Platform::EKEntityType type) = 0;

    virtual std::optional<Platform::EKCalendar> calendarWithIdentifier(std::string_view identifier) = 0;

    virtual std::optional<Platform::EKCalendar> defaultCalendarForNewEvents() = 0;

    /// A query for the events that overlap the interval. Absent calendars mean all, an empty list none.
    virtual Platform::EKEventPredicate
    predicateForEvents(Foundation::Date start, Foundation::Date end,
                       std::optional<std::vector<Platform::EKCalendar>> const& calendars) = 0;

    /// Runs the query; occurrences of repeating events come expanded.
    virtual std::vector<Platform::EKEvent> eventsMatching(Platform::EKEventPredicate const& predicate) = 0;

    virtual std::optional<Platform::EKEvent> eventWithIdentifier(std::string_view identifier) = 0;

    /// Fills in what the store assigns. Throws when the store refuses.
    virtual void save(Platform::EKEvent& event, Platform::EKSpan span) = 0;

    /// Throws when the store refuses.
    virtual void remove(Platform::EKEvent const& event, Platform::EKSpan span) = 0;

    /// A new, unsaved event of this store.
    virtual Platform::EKEvent makeEvent() = 0;

    virtual Platform::EKAuthorizationStatus authorizationStatus() = 0;

    /// Asks the user and yields whether access was granted. Throws when the request itself fails.
    virtual Foundation::Task<bool> requestFullAccessToEvents() = 0;
};

} // namespace Meetings
