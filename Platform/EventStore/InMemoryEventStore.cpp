#include "Platform/EventStore/InMemoryEventStore.h"

#include <algorithm>
#include <ranges>
#include <utility>

namespace Platform {

namespace {

bool isSameItem(EKEvent const& left, EKEvent const& right) {
    if (left.eventIdentifier || right.eventIdentifier) return left.eventIdentifier == right.eventIdentifier;
    return left.calendarItemIdentifier && left.calendarItemIdentifier == right.calendarItemIdentifier;
}

bool isSameOccurrence(EKEvent const& left, EKEvent const& right) {
    return isSameItem(left, right) && left.occurrenceKey == right.occurrenceKey;
}

bool startsNoEarlier(EKEvent const& event, EKEvent const& than) {
    return event.startDate && than.startDate && *event.startDate >= *than.startDate;
}

bool hasImpossibleWeekday(EKEvent const& event) {
    return std::ranges::any_of(event.recurrenceRules, [](EKRecurrenceRule const& rule) {
        return std::ranges::any_of(rule.daysOfTheWeek, [](EKRecurrenceDayOfWeek const& day) {
            return day.dayOfTheWeek < 1 || day.dayOfTheWeek > 7;
        });
    });
}

// A later occurrence takes over everything but its own day: it starts as much later than before as the
// edited one does, and lasts as long.
EKEvent followingOccurrence(EKEvent const& old, EKEvent const& editedBefore, EKEvent const& edited) {
    auto following = edited;
    auto const shift = edited.startDate->timeIntervalSince(*editedBefore.startDate);
    auto const length = edited.endDate->timeIntervalSince(*edited.startDate);
    following.startDate = old.startDate->addingTimeInterval(shift);
    following.endDate = following.startDate->addingTimeInterval(length);
    following.occurrenceKey = old.occurrenceKey;
    return following;
}

} // namespace

InMemoryEventStore::InMemoryEventStore(std::vector<EKSource> sources, std::vector<EKEvent> events)
    : givenSources(std::move(sources)),
      storedEvents(std::move(events)) {}

std::vector<EKSource> InMemoryEventStore::sources() {
    std::scoped_lock const lock(mutex);
    return givenSources;
}

std::vector<EKCalendar> InMemoryEventStore::calendarsForEntityType(EKEntityType type) {
    std::scoped_lock const lock(mutex);
    std::vector<EKCalendar> calendars;
    if (type != EKEntityType::event) return calendars;
    for (auto const& source : givenSources) {
        calendars.insert(calendars.end(), source.calendars.begin(), source.calendars.end());
    }
    return calendars;
}

std::optional<EKCalendar> InMemoryEventStore::calendarWithIdentifier(std::string_view identifier) {
    std::scoped_lock const lock(mutex);
    return findCalendar(identifier);
}

std::optional<EKCalendar> InMemoryEventStore::defaultCalendarForNewEvents() {
    std::scoped_lock const lock(mutex);
    if (!defaultCalendar) return std::nullopt;
    return findCalendar(*defaultCalendar);
}

std::vector<EKEvent> InMemoryEventStore::eventsMatching(EKEventPredicate const& predicate) {
    std::scoped_lock const lock(mutex);
    queryHistory.push_back(predicate);
    std::vector<EKEvent> matching;
    std::ranges::copy_if(storedEvents, std::back_inserter(matching), [&](EKEvent const& event) {
        return event.calendar && predicate.covers(event.calendar->calendarIdentifier) && event.startDate &&
               predicate.overlaps(*event.startDate, event.endDate.value_or(*event.startDate));
    });
    return matching;
}

std::optional<EKEvent> InMemoryEventStore::eventWithIdentifier(std::string_view identifier) {
    std::scoped_lock const lock(mutex);
    std::optional<EKEvent> earliest;
    for (auto const& event : storedEvents) {
        if (event.eventIdentifier != identifier) continue;
        if (!earliest || !startsNoEarlier(event, *earliest)) earliest = event;
    }
    return earliest;
}

void InMemoryEventStore::save(EKEvent& event, EKSpan span) {
    std::scoped_lock const lock(mutex);
    saveHistory.push_back({.event = event, .span = span});
    throwIfRefusing();
    if (!event.calendar) throw EKError("The event has no calendar; it was not saved.");
    if (!findCalendar(event.calendar->calendarIdentifier)) {
        throw EKError("The calendar \"" + event.calendar->title +
                      "\" is no longer there; the event was not saved.");
    }
    if (!event.startDate || !event.endDate)
        throw EKError("The event has no start or no end; it was not saved.");
    if (*event.endDate < *event.startDate)
        throw EKError("The event ends before it starts; it was not saved.");
    if (hasImpossibleWeekday(event)) {
        throw EKError("The event repeats on a weekday outside 1…7; it was not saved.");
    }

    auto const found = std::ranges::find_if(
        storedEvents, [&](EKEvent const& stored) { return isSameOccurrence(stored, event); });
    if (found == storedEvents.end()) {
        if (event.eventIdentifier) throw EKError("The event is no longer in the store; it was not saved.");
        auto const number = std::to_string(++identifiersMade);
        event.eventIdentifier = event.calendar->calendarIdentifier + ":new-" + number;
        event.calendarItemIdentifier = "new-" + number;
        storedEvents.push_back(event);
        return;
    }
    if (found->calendar && found->calendar->calendarIdentifier != event.calendar->calendarIdentifier)
        return move(*found, event, span);
    if (!event.occurrenceKey) {
        *found = event;
        return;
    }
    if (span == EKSpan::thisEvent) {
        // A changed occurrence carries no rules; the series keeps its own.
        event.recurrenceRules.clear();
        *found = event;
        return;
    }
    auto const before = *found;
    auto const seriesIdentifier = event.eventIdentifier;
    if (!isFirst(before)) {
        event.eventIdentifier =
            event.calendar->calendarIdentifier + ":new-" + std::to_string(++identifiersMade);
    }
    for (auto& stored : storedEvents) {
        if (stored.eventIdentifier != seriesIdentifier || !startsNoEarlier(stored, before)) continue;
        stored = followingOccurrence(stored, before, event);
    }
}

// Whether nothing of the series starts earlier.
bool InMemoryEventStore::isFirst(EKEvent const& occurrence) const {
    return std::ranges::none_of(storedEvents, [&](EKEvent const& stored) {
        return stored.eventIdentifier == occurrence.eventIdentifier && !startsNoEarlier(stored, occurrence);
    });
}

void InMemoryEventStore::move(EKEvent const& known, EKEvent& event, EKSpan span) {
    bool const isWhole = !event.occurrenceKey || (span == EKSpan::futureEvents && isFirst(known));
    if (!isWhole)
        throw EKError("A series can only be moved to another calendar as a whole; it was not saved.");
    auto const before = known;
    event.eventIdentifier =
        event.calendar->calendarIdentifier + ":" + before.calendarItemIdentifier.value_or("");
    for (auto& stored : storedEvents) {
        if (isSameItem(stored, before)) stored = followingOccurrence(stored, before, event);
    }
}

void InMemoryEventStore::remove(EKEvent const& event, EKSpan span) {
    std::scoped_lock const lock(mutex);
    removalHistory.push_back({.event = event, .span = span});
    throwIfRefusing();
    bool const isThere = std::ranges::any_of(
        storedEvents, [&](EKEvent const& stored) { return isSameOccurrence(stored, event); });
    if (!isThere) throw EKError("The event is no longer in the store; nothing was removed.");
    std::erase_if(storedEvents, [&](EKEvent const& stored) {
        if (span == EKSpan::thisEvent || !event.occurrenceKey) return isSameOccurrence(stored, event);
        return isSameItem(stored, event) && startsNoEarlier(stored, event);
    });
}

EKEvent InMemoryEventStore::makeEvent() {
    return {};
}

EKAuthorizationStatus InMemoryEventStore::authorizationStatus() {
    std::scoped_lock const lock(mutex);
    return status;
}

Foundation::Task<bool> InMemoryEventStore::requestFullAccessToEvents() {
    co_return answerAccessRequest();
}

bool InMemoryEventStore::answerAccessRequest() {
    std::scoped_lock const lock(mutex);
    ++accessRequestCount;
    switch (accessAnswer) {
    case AccessAnswer::granted: status = EKAuthorizationStatus::fullAccess; return true;
    case AccessAnswer::notGranted: status = EKAuthorizationStatus::denied; return false;
    case AccessAnswer::unavailable: return false;
    case AccessAnswer::failing: break;
    }
    throw EKError("The access request failed.");
}

void InMemoryEventStore::addSource(EKSource source) {
    std::scoped_lock const lock(mutex);
    givenSources.push_back(std::move(source));
}

void InMemoryEventStore::addEvent(EKEvent event) {
    std::scoped_lock const lock(mutex);
    storedEvents.push_back(std::move(event));
}

void InMemoryEventStore::setDefaultCalendar(std::optional<std::string> identifier) {
    std::scoped_lock const lock(mutex);
    defaultCalendar = std::move(identifier);
}

void InMemoryEventStore::setAuthorizationStatus(EKAuthorizationStatus next) {
    std::scoped_lock const lock(mutex);
    status = next;
}

void InMemoryEventStore::setAccessAnswer(AccessAnswer answer) {
    std::scoped_lock const lock(mutex);
    accessAnswer = answer;
}

void InMemoryEventStore::refuseChanges(std::string message, std::int64_t succeedingCalls) {
    std::scoped_lock const lock(mutex);
    refusal = std::move(message);
    changesBeforeRefusal = succeedingCalls;
}

std::vector<EKEventPredicate> InMemoryEventStore::queries() const {
    std::scoped_lock const lock(mutex);
    return queryHistory;
}

std::vector<SpannedEvent> InMemoryEventStore::saves() const {
    std::scoped_lock const lock(mutex);
    return saveHistory;
}

std::vector<SpannedEvent> InMemoryEventStore::removals() const {
    std::scoped_lock const lock(mutex);
    return removalHistory;
}

std::int64_t InMemoryEventStore::accessRequests() const {
    std::scoped_lock const lock(mutex);
    return accessRequestCount;
}

std::vector<EKEvent> InMemoryEventStore::events() const {
    std::scoped_lock const lock(mutex);
    return storedEvents;
}

std::optional<EKCalendar> InMemoryEventStore::findCalendar(std::string_view identifier) const {
    for (auto const& source : givenSources) {
        auto const found = std::ranges::find(source.calendars, identifier, &EKCalendar::calendarIdentifier);
        if (found != source.calendars.end()) return *found;
    }
    return std::nullopt;
}

void InMemoryEventStore::throwIfRefusing() {
    if (!refusal) return;
    if (changesBeforeRefusal == 0) throw EKError(*refusal);
    --changesBeforeRefusal;
}

} // namespace Platform
