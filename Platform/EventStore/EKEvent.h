#pragma once

#include "Foundation/Date.h"
#include "Foundation/URL.h"
#include "Platform/EventStore/EKCalendar.h"
#include "Platform/EventStore/EKRecurrenceRule.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Platform {

/// How far a save or a removal reaches.
enum class EKSpan : std::int64_t { thisEvent = 0, futureEvents = 1 };

/// An event, or one occurrence of a repeating event. A value: changes reach the store by `save`.
struct EKEvent {
    /// Calendar identifier, ":" and the UID of RFC 5545; one and the same for all occurrences of a series.
    std::optional<std::string> eventIdentifier = std::nullopt;
    std::optional<std::string> calendarItemIdentifier = std::nullopt;
    std::optional<std::string> title = std::nullopt;
    std::optional<Foundation::Date> startDate = std::nullopt;
    std::optional<Foundation::Date> endDate = std::nullopt; ///< Exclusive.
    bool isAllDay = false;
    std::optional<std::string> notes = std::nullopt;
    std::optional<std::string> location = std::nullopt;
    std::optional<Foundation::URL> url = std::nullopt;
    std::shared_ptr<EKCalendar const> calendar = nullptr;
    std::vector<EKRecurrenceRule> recurrenceRules = {};
    /// The key of the occurrence in its series: the start that the rule gave it, in the text form of its
    /// RECURRENCE-ID ("20260311T080000Z", "20260311" for an all-day series, local time without zone for a
    /// floating or zoned one). Survives a move of the occurrence. Absent for a single event.
    std::optional<std::string> occurrenceKey = std::nullopt;
    /// Where the event was read from, for people: the file's path and the line of its BEGIN:VEVENT.
    std::string sourceFile = {};
    std::int64_t sourceLine = 0;
};

} // namespace Platform
