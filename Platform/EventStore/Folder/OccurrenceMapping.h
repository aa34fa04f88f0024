#pragma once

#include "Foundation/TimeZone.h"
#include "Platform/EventStore/EKEvent.h"
#include "Platform/EventStore/ICalendar/Occurrence.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace Platform {

/// The identifier of an event: its calendar's, ":" and its UID.
std::string eventIdentifier(std::string_view calendarIdentifier, std::string_view uid);

/// The bytes of title, notes and location that a record holds at most; a longer text ends there, between two
/// characters.
inline constexpr std::size_t longestEventText = 64 * 1024;

/// The record of one occurrence. An override carries no rules: it is a single event of its own. An UNTIL that
/// is not in UTC is read on `viewer`'s clock.
EKEvent eventOfOccurrence(ICalendar::Occurrence const& occurrence, std::shared_ptr<EKCalendar const> calendar,
                          Foundation::TimeZone const& viewer);

/// The bytes of the texts that the record holds.
std::int64_t textBytes(EKEvent const& event);

} // namespace Platform
