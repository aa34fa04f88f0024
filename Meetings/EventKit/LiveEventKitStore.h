#pragma once

#include "Meetings/EventKit/EventKitStoring.h"

#include <memory>

namespace Meetings {

/// The calendar store itself: each operation is the store's operation of the same name. A value; copies share
/// the store.
class LiveEventKitStore final : public EventKitStoring {
public:
    explicit LiveEventKitStore(std::shared_ptr<Platform::EKEventStore> store);

    std::vector<std::shared_ptr<EventKitSourceRepresentable const>> sources() override;
    std::vector<Platform::EKCalendar> calendarsForEntityType(Platform::EKEntityType type) override;
    std::optional<Platform::EKCalendar> calendarWithIdentifier(std::string_view identifier) override;
    std::optional<Platform::EKCalendar> defaultCalendarForNewEvents() override;
    Platform::EKEventPredicate
    predicateForEvents(Foundation::Date start, Foundation::Date end,
                       std::optional<std::vector<Platform::EKCalendar>> const& calendars) override;
    std::vector<Platform::EKEvent> eventsMatching(Platform::EKEventPredicate const& predicate) override;
    std::optional<Platform::EKEvent> eventWithIdentifier(std::string_view identifier) override;
    void save(Platform::EKEvent& event, Platform::EKSpan span) override;
    void remove(Platform::EKEvent const& event, Platform::EKSpan span) override;
    Platform::EKEvent makeEvent() override;
    Platform::EKAuthorizationStatus authorizationStatus() override;
    Foundation::Task<bool> requestFullAccessToEvents() override;

private:
    std::shared_ptr<Platform::EKEventStore> store;
};

} // namespace Meetings
