#pragma once

#include "Platform/EventStore/EKEventStore.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace Platform {

/// Another store whose operations throw EKError(message) once `succeedingCalls` of them have worked. Only
/// the authorisation status and the access request always reach the store behind, so that a failure comes
/// from the operation under test.
class FailingEventStore final : public EKEventStore {
public:
    FailingEventStore(std::shared_ptr<EKEventStore> behind, std::string message,
                      std::int64_t succeedingCalls = 0)
        : behind(std::move(behind)),
          message(std::move(message)),
          callsLeft(succeedingCalls) {}

    std::vector<EKSource> sources() override { return working().sources(); }
    std::vector<EKCalendar> calendarsForEntityType(EKEntityType type) override {
        return working().calendarsForEntityType(type);
    }
    std::optional<EKCalendar> calendarWithIdentifier(std::string_view identifier) override {
        return working().calendarWithIdentifier(identifier);
    }
    std::optional<EKCalendar> defaultCalendarForNewEvents() override {
        return working().defaultCalendarForNewEvents();
    }
    std::vector<EKEvent> eventsMatching(EKEventPredicate const& predicate) override {
        return working().eventsMatching(predicate);
    }
    std::optional<EKEvent> eventWithIdentifier(std::string_view identifier) override {
        return working().eventWithIdentifier(identifier);
    }
    void save(EKEvent& event, EKSpan span) override { working().save(event, span); }
    void remove(EKEvent const& event, EKSpan span) override { working().remove(event, span); }
    EKEvent makeEvent() override { return working().makeEvent(); }
    EKAuthorizationStatus authorizationStatus() override { return behind->authorizationStatus(); }
    Foundation::Task<bool> requestFullAccessToEvents() override {
        return behind->requestFullAccessToEvents();
    }

private:
    EKEventStore& working() {
        if (callsLeft.fetch_sub(1) <= 0) throw EKError(message);
        return *behind;
    }

    std::shared_ptr<EKEventStore> behind;
    std::string message;
    std::atomic<std::int64_t> callsLeft;
};

} // namespace Platform
