#pragma once

#include "Platform/EventStore/EKEventStore.h"

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

/// What an InMemoryEventStore answers when access is asked for.
enum class AccessAnswer : std::uint8_t {
    granted,     ///< Yields true; the status is full access from then on.
    notGranted,  ///< Yields false; the status is denied from then on.
    unavailable, ///< Yields false; the status stays.
    failing,     ///< Throws EKError("The access request failed."); the status stays.
};

/// An event with the span that it was saved or removed with.
struct SpannedEvent {
    EKEvent event;
    EKSpan span;
};

/// A store of given sources and events, which keeps a history of what was asked of it. Access is granted
/// unless a test says otherwise.
///
/// It expands no rules: the occurrences of a series are given one by one, each with the series' event
/// identifier and an occurrence key of its own. Events come back in the order given, new ones last.
class InMemoryEventStore final : public EKEventStore {
public:
    InMemoryEventStore() = default;
    explicit InMemoryEventStore(std::vector<EKSource> sources, std::vector<EKEvent> events = {});

    std::vector<EKSource> sources() override;
    std::vector<EKCalendar> calendarsForEntityType(EKEntityType type) override;
    std::optional<EKCalendar> calendarWithIdentifier(std::string_view identifier) override;
    std::optional<EKCalendar> defaultCalendarForNewEvents() override;
    std::vector<EKEvent> eventsMatching(EKEventPredicate const& predicate) override;
    std::optional<EKEvent> eventWithIdentifier(std::string_view identifier) override;
    void save(EKEvent& event, EKSpan span) override;
    void remove(EKEvent const& event, EKSpan span) override;
    EKEvent makeEvent() override;
    EKAuthorizationStatus authorizationStatus() override;
    Foundation::Task<bool> requestFullAccessToEvents() override;

    void addSource(EKSource source);
    void addEvent(EKEvent event);
    /// The calendar of that identifier becomes the default; absent means that there is none.
    void setDefaultCalendar(std::optional<std::string> identifier);
    void setAuthorizationStatus(EKAuthorizationStatus status);
    void setAccessAnswer(AccessAnswer answer);
    /// From now on `save` and `remove` throw EKError(message), after `succeedingCalls` more of them worked.
    void refuseChanges(std::string message, std::int64_t succeedingCalls = 0);

    /// The queries that were run, oldest first.
    [[nodiscard]] std::vector<EKEventPredicate> queries() const;
    /// What `save` was given, oldest first, refused ones included.
    [[nodiscard]] std::vector<SpannedEvent> saves() const;
    /// What `remove` was given, oldest first, refused ones included.
    [[nodiscard]] std::vector<SpannedEvent> removals() const;
    /// How often access was asked for.
    [[nodiscard]] std::int64_t accessRequests() const;
    /// All events as they stand.
    [[nodiscard]] std::vector<EKEvent> events() const;

private:
    [[nodiscard]] std::optional<EKCalendar> findCalendar(std::string_view identifier) const;
    [[nodiscard]] bool isFirst(EKEvent const& occurrence) const;
    void move(EKEvent const& known, EKEvent& event, EKSpan span);
    void throwIfRefusing();
    bool answerAccessRequest();

    mutable std::mutex mutex;
    std::vector<EKSource> givenSources;
    std::vector<EKEvent> storedEvents;
    std::optional<std::string> defaultCalendar;
    EKAuthorizationStatus status = EKAuthorizationStatus::fullAccess;
    AccessAnswer accessAnswer = AccessAnswer::granted;
    std::optional<std::string> refusal;
    std::int64_t changesBeforeRefusal = 0;
    std::vector<EKEventPredicate> queryHistory;
    std::vector<SpannedEvent> saveHistory;
    std::vector<SpannedEvent> removalHistory;
    std::int64_t accessRequestCount = 0;
    std::int64_t identifiersMade = 0;
};

} // namespace Platform
