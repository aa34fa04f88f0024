#pragma once

#include "Foundation/Calendar.h"
#include "Foundation/UUID.h"
#include "Meetings/EventKit/EventKitSourceRepresentable.h"
#include "Meetings/EventKitAccountCalendarsEntity.h"
#include "Meetings/MeetEntity.h"
#include "Platform/Appearance/Appearance.h"
#include "Platform/EventStore/EKEvent.h"
#include "Platform/Resources/TextProvider.h"

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

/// Between the calendar store's records and the package's values. An event without a start, an end or a
/// calendar is a defect of the store and a fatal error.
namespace Meetings::EventKitMeetMapper {

/// How an event repeats, in this package's terms.
struct RecurrenceInfo {
    MeetRecurrenceFrequency frequency;
    std::set<std::int64_t> weekdays; ///< 1 = Sunday … 7 = Saturday; empty unless weekly.

    bool operator==(RecurrenceInfo const&) const = default;
};

/// The event identifier, or the calendar item identifier when there is none. An empty one is there.
std::string identifier(Platform::EKEvent const& event);

/// One identifier for each occurrence, the same at every fetch.
Foundation::UUID stableId(Platform::EKEvent const& event);

/// From the event's first rule alone; a yearly one counts as `none`.
RecurrenceInfo recurrenceInfo(Platform::EKEvent const& event);

/// An untitled event gets the text of "eventkit-meet-untitled".
MeetEntity toMeetEntity(Platform::EKEvent const& event, MeetRecurrenceFrequency frequency,
                        std::set<std::int64_t> recurringWeekdays, Platform::TextProvider const& texts,
                        Platform::Appearance const& appearance);

/// Adds one rule of interval 1 without an end, or nothing for `none`; rules that the event has stay. Weekly
/// without weekdays, and monthly, take the day of the event's start in `calendar`. Weekdays are not checked.
void applyRecurrence(MeetRecurrenceFrequency frequency, std::set<std::int64_t> const& weekdays,
                     Platform::EKEvent& event, Foundation::Calendar const& calendar);

/// In the given order; an account without calendars appears with an empty list.
std::vector<EventKitAccountCalendarsEntity>
buildAccountCalendars(std::vector<std::shared_ptr<EventKitSourceRepresentable const>> const& sources,
                      Platform::Appearance const& appearance);

} // namespace Meetings::EventKitMeetMapper
