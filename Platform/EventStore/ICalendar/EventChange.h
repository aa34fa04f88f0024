#pragma once

#include "Platform/EventStore/ICalendar/RuleText.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Platform::ICalendar {

/// When an event is. Of an all-day one the seconds count from 1970-01-01 00:00 on its own calendar, whole
/// days; of a timed one they are UTC.
struct EventTimes {
    bool isAllDay;
    std::int64_t start;
    std::int64_t end; ///< Exclusive; not before `start`, and a day later at least when all-day.

    friend bool operator==(EventTimes const&, EventTimes const&) = default;
};

/// The text that a property gets; without one the property goes.
struct TextChange {
    std::optional<std::string> text;
};

/// One rule of an event, as it is to be written.
struct RuleChange {
    RuleText rule;
    std::optional<std::int64_t> until; ///< UTC seconds; becomes its UNTIL, in the form of the event's start.
};

/// What of an event becomes other than it stands. What is absent here stays as it is.
struct EventChange {
    std::optional<TextChange> title = std::nullopt;
    std::optional<TextChange> notes = std::nullopt;
    std::optional<TextChange> location = std::nullopt;
    std::optional<TextChange> url = std::nullopt;
    std::optional<EventTimes> times = std::nullopt;
    std::optional<std::vector<RuleChange>> rules = std::nullopt;
    /// Whether the rules name days of the viewer's calendar, which the event's own clock may count otherwise.
    bool rulesNameViewersDays = false;

    [[nodiscard]] bool changesWhen() const { return times || rules; }
    [[nodiscard]] bool isEmpty() const { return !title && !notes && !location && !url && !changesWhen(); }
};

} // namespace Platform::ICalendar
