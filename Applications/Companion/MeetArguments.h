#pragma once

#include "Applications/Companion/CommandLine.h"
#include "Foundation/Calendar.h"
#include "Foundation/URL.h"
#include "Meetings/MeetEntity.h"
#include "Platform/EventStore/EKEvent.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

/// What the options of `meet add` and `meet edit` say of a meet.
namespace Companion {

/// A time of day, on a day yet to be known.
struct ClockTime {
    std::int32_t hour;
    std::int32_t minute;
};

/// "09:30", "2026-03-11" or a moment such as "2026-03-11T09:30".
using TypedTime = std::variant<ClockTime, std::chrono::local_days, Foundation::Date>;

/// How a meet is to repeat.
struct TypedRepetition {
    std::optional<Platform::EKRecurrenceFrequency> frequency; ///< Absent: not at all.
    std::set<std::int64_t> weekdays; ///< 1 = Sunday … 7 = Saturday, unchecked as everywhere above the store.
    std::optional<std::int64_t> count;
    std::optional<std::chrono::local_days> lastDay;

    /// Whether a meet's own fields can say it.
    [[nodiscard]] bool fitsAMeet() const;
};

/// The options as typed; an absent one was not given. An empty text empties what it stands for.
struct MeetArguments {
    std::optional<std::string> name;
    std::optional<std::string> description;
    std::optional<std::string> location;
    std::optional<std::string> link;
    bool isAllDay;
    std::optional<TypedTime> start;
    std::optional<TypedTime> end;
    std::optional<std::int64_t> minutes;
    std::optional<TypedRepetition> repetition;

    /// Whether anything is to be written that a meet's own use cases leave alone.
    [[nodiscard]] bool goesBeyondAMeet() const;
    [[nodiscard]] bool isEmpty() const;

    /// Whether it is said how long the meet lasts, or when it ends.
    [[nodiscard]] bool givesALength() const { return end || minutes; }
};

/// Reads the options that the command has. Throws CommandError with ExitCode::wrongUse.
MeetArguments meetArguments(ArgumentValues const& values, Foundation::Calendar const& calendar);

/// The options that `meet add` and `meet edit` share.
std::vector<CommandOption> meetFieldOptions();

struct MeetTimes {
    Foundation::Date start;
    Foundation::Date end; ///< Exclusive; not after the start when it was typed so.
};

/// The times of a new meet; clocks are those of `day`. A meet of a time lasts an hour unless said, one of
/// whole days a day. Throws CommandError with ExitCode::wrongUse for times that are missing or of the wrong
/// kind.
MeetTimes newTimes(MeetArguments const& arguments, std::chrono::local_days day,
                   Foundation::Calendar const& calendar);

/// The times of a meet that is changed: what is not given stays, and with a new start alone its length does.
/// Throws as above, also for times outside the years 1 to 9999.
MeetTimes changedTimes(MeetArguments const& arguments, Meetings::MeetEntity const& meet,
                       Foundation::Calendar const& calendar);

/// Throws CommandError with ExitCode::wrongUse for a repetition whose last day lies before a meet of that
/// start.
void checkLastDay(MeetArguments const& arguments, Foundation::Date start,
                  Foundation::Calendar const& calendar);

/// Puts fields and repetition into an event, those that were given. Not its times.
void writeFields(MeetArguments const& arguments, Platform::EKEvent& event,
                 Foundation::Calendar const& calendar);

/// The same for what a meet's use cases write.
void writeFields(MeetArguments const& arguments, Meetings::MeetEntity& meet);

} // namespace Companion
