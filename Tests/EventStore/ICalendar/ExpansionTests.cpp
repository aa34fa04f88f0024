// One small calendar for each thing that was decided about repeating events.

#include "Tests/EventStore/ICalendar/CalendarFixtures.h"

#include "Foundation/DateFormatting.h"

#include <gtest/gtest.h>

namespace Platform::ICalendar {
namespace {

using Lines = std::vector<std::string>;

Lines inMarch(std::string const& sample, std::string_view viewer = "UTC") {
    return happenings(sampleSeries(sample), "2026-03-01T00:00:00Z", "2026-04-30T00:00:00Z", viewer);
}

Lines keysInMarch(std::string const& sample, std::string_view viewer = "UTC") {
    return keys(sampleSeries(sample), "2026-03-01T00:00:00Z", "2026-04-30T00:00:00Z", viewer);
}

TEST(ExpansionTests, aTimeInAGapMovesForwardOnThatDayOnlyAndCounts) {
    EXPECT_EQ(inMarch("time-in-a-gap.ics"), (Lines{"2026-03-27T01:30:00Z/2026-03-27T02:30:00Z Night shift",
                                                   "2026-03-28T01:30:00Z/2026-03-28T02:30:00Z Night shift",
                                                   "2026-03-29T01:30:00Z/2026-03-29T02:30:00Z Night shift",
                                                   "2026-03-30T00:30:00Z/2026-03-30T01:30:00Z Night shift"}));
}

TEST(ExpansionTests, theKeyOfATimeInAGapIsTheTimeThatTheRuleNames) {
    EXPECT_EQ(keysInMarch("time-in-a-gap.ics"),
              (Lines{"20260327T023000", "20260328T023000", "20260329T023000", "20260330T023000"}));
}

TEST(ExpansionTests, aRepeatedTimeIsItsFirstPass) {
    EXPECT_EQ(happenings(sampleSeries("time-repeated.ics"), "2026-10-01T00:00:00Z", "2026-11-30T00:00:00Z"),
              (Lines{"2026-10-24T00:30:00Z/2026-10-24T01:00:00Z Night shift",
                     "2026-10-25T00:30:00Z/2026-10-25T01:00:00Z Night shift",
                     "2026-10-26T01:30:00Z/2026-10-26T02:00:00Z Night shift"}));
}

TEST(ExpansionTests, aMissingEndIsNoLengthForATimeAndOneDayForADay) {
    EXPECT_EQ(inMarch("no-end.ics"),
              (Lines{"2026-03-11/2026-03-12 All day", "2026-03-11T08:00:00Z/2026-03-11T08:00:00Z Timed",
                     "2026-03-12/2026-03-13 Ends as it starts"}));
}

TEST(ExpansionTests, aCancelledEventIsHiddenWithAllItsOccurrences) {
    EXPECT_EQ(inMarch("cancelled-event.ics"), (Lines{"2026-03-03T08:00:00Z/2026-03-03T08:00:00Z Goes on"}));
}

TEST(ExpansionTests, anEndIsAnExactLength) {
    EXPECT_EQ(inMarch("end-is-exact.ics"), (Lines{"2026-03-28T21:00:00Z/2026-03-29T02:00:00Z Watch",
                                                  "2026-04-04T20:00:00Z/2026-04-05T01:00:00Z Watch"}));
}

TEST(ExpansionTests, theDaysOfADurationAreNominalAndItsHoursExact) {
    EXPECT_EQ(inMarch("duration-days-are-nominal.ics"),
              (Lines{"2026-03-28T11:00:00Z/2026-03-29T10:00:00Z One day",
                     "2026-03-28T11:00:00Z/2026-03-29T11:00:00Z Twenty-four hours",
                     "2026-03-28T11:00:00Z/2026-03-29T11:00:00Z A day and an hour"}));
}

TEST(ExpansionTests, thisAndFutureShiftsStartAndLengthOfAllThatFollow) {
    EXPECT_EQ(inMarch("this-and-future.ics"),
              (Lines{"2026-03-02T08:00:00Z/2026-03-02T09:00:00Z Class",
                     "2026-03-09T08:00:00Z/2026-03-09T09:00:00Z Class",
                     "2026-03-17T13:00:00Z/2026-03-17T15:00:00Z Class, afternoons",
                     "2026-03-24T13:00:00Z/2026-03-24T15:00:00Z Class, afternoons",
                     "2026-03-30T16:00:00Z/2026-03-30T17:00:00Z Class, guest",
                     "2026-04-07T12:00:00Z/2026-04-07T14:00:00Z Class, afternoons"}));
}

TEST(ExpansionTests, thisAndFutureKeepsTheOriginalKeys) {
    EXPECT_EQ(keysInMarch("this-and-future.ics"),
              (Lines{"20260302T090000", "20260309T090000", "20260316T090000", "20260323T090000",
                     "20260330T090000", "20260406T090000"}));
}

TEST(ExpansionTests, aShiftBringsAnOccurrenceIntoAWindowThatItsOriginalTimeMisses) {
    EXPECT_EQ(happenings(sampleSeries("this-and-future.ics"), "2026-03-24T00:00:00Z", "2026-03-25T00:00:00Z"),
              (Lines{"2026-03-24T13:00:00Z/2026-03-24T15:00:00Z Class, afternoons"}));
}

TEST(ExpansionTests, aCancelledThisAndFutureEndsTheSeries) {
    EXPECT_EQ(keysInMarch("this-and-future-cancelled.ics"), (Lines{"20260302T090000", "20260309T090000"}));
}

TEST(ExpansionTests, addedDatesHappenOnceAndPeriodsBringTheirLength) {
    EXPECT_EQ(inMarch("dates-added.ics"), (Lines{"2026-03-02T18:00:00Z/2026-03-02T19:00:00Z Rehearsal",
                                                 "2026-03-05T18:00:00Z/2026-03-05T19:00:00Z Rehearsal",
                                                 "2026-03-06T18:00:00Z/2026-03-06T21:00:00Z Rehearsal",
                                                 "2026-03-07T18:00:00Z/2026-03-07T18:30:00Z Rehearsal",
                                                 "2026-03-09T18:00:00Z/2026-03-09T19:00:00Z Rehearsal"}));
}

TEST(ExpansionTests, anOverrideMovedIntoTheWindowAppears) {
    EXPECT_EQ(inMarch("override-moved-into-the-window.ics"),
              (Lines{"2026-03-11T09:00:00Z/2026-03-11T10:00:00Z Review, late"}));
    EXPECT_EQ(keysInMarch("override-moved-into-the-window.ics"), (Lines{"20260101T090000Z"}));
}

TEST(ExpansionTests, anOverrideMovedOutOfTheWindowVanishes) {
    EXPECT_EQ(inMarch("override-moved-out-of-the-window.ics"), Lines{});
}

TEST(ExpansionTests, anOverrideWithoutItsSeriesOrItsOccurrenceIsShown) {
    EXPECT_EQ(inMarch("override-without-its-series.ics"),
              (Lines{"2026-03-01T09:00:00Z/2026-03-01T09:00:00Z Series",
                     "2026-03-02T09:00:00Z/2026-03-02T09:00:00Z Series",
                     "2026-03-11T08:30:00Z/2026-03-11T09:00:00Z Invited to one",
                     "2026-03-12T11:00:00Z/2026-03-12T11:00:00Z Beyond the rule"}));
}

TEST(ExpansionTests, anUntilThatIsADateIncludesItsDay) {
    EXPECT_EQ(inMarch("until-as-date.ics"),
              (Lines{"2026-03-09/2026-03-10 Days", "2026-03-09T20:00:00Z/2026-03-09T20:00:00Z Timed",
                     "2026-03-10/2026-03-11 Days", "2026-03-10T20:00:00Z/2026-03-10T20:00:00Z Timed",
                     "2026-03-11/2026-03-12 Days", "2026-03-11T20:00:00Z/2026-03-11T20:00:00Z Timed"}));
}

TEST(ExpansionTests, aFloatingUntilIsReadInTheZoneOfTheStart) {
    EXPECT_EQ(keysInMarch("until-floating.ics", "Asia/Tokyo"),
              (Lines{"20260309T210000", "20260310T210000", "20260311T210000"}));
}

TEST(ExpansionTests, aFloatingExceptionIsReadInTheZoneOfTheStart) {
    EXPECT_EQ(keysInMarch("exception-floating.ics", "Asia/Tokyo"),
              (Lines{"20260309T210000", "20260311T210000"}));
}

TEST(ExpansionTests, anExceptionThatIsADateRemovesTheTimeOfThatDay) {
    EXPECT_EQ(keysInMarch("exception-as-date.ics"), (Lines{"20260309T090000", "20260311T090000"}));
}

TEST(ExpansionTests, anExceptionInAnotherZoneRemovesTheSameInstant) {
    EXPECT_EQ(keysInMarch("exception-in-another-zone.ics"), (Lines{"20260309T090000", "20260312T090000"}));
}

TEST(ExpansionTests, theStartCountsEvenWhereItsRuleDoesNotMatchIt) {
    EXPECT_EQ(keysInMarch("start-outside-its-rule.ics"),
              (Lines{"20260310T080000Z", "20260313T080000Z", "20260320T080000Z"}));
}

TEST(ExpansionTests, aCancelledOverrideHidesItsOccurrence) {
    EXPECT_EQ(keysInMarch("override-cancelled.ics"), (Lines{"20260309T080000Z", "20260311T080000Z"}));
}

TEST(ExpansionTests, theHighestSequenceWinsForTheSeriesAndForAnOverride) {
    EXPECT_EQ(inMarch("versions.ics"), (Lines{"2026-03-11T09:00:00Z/2026-03-11T09:00:00Z Second version",
                                              "2026-03-12T12:00:00Z/2026-03-12T12:00:00Z Moved again"}));
}

TEST(ExpansionTests, severalRulesAreJoinedAndExceptionRulesTakenAway) {
    EXPECT_EQ(inMarch("several-rules.ics"),
              (Lines{"2026-03-02T08:00:00Z/2026-03-02T08:00:00Z Two rules",
                     "2026-03-02T12:00:00Z/2026-03-02T12:00:00Z Rule and exception",
                     "2026-03-03T12:00:00Z/2026-03-03T12:00:00Z Rule and exception",
                     "2026-03-05T12:00:00Z/2026-03-05T12:00:00Z Rule and exception",
                     "2026-03-07T12:00:00Z/2026-03-07T12:00:00Z Rule and exception",
                     "2026-03-08T12:00:00Z/2026-03-08T12:00:00Z Rule and exception",
                     "2026-03-09T08:00:00Z/2026-03-09T08:00:00Z Two rules",
                     "2026-03-13T08:00:00Z/2026-03-13T08:00:00Z Two rules",
                     "2026-03-16T08:00:00Z/2026-03-16T08:00:00Z Two rules"}));
}

TEST(ExpansionTests, anAllDayEventLiesOnTheViewersDays) {
    auto const series = sampleSeries("all-day.ics");
    EXPECT_EQ(happenings(series, "2026-03-15T00:00:00Z", "2026-04-15T00:00:00Z", "Europe/Berlin"),
              (Lines{"2026-03-16/2026-03-17 Bins", "2026-03-27/2026-03-30 Trip",
                     "2026-03-29/2026-03-30 Holiday", "2026-03-30/2026-03-31 Bins"}));
    auto const found = series.occurrences(instant("2026-03-28T23:00:00Z"), instant("2026-03-29T22:00:00Z"),
                                          zone("Europe/Berlin"));
    ASSERT_EQ(found.occurrences.size(), 2U);
    // The day on which the clocks go forward has 23 hours.
    EXPECT_EQ(found.occurrences[1].start, instant("2026-03-28T23:00:00Z"));
    EXPECT_EQ(found.occurrences[1].end, instant("2026-03-29T22:00:00Z"));
}

TEST(ExpansionTests, anAllDayEventTouchesNeitherTheDayBeforeNorTheDayAfter) {
    auto const series = sampleSeries("all-day.ics");
    EXPECT_EQ(happenings(series, "2026-03-30T22:00:00Z", "2026-03-31T22:00:00Z", "Europe/Berlin"), Lines{});
    EXPECT_EQ(happenings(series, "2026-03-14T23:00:00Z", "2026-03-15T23:00:00Z", "Europe/Berlin"), Lines{});
}

TEST(ExpansionTests, anOverrideMayMakeATimeOfADay) {
    EXPECT_EQ(
        inMarch("all-day-override.ics"),
        (Lines{"2026-03-09/2026-03-10 Fair", "2026-03-10T18:00:00Z/2026-03-10T20:00:00Z Fair, in the evening",
               "2026-03-11/2026-03-12 Fair"}));
    EXPECT_EQ(keysInMarch("all-day-override.ics"), (Lines{"20260309", "20260310", "20260311"}));
}

TEST(ExpansionTests, aFloatingTimeIsReadOnTheViewersClock) {
    EXPECT_EQ(inMarch("floating.ics", "Asia/Tokyo"),
              (Lines{"2026-03-10T23:00:00Z/2026-03-10T23:30:00Z Breakfast"}));
    EXPECT_EQ(inMarch("floating.ics", "America/New_York"),
              (Lines{"2026-03-11T12:00:00Z/2026-03-11T12:30:00Z Breakfast"}));
}

TEST(ExpansionTests, theKeyOfAnOverrideHasTheFormOfTheStart) {
    std::string const master =
        eventWith("DTSTART;TZID=Europe/Berlin:20260328T023000\nRRULE:FREQ=DAILY;COUNT=2\n");
    for (auto const* id :
         {"RECURRENCE-ID:20260329T013000Z", "RECURRENCE-ID;TZID=America/New_York:20260328T213000"}) {
        auto const series = seriesOf(master + eventWith(std::string(id) + "\nDTSTART:20260329T100000Z\n"));
        EXPECT_EQ(keys(series, "2026-03-29T00:00:00Z", "2026-03-30T00:00:00Z"), (Lines{"20260329T033000"}))
            << id;
    }
    for (auto const* id : {"RECURRENCE-ID;TZID=Europe/Berlin:20260329T023000",
                           "RECURRENCE-ID:20260329T023000", "RECURRENCE-ID;VALUE=DATE:20260329"}) {
        auto const series = seriesOf(master + eventWith(std::string(id) + "\nDTSTART:20260329T100000Z\n"));
        EXPECT_EQ(keys(series, "2026-03-29T00:00:00Z", "2026-03-30T00:00:00Z"), (Lines{"20260329T023000"}))
            << id;
    }
}

TEST(ExpansionTests, anAddedPeriodWithoutAZoneIsReadInTheZoneOfTheStart) {
    auto const series = seriesOf(eventWith("DTSTART;TZID=Europe/Berlin:20260311T090000\n"
                                           "RDATE;VALUE=PERIOD:20260312T090000/20260312T113000\n"));
    EXPECT_EQ(happenings(series, "2026-03-12T00:00:00Z", "2026-03-13T00:00:00Z", "Asia/Tokyo"),
              (Lines{"2026-03-12T08:00:00Z/2026-03-12T10:30:00Z Event"}));
}

TEST(ExpansionTests, anAddedDayHappensAtTheTimeOfTheStart) {
    auto const series =
        seriesOf(eventWith("DTSTART;TZID=Europe/Berlin:20260311T090000\nRDATE;VALUE=DATE:20260330\n"));
    EXPECT_EQ(happenings(series, "2026-03-12T00:00:00Z", "2026-04-13T00:00:00Z"),
              (Lines{"2026-03-30T07:00:00Z/2026-03-30T07:00:00Z Event"}));
}

TEST(ExpansionTests, aUniversalUntilOfADayIsTheDayThatItNames) {
    auto const series = seriesOf(eventWith("DTSTART:20260309\nRRULE:FREQ=DAILY;UNTIL=20260311T235959Z\n"));
    EXPECT_EQ(keys(series, "2026-03-01T00:00:00Z", "2026-04-01T00:00:00Z", "Asia/Tokyo"),
              (Lines{"20260309", "20260310", "20260311"}));
}

TEST(ExpansionTests, twoTimesThatAGapBringsTogetherHappenOnce) {
    auto const series = seriesOf(eventWith("DTSTART;TZID=Europe/Berlin:20260328T020000\n"
                                           "RRULE:FREQ=DAILY;BYHOUR=2,3;COUNT=5\n"));
    EXPECT_EQ(happenings(series, "2026-03-28T00:00:00Z", "2026-04-01T00:00:00Z"),
              (Lines{"2026-03-28T01:00:00Z/2026-03-28T01:00:00Z Event",
                     "2026-03-28T02:00:00Z/2026-03-28T02:00:00Z Event",
                     "2026-03-29T01:00:00Z/2026-03-29T01:00:00Z Event",
                     "2026-03-30T00:00:00Z/2026-03-30T00:00:00Z Event"}));
}

TEST(ExpansionTests, yearsOfExceptionsLeaveTheOneDayThatIsNotExcepted) {
    EXPECT_EQ(
        keys(sampleSeries("ten-years-of-exceptions.ics"), "2026-03-02T00:00:00Z", "2026-03-28T00:00:00Z"),
        (Lines{"20260311T090000"}));
}

TEST(ExpansionTests, aSingleEventHasNoKey) {
    EXPECT_EQ(keysInMarch("floating.ics"), (Lines{"-"}));
}

TEST(ExpansionTests, theEndsOfTheWindowAreExclusiveButForAMomentAtItsBeginning) {
    auto const series = seriesOf(eventWith("DTSTART:20260311T080000Z\nDTEND:20260311T090000Z\n"));
    EXPECT_EQ(happenings(series, "2026-03-11T09:00:00Z", "2026-03-11T10:00:00Z"), Lines{});
    EXPECT_EQ(happenings(series, "2026-03-11T07:00:00Z", "2026-03-11T08:00:00Z"), Lines{});
    EXPECT_EQ(happenings(series, "2026-03-11T08:59:59Z", "2026-03-11T09:00:00Z").size(), 1U);
    auto const moment = seriesOf(eventWith("DTSTART:20260311T080000Z\n"));
    EXPECT_EQ(happenings(moment, "2026-03-11T08:00:00Z", "2026-03-11T09:00:00Z").size(), 1U);
    EXPECT_EQ(happenings(moment, "2026-03-11T07:00:00Z", "2026-03-11T08:00:00Z"), Lines{});
}

TEST(ExpansionTests, equalStartsStayInTheOrderOfTheFile) {
    auto const series =
        seriesOf("BEGIN:VEVENT\nUID:b\nSUMMARY:First\nDTSTART:20260311T080000Z\nEND:VEVENT\n"
                 "BEGIN:VEVENT\nUID:a\nSUMMARY:Second\nDTSTART:20260311T080000Z\nEND:VEVENT\n"
                 "BEGIN:VEVENT\nUID:c\nSUMMARY:Earlier\nDTSTART:20260311T070000Z\nEND:VEVENT\n");
    EXPECT_EQ(happenings(series, "2026-03-11T00:00:00Z", "2026-03-12T00:00:00Z"),
              (Lines{"2026-03-11T07:00:00Z/2026-03-11T07:00:00Z Earlier",
                     "2026-03-11T08:00:00Z/2026-03-11T08:00:00Z First",
                     "2026-03-11T08:00:00Z/2026-03-11T08:00:00Z Second"}));
}

// So many that comparing each with each would take minutes.
TEST(ExpansionTests, anOverrideOfOneOccurrenceOutdoesThatOfAllThatFollow) {
    std::string events = "BEGIN:VEVENT\nUID:u\nSUMMARY:Master\nDTSTART:20260301T000000Z\n"
                         "RRULE:FREQ=MINUTELY\nEND:VEVENT\n";
    constexpr int count = 20'000;
    Foundation::Date const start = instant("2026-03-01T00:00:00Z");
    for (int minute = 0; minute < count; ++minute) {
        auto time = Foundation::iso8601(start.addingTimeInterval(60.0 * minute));
        std::erase_if(time, [](char byte) { return byte == '-' || byte == ':'; });
        events += "BEGIN:VEVENT\nUID:u\nSUMMARY:Following\nRECURRENCE-ID;RANGE=THISANDFUTURE:" + time +
                  "\nDTSTART:" + time + "\nEND:VEVENT\n";
        if (minute % 2 == 0) continue;
        events += "BEGIN:VEVENT\nUID:u\nSUMMARY:Alone\nRECURRENCE-ID:" + time + "\nDTSTART:" + time +
                  "\nEND:VEVENT\n";
    }
    auto const found = happenings(seriesOf(events), "2026-03-01T00:00:00Z", "2026-03-01T00:04:00Z");
    EXPECT_EQ(found, (Lines{"2026-03-01T00:00:00Z/2026-03-01T00:00:00Z Following",
                            "2026-03-01T00:01:00Z/2026-03-01T00:01:00Z Alone",
                            "2026-03-01T00:02:00Z/2026-03-01T00:02:00Z Following",
                            "2026-03-01T00:03:00Z/2026-03-01T00:03:00Z Alone"}));
}

} // namespace
} // namespace Platform::ICalendar
