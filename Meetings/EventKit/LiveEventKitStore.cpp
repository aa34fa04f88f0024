#include "Meetings/EventKit/LiveEventKitStore.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

namespace Meetings {
namespace {

class LiveEventKitSource final : public EventKitSourceRepresentable {
public:
    explicit LiveEventKitSource(Platform::EKSource source) : source(std::move(source)) {}

    [[nodiscard]] std::string sourceIdentifier() const override { return source.sourceIdentifier; }
    [[nodiscard]] std::string title() const override { return source.title; }
    [[nodiscard]] Platform::EKSourceType sourceType() const override { return source.sourceType; }
    [[nodiscard]] std::vector<Platform::EKCalendar> eventCalendars() const override {
        return source.calendars;
    }

private:
    Platform::EKSource source;
};

} // namespace

LiveEventKitStore::LiveEventKitStore(std::shared_ptr<Platform::EKEventStore> store)
    : store(std::move(store)) {}

std::vector<std::shared_ptr<EventKitSourceRepresentable const>> LiveEventKitStore::sources() {
    std::vector<std::shared_ptr<EventKitSourceRepresentable const>> result;
    for (auto& source : store->sources()) {
        result.push_back(std::make_shared<LiveEventKitSource const>(std::move(source)));
    }
    return result;
}

std::vector<Platform::EKCalendar> LiveEventKitStore::calendarsForEntityType(Platform::EKEntityType type) {
    return store->calendarsForEntityType(type);
}

std::optional<Platform::EKCalendar> LiveEventKitStore::calendarWithIdentifier(std::string_view identifier) {
    return store->calendarWithIdentifier(identifier);
}

std::optional<Platform::EKCalendar> LiveEventKitStore::defaultCalendarForNewEvents() {
    return store->defaultCalendarForNewEvents();
}

Platform::EKEventPredicate
LiveEventKitStore::predicateForEvents(Foundation::Date start, Foundation::Date end,
                                      std::optional<std::vector<Platform::EKCalendar>> const& calendars) {
    std::optional<std::vector<std::string>> identifiers;
    if (calendars) {
        identifiers.emplace();
        std::ranges::transform(*calendars, std::back_inserter(*identifiers),
                               &Platform::EKCalendar::calendarIdentifier);
    }
    return {.start = start, .end = end, .calendars = std::move(identifiers)};
}

std::vector<Platform::EKEvent>
LiveEventKitStore::eventsMatching(Platform::EKEventPredicate const& predicate) {
    return store->eventsMatching(predicate);
}

std::optional<Platform::EKEvent> LiveEventKitStore::eventWithIdentifier(std::string_view identifier) {
    return store->eventWithIdentifier(identifier);
}

void LiveEventKitStore::save(Platform::EKEvent& event, Platform::EKSpan span) {
    store->save(event, span);
}

void LiveEventKitStore::remove(Platform::EKEvent const& event, Platform::EKSpan span) {
    store->remove(event, span);
}

Platform::EKEvent LiveEventKitStore::makeEvent() {
    return store->makeEvent();
}

Platform::EKAuthorizationStatus LiveEventKitStore::authorizationStatus() {
    return store->authorizationStatus();
}

Foundation::Task<bool> LiveEventKitStore::requestFullAccessToEvents() {
    return store->requestFullAccessToEvents();
}

} // namespace Meetings
