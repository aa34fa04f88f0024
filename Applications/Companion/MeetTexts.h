#pragma once

#include "Platform/EventStore/EKRecurrenceRule.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What the commands on meets say. Titles and names come as the calendar has them and are made harmless here.
namespace Companion::Texts {

// How often.
std::string listed(std::vector<std::string> const& words); ///< "a, b and c"
std::string everyPeriod(Platform::EKRecurrenceFrequency frequency, std::int64_t interval);
std::string weekdayOfPeriod(std::string_view weekday, std::int64_t weekNumber); ///< "the second Monday"
std::string dayOfMonth(std::int64_t number); ///< Counted back when negative.
std::string onDays(std::string_view rhythm, std::string_view days);
std::string timesInAll(std::string_view rhythm, std::int64_t count);
std::string untilDay(std::string_view rhythm, std::string_view day);

// One meet.
std::string dayLabel();
std::string calendarLabel();
std::string repeatsLabel();
std::string linkLabel();
std::string identifierLabel();
std::string doesNotRepeat();
std::string changedOccurrence(); ///< One that was changed by itself.

// Which meet.
std::string noMeetsOn(std::string_view day);
std::string notAnIdentifier(std::string_view value);
std::string noSuchMeet(std::string_view beginning, std::string_view day);
std::string severalMeets(std::string_view beginning, std::size_t count, std::string_view day);

// What was typed of a meet.
std::string notATime(std::string_view option, std::string_view value);
std::string needsATime(std::string_view option);
std::string endsBeyondTheYears();
std::string needsADay(std::string_view option);
std::string needsAStart();
std::string notADuration(std::string_view value);
std::string wholeDaysHaveNoDuration();
std::string notAWeekday(std::string_view value);
std::string weekdaysNeedWeekly();
std::string needsRepeat(std::string_view option);
std::string notACount(std::string_view value);
std::string untilLiesBefore();
std::string notALink(std::string_view value);
std::string nothingToChange();
std::string repetitionNeedsFuture();
std::string movedTooFar();
std::string seriesMovesAlone();
std::string inThatCalendarAlready(std::string_view name);

// What is about to happen. `when` and the values of a field are as MeetWords tells them.
std::string titleLabel();
std::string whenLabel();
std::string descriptionLabel();
std::string placeLabel();
std::string calendarNamed(std::string_view title, std::string_view identifier);
std::string shortened(std::string_view value); ///< On one line, and an empty one as a word.
std::string changesMeet(std::string_view name, std::string_view when);
std::string changesOccurrence(std::string_view name, std::string_view when);
std::string changesFuture(std::string_view name, std::string_view when);
std::string movesSeries(std::string_view name);
std::string changesLaterOnes();
std::string deletesMeet(std::string_view name, std::string_view when, std::string_view calendar);
std::string deletesOccurrence(std::string_view name, std::string_view when, std::string_view calendar);
std::string deletesFuture(std::string_view name, std::string_view when, std::string_view calendar);
std::string deletesSeries(std::string_view name, std::string_view when, std::string_view calendar);
std::string goAhead();
std::string nobodyAgreed();
std::string questionNotAnswered();
std::string nothingWasChanged();

// What has happened, or has not.
std::string meetAdded(std::string_view name, std::string_view when, std::string_view calendar,
                      std::string_view id);
std::string meetNotAdded();
std::string meetChanged(std::string_view name, std::string_view when, std::string_view id);
std::string meetIsSoAlready(std::string_view name);
std::string meetNotChanged(std::string_view name);
std::string meetDeleted(std::string_view name);
std::string meetNotDeleted(std::string_view name);

} // namespace Companion::Texts
