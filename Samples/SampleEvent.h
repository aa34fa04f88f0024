#pragma once

#include "Foundation/TimeZone.h"
#include "Samples/ICalendarText.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace Samples {

/// One changed occurrence of a sample series.
struct SampleChange {
    LocalMinutes original; ///< The start that the rule gives it.
    LocalMinutes start;
    std::chrono::minutes length;
    std::string title;
    bool isCancelled = false;
};

/// An event as the generator thinks of it. All-day events start at midnight and last whole days.
struct SampleEvent {
    std::string uid;
    std::string title;
    LocalMinutes start;
    std::chrono::minutes length;
    bool isAllDay = false;
    std::optional<Foundation::TimeZone> zone = std::nullopt; ///< Of a timed event; absent for a floating one.
    std::string location = {};
    std::string description = {};
    std::string link = {};
    std::string category = {};
    std::string rule = {};                     ///< The value of RRULE.
    std::vector<LocalMinutes> exceptions = {}; ///< Occurrences taken out.
    std::vector<SampleChange> changes = {};
    std::vector<std::string> attendees = {}; ///< Their names.
    bool hasAlarm = false;
};

/// Whether a file of the event brings the definition of its time zone along.
enum class ZoneDefinition : bool { left, included };

/// The VEVENTs of the event, without a calendar around them. `created` is its DTSTAMP.
void appendEvent(ICalendarText& text, SampleEvent const& event, std::chrono::local_days created);

/// A whole file of the one event.
std::string fileOfEvent(SampleEvent const& event, std::chrono::local_days created, ZoneDefinition definition);

} // namespace Samples
