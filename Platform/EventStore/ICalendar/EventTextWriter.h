#pragma once

#include "Platform/EventStore/ICalendar/ComponentText.h"
#include "Platform/EventStore/ICalendar/EventChange.h"
#include "Platform/EventStore/ICalendar/WritingClock.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The properties of a VEVENT, as they are written.
namespace Platform::ICalendar {

/// An empty VEVENT of that UID, made at `now`, UTC seconds.
ComponentText newEvent(std::string_view uid, std::int64_t now, std::string_view lineBreak);

/// Writes title, notes, location and link, as far as they change.
void writeTexts(ComponentText& event, EventChange const& change);

/// Gives a property of one time another one. Its other parameters stay.
void writeTime(ComponentText& event, std::string_view name, WrittenTime const& time);

/// On which clocks an event's start and end are written, and how long it lasted before.
struct TimesWriting {
    WritingClock start;
    WritingClock end;
    std::optional<std::int64_t> lengthBefore; ///< Seconds; a DURATION of the same length stays as written.
    bool isRecurring;                         ///< Then the start must stay on its clock.
};

/// Writes start and end. The end stays in its form: a DURATION, a DTEND, or none where none is needed.
void writeTimes(ComponentText& event, EventTimes const& times, TimesWriting const& writing);

/// Makes the event's RRULEs these. One that is there already is not touched. An end is written in the form
/// that a start of `startForm` asks for; days and floating times are the viewer's.
void writeRules(ComponentText& event, std::vector<RuleChange> const& rules, TimeForm startForm,
                EventZone const& viewer);

/// Whether a revision changes when something happens: then SEQUENCE grows (RFC 5545 §3.8.7.4).
enum class Revision : std::uint8_t { ofTexts, ofTimes };

/// Says in the event that it was changed at `now`, UTC seconds.
void stamp(ComponentText& event, Revision revision, std::int64_t now);

/// A whole VEVENT of a new event on the viewer's clock. `content` says everything about it.
std::string newEventText(std::string_view uid, EventChange const& content, Foundation::TimeZone const& viewer,
                         std::int64_t now, std::string_view lineBreak);

/// Makes a copy an event of its own, as if written now: another UID, from the first version on.
void makeNew(ComponentText& event, std::string_view uid, std::int64_t now);

} // namespace Platform::ICalendar
