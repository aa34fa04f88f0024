#include "Tests/EventStore/ICalendar/CalendarFixtures.h"

#include "Foundation/DateFormatting.h"
#include "Platform/EventStore/ICalendar/SeriesOmissions.h"

#include <gtest/gtest.h>

namespace Platform::ICalendar {
namespace {

using Lines = std::vector<std::string>;

std::string_view nameOf(Omission::Reason reason) {
    switch (reason) {
    case Omission::Reason::excludedDate: return "excluded date";
    case Omission::Reason::excludedByRule: return "excluded by rule";
    case Omission::Reason::cancelledOccurrence: return "cancelled occurrence";
    case Omission::Reason::cancelledEvent: return "cancelled event";
    case Omission::Reason::movedOccurrence: return "moved";
    }
    return "";
}

// What a calendar of these components leaves out from `from` to `to`, a line each: "2026-03-12T08:00:00Z
// excluded date, line 3".
Lines leftOut(std::string const& components, std::string_view from, std::string_view to) {
    Lines lines;
    ZoneCatalog zones;
    std::vector<std::shared_ptr<CalendarFile const>> files;
    files.push_back(read("BEGIN:VCALENDAR\nVERSION:2.0\n" + components + "END:VCALENDAR\n", "given.ics"));
    for (auto const& omission : omissions(files, zones, instant(from), instant(to), zone("UTC"))) {
        auto line = Foundation::iso8601(omission.occurrence.start) + " " +
                    std::string(nameOf(omission.reason)) + ", line " + std::to_string(omission.cause->line);
        if (omission.movedTo) line += ", to " + Foundation::iso8601(*omission.movedTo);
        lines.push_back(line);
    }
    return lines;
}

std::string const daily = "DTSTART:20260311T080000Z\nDTEND:20260311T090000Z\nRRULE:FREQ=DAILY;COUNT=5\n";

TEST(OmissionTests, aSeriesThatLeavesNothingOutHasNone) {
    EXPECT_EQ(leftOut(eventWith(daily), "2026-03-01T00:00:00Z", "2026-04-01T00:00:00Z"), Lines{});
}

TEST(OmissionTests, anExcludedDateIsToldWhereTheRuleYieldsIt) {
    auto const calendar = eventWith(daily + "EXDATE:20260312T080000Z,20260401T080000Z\n");
    EXPECT_EQ(leftOut(calendar, "2026-03-01T00:00:00Z", "2026-05-01T00:00:00Z"),
              Lines{"2026-03-12T08:00:00Z excluded date, line 3"});
    EXPECT_EQ(leftOut(calendar, "2026-03-13T00:00:00Z", "2026-05-01T00:00:00Z"), Lines{});
}

TEST(OmissionTests, anExcludedDateTakesEveryFormThatTheExpansionTakes) {
    EXPECT_EQ(leftOut(eventWith(daily + "EXDATE;VALUE=DATE:20260313\n"), "2026-03-01T00:00:00Z",
                      "2026-05-01T00:00:00Z"),
              Lines{"2026-03-13T08:00:00Z excluded date, line 3"});
}

TEST(OmissionTests, anExcludingRuleIsTold) {
    auto const calendar = eventWith(daily + "EXRULE:FREQ=DAILY;INTERVAL=2;COUNT=2\n");
    EXPECT_EQ(leftOut(calendar, "2026-03-01T00:00:00Z", "2026-04-01T00:00:00Z"),
              (Lines{"2026-03-11T08:00:00Z excluded by rule, line 3",
                     "2026-03-13T08:00:00Z excluded by rule, line 3"}));
}

TEST(OmissionTests, aCancelledOccurrenceNamesItsOverride) {
    auto const calendar = eventWith(daily) + eventWith("RECURRENCE-ID:20260312T080000Z\n"
                                                       "DTSTART:20260312T080000Z\n"
                                                       "STATUS:CANCELLED\n");
    auto const told = leftOut(calendar, "2026-03-01T00:00:00Z", "2026-04-01T00:00:00Z");
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told.front(), "2026-03-12T08:00:00Z cancelled occurrence, line 10");
}

TEST(OmissionTests, aMovedOccurrenceTellsWhereTo) {
    auto const calendar = eventWith(daily) + eventWith("RECURRENCE-ID:20260312T080000Z\n"
                                                       "DTSTART:20260320T100000Z\n");
    EXPECT_EQ(leftOut(calendar, "2026-03-12T00:00:00Z", "2026-03-13T00:00:00Z"),
              Lines{"2026-03-12T08:00:00Z moved, line 10, to 2026-03-20T10:00:00Z"});
    // Where it has moved to nothing is left out.
    EXPECT_EQ(leftOut(calendar, "2026-03-20T00:00:00Z", "2026-03-21T00:00:00Z"), Lines{});
}

TEST(OmissionTests, anOverrideThatStaysWhereItWasLeavesNothingOut) {
    auto const calendar = eventWith(daily) + eventWith("RECURRENCE-ID:20260312T080000Z\n"
                                                       "DTSTART:20260312T080000Z\nLOCATION:Room\n");
    EXPECT_EQ(leftOut(calendar, "2026-03-01T00:00:00Z", "2026-04-01T00:00:00Z"), Lines{});
}

TEST(OmissionTests, aCancelledEventLeavesOutEachOfItsOccurrences) {
    auto const calendar = eventWith("DTSTART:20260311T080000Z\nDTEND:20260311T090000Z\n"
                                    "RRULE:FREQ=DAILY;COUNT=2\nSTATUS:CANCELLED\n");
    EXPECT_EQ(leftOut(calendar, "2026-03-01T00:00:00Z", "2026-04-01T00:00:00Z"),
              (Lines{"2026-03-11T08:00:00Z cancelled event, line 3",
                     "2026-03-12T08:00:00Z cancelled event, line 3"}));
    EXPECT_TRUE(happenings(seriesOf(calendar), "2026-03-01T00:00:00Z", "2026-04-01T00:00:00Z").empty());
}

} // namespace
} // namespace Platform::ICalendar
