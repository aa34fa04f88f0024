#pragma once

#include "Foundation/Date.h"
#include "Foundation/Task.h"
#include "Platform/EventStore/EKEvent.h"
#include "Platform/EventStore/EKSource.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

/// What a calendar may hold. The store here has events only.
enum class EKEntityType : std::int64_t { event = 0, reminder = 1 };

/// The user's consent. Other values are possible in a record of a newer version.
enum class EKAuthorizationStatus : std::int64_t {
    notDetermined = 0,
    restricted = 1,
    denied = 2,
    fullAccess = 3,
    writeOnly = 4,
};

/// Events that overlap [start, end) in some calendars.
struct EKEventPredicate {
    Foundation::Date start;
    Foundation::Date end;
    /// Identifiers of the calendars to look in; absent means all, empty means none.
    std::optional<std::vector<std::string>> calendars;

    /// Whether an event of these bounds lies in the interval: it starts before the interval's end and ends
    /// after the interval's start; one without length starts in the interval, whose end is exclusive.
    [[nodiscard]] bool overlaps(Foundation::Date eventStart, Foundation::Date eventEnd) const {
        if (!(eventStart < end)) return false;
        return eventEnd > start || (eventEnd == eventStart && eventStart >= start);
    }

    /// Whether that calendar is looked in.
    [[nodiscard]] bool covers(std::string_view calendarIdentifier) const {
        return !calendars || std::ranges::find(*calendars, calendarIdentifier) != calendars->end();
    }
};

/// A store's refusal, with a text that a person understands.
class EKError final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The user's calendars. May be used from any thread.
class EKEventStore {
public:
    virtual ~EKEventStore() = default;

    /// All accounts, in the store's order.
    virtual std::vector<EKSource> sources() = 0;

    /// All calendars that may hold such entries, of every account, in the store's order.
    virtual std::vector<EKCalendar> calendarsForEntityType(EKEntityType type) = 0;

    /// Absent when the store has no calendar of that identifier.
    virtual std::optional<EKCalendar> calendarWithIdentifier(std::string_view identifier) = 0;

    /// The calendar that takes new events; absent when none can be written to.
    virtual std::optional<EKCalendar> defaultCalendarForNewEvents() = 0;

    /// Events with start < predicate.end and end > predicate.start, and zero-length ones with
    /// predicate.start ≤ start < predicate.end; occurrences expanded. Each has a start, an end, a calendar
    /// and an event identifier. Their order is the store's own.
    virtual std::vector<EKEvent> eventsMatching(EKEventPredicate const& predicate) = 0;

    /// The event, or the first occurrence of the series; absent when the store has none of that identifier.
    virtual std::optional<EKEvent> eventWithIdentifier(std::string_view identifier) = 0;

    /// Stores `event` and fills in what the store assigns (identifiers). One whose `calendar` is not that of
    /// its identifier moves there and is found by another identifier from then on; a series does so as a
    /// whole, with `futureEvents` from its first occurrence. Throws EKError.
    virtual void save(EKEvent& event, EKSpan span) = 0;

    /// Deletes the event, or as much of its series as `span` says. Throws EKError.
    virtual void remove(EKEvent const& event, EKSpan span) = 0;

    /// A new, unsaved event of this store.
    virtual EKEvent makeEvent() = 0;

    /// What the user has decided so far. Asks nobody.
    virtual EKAuthorizationStatus authorizationStatus() = 0;

    /// Asks the user and yields whether access was granted. Throws EKError when the request itself fails.
    virtual Foundation::Task<bool> requestFullAccessToEvents() = 0;
};

} // namespace Platform
