#include "Tests/EventStore/ICalendar/CalendarFixtures.h"

#include "Platform/EventStore/ICalendar/CustomTimeZone.h"
#include "Platform/EventStore/ICalendar/EventZone.h"
#include "Platform/EventStore/ICalendar/WindowsZones.h"

#include <gtest/gtest.h>

namespace Platform::ICalendar {
namespace {

using Lines = std::vector<std::string>;

Lines thisYear(std::string const& sample, std::string_view viewer = "UTC") {
    return happenings(sampleSeries(sample), "2026-01-01T00:00:00Z", "2027-01-01T00:00:00Z", viewer);
}

TEST(ZoneTests, theSystemsRulesGoBeforeThoseOfTheFile) {
    EXPECT_EQ(thisYear("zone-known-to-the-system.ics"),
              (Lines{"2026-03-11T08:00:00Z/2026-03-11T08:00:00Z In Berlin"}));
}

TEST(ZoneTests, aNameOfTheFilesOwnHasTheFilesRules) {
    EXPECT_EQ(thisYear("zone-of-the-file.ics"),
              (Lines{"2026-03-06T07:30:00Z/2026-03-06T08:00:00Z Office hour",
                     "2026-03-07T07:30:00Z/2026-03-07T08:00:00Z Office hour",
                     "2026-03-08T07:30:00Z/2026-03-08T08:00:00Z Office hour",
                     "2026-03-09T06:30:00Z/2026-03-09T07:00:00Z Office hour",
                     "2026-11-01T05:30:00Z/2026-11-01T05:30:00Z Autumn",
                     "2026-11-02T06:30:00Z/2026-11-02T06:30:00Z Autumn"}));
}

TEST(ZoneTests, aNameOfWindowsIsItsMainZone) {
    EXPECT_EQ(thisYear("zone-of-windows.ics"),
              (Lines{"2026-03-11T08:00:00Z/2026-03-11T08:00:00Z From the office",
                     "2026-03-11T10:00:00Z/2026-03-11T10:00:00Z From Tokyo"}));
}

TEST(ZoneTests, aPrefixedNameIsItsEnding) {
    EXPECT_EQ(thisYear("zone-with-a-prefix.ics"), (Lines{"2026-03-11T08:00:00Z/2026-03-11T08:00:00Z One",
                                                         "2026-03-11T12:00:00Z/2026-03-11T12:00:00Z Two"}));
}

TEST(ZoneTests, anUnknownNameIsTheViewersZoneAndIsReported) {
    EXPECT_EQ(thisYear("zone-unknown.ics", "Europe/Berlin"),
              (Lines{"2026-03-11T08:00:00Z/2026-03-11T09:00:00Z Nowhere"}));
    EXPECT_EQ(
        reasons(sampleSeries("zone-unknown.ics").problems()),
        (Lines{"line 4: the time zone \"Atlantis/Harbour\" is not known; its times are read on the viewer's "
               "clock"}));
}

TEST(ZoneTests, aPathOutOfTheZoneFolderIsNoZone) {
    for (std::string const name :
         {"/etc/localtime", ":/etc/localtime", "localtime", "/localtime", "posix/localtime", "posixrules",
          "/usr/share/zoneinfo/localtime", "../../../etc/localtime", "Europe/../../../../etc/localtime",
          "../Europe/Berlin", "/usr/share/zoneinfo/../zoneinfo/Europe/Berlin", "/dev/zero", "."}) {
        SCOPED_TRACE(name);
        auto const series = seriesOf(eventWith("DTSTART;TZID=\"" + name + "\":20260311T090000\n"));
        // No machine is set to that zone by chance.
        EXPECT_EQ(happenings(series, "2026-03-10T00:00:00Z", "2026-03-13T00:00:00Z", "Pacific/Chatham"),
                  (Lines{"2026-03-10T19:15:00Z/2026-03-10T19:15:00Z Event"}));
        EXPECT_EQ(reasons(series.problems()),
                  (Lines{"line 3: the time zone \"" + name +
                         "\" is not known; its times are read on the viewer's clock"}));
    }
}

TEST(ZoneTests, aNameThatLooksLikeARuleTextIsNotTakenForOne) {
    auto const series = seriesOf("BEGIN:VTIMEZONE\nTZID:Zone1\nBEGIN:STANDARD\nDTSTART:19700101T000000\n"
                                 "TZOFFSETFROM:+0500\nTZOFFSETTO:+0500\nEND:STANDARD\nEND:VTIMEZONE\n" +
                                 eventWith("DTSTART;TZID=Zone1:20260311T090000\n"));
    EXPECT_EQ(happenings(series, "2026-03-11T00:00:00Z", "2026-03-12T00:00:00Z"),
              (Lines{"2026-03-11T04:00:00Z/2026-03-11T04:00:00Z Event"}));
}

TEST(ZoneTests, aZoneWithoutUsableRulesCountsAsUnknown) {
    auto const series = seriesOf("BEGIN:VTIMEZONE\nTZID:Empty\nBEGIN:STANDARD\nDTSTART:19700101T000000\n"
                                 "TZOFFSETTO:later\nEND:STANDARD\nEND:VTIMEZONE\n" +
                                 eventWith("DTSTART;TZID=Empty:20260311T090000\n"));
    EXPECT_EQ(happenings(series, "2026-03-11T00:00:00Z", "2026-03-12T00:00:00Z", "Asia/Tokyo"),
              (Lines{"2026-03-11T00:00:00Z/2026-03-11T00:00:00Z Event"}));
    EXPECT_EQ(series.problems().size(), 1U);
}

TEST(ZoneTests, datesOfChangeAreFollowed) {
    std::int64_t steps = 1000;
    auto const zone =
        CustomTimeZone::fromComponent("BEGIN:VTIMEZONE\nTZID:X\n"
                                      "BEGIN:STANDARD\nDTSTART:20200101T000000\nRDATE:20220101T000000\n"
                                      "TZOFFSETFROM:+0200\nTZOFFSETTO:+0100\nEND:STANDARD\n"
                                      "BEGIN:DAYLIGHT\nDTSTART:20210101T000000\n"
                                      "TZOFFSETFROM:+0100\nTZOFFSETTO:+0200\nEND:DAYLIGHT\n"
                                      "END:VTIMEZONE\n",
                                      steps);
    ASSERT_NE(zone, nullptr);
    auto const at = [&zone](std::string_view text) {
        return zone->secondsFromUTC(static_cast<std::int64_t>(instant(text).secondsSince1970));
    };
    EXPECT_EQ(at("2019-06-01T00:00:00Z"), 7200);
    EXPECT_EQ(at("2019-12-31T21:59:59Z"), 7200);
    EXPECT_EQ(at("2019-12-31T22:00:00Z"), 3600);
    EXPECT_EQ(at("2020-12-31T23:00:00Z"), 7200);
    EXPECT_EQ(at("2022-06-01T00:00:00Z"), 3600);
}

TEST(ZoneTests, theCaseOfASystemsNameDoesNotMatter) {
    for (auto const* const name : {"europe/berlin", "EUROPE/BERLIN", "Europe/berlin"}) {
        auto const series = seriesOf(eventWith("DTSTART;TZID=" + std::string(name) + ":20260311T090000\n"));
        EXPECT_EQ(happenings(series, "2026-03-11T00:00:00Z", "2026-03-12T00:00:00Z"),
                  (Lines{"2026-03-11T08:00:00Z/2026-03-11T08:00:00Z Event"}))
            << name;
    }
    auto const series = seriesOf(eventWith("DTSTART;TZID=america/new_york:20260311T090000\n"));
    EXPECT_EQ(happenings(series, "2026-03-11T00:00:00Z", "2026-03-12T00:00:00Z"),
              (Lines{"2026-03-11T13:00:00Z/2026-03-11T13:00:00Z Event"}));
}

std::string ownZone(std::string const& name, std::string const& rule) {
    return "BEGIN:VTIMEZONE\nTZID:" + name + "\nBEGIN:STANDARD\nDTSTART:19700101T000000\n" + rule +
           "TZOFFSETFROM:+0500\nTZOFFSETTO:+0500\nEND:STANDARD\nEND:VTIMEZONE\n";
}

TEST(ZoneTests, theZonesOfAFileShareOneBoundOfWork) {
    std::string bytes = "BEGIN:VCALENDAR\n";
    constexpr int count = 100;
    for (int zone = 0; zone < count; ++zone)
        bytes += ownZone("Zone" + std::to_string(zone), "RRULE:FREQ=DAILY;BYSETPOS=2;COUNT=3\n");
    auto const file = read(bytes + "END:VCALENDAR\n");
    ASSERT_EQ(file->timeZones.size(), static_cast<std::size_t>(count));
    FileZones zones(*file);
    auto const before = zones.steps;
    ZoneCatalog catalog;
    for (int zone = 0; zone < count; ++zone)
        EXPECT_TRUE(catalog.zone("Zone" + std::to_string(zone), zones)) << zone;
    EXPECT_LE(zones.steps, 0);
    EXPECT_GE(zones.steps, -1000);

    FileZones others(*file);
    EXPECT_TRUE(catalog.zone("Zone99", others));
    EXPECT_LT(others.steps, before) << "what was cut for one file is worked out for the next";
}

TEST(ZoneTests, ofTwoZonesOfOneNameTheFirstCounts) {
    auto const series = seriesOf(ownZone("Twice", "") + ownZone("Other", "") +
                                 "BEGIN:VTIMEZONE\nTZID:Twice\nBEGIN:STANDARD\nDTSTART:19700101T000000\n"
                                 "TZOFFSETFROM:+0900\nTZOFFSETTO:+0900\nEND:STANDARD\nEND:VTIMEZONE\n" +
                                 eventWith("DTSTART;TZID=Twice:20260311T090000\n"));
    EXPECT_EQ(happenings(series, "2026-03-11T00:00:00Z", "2026-03-12T00:00:00Z"),
              (Lines{"2026-03-11T04:00:00Z/2026-03-11T04:00:00Z Event"}));
}

TEST(ZoneTests, manyUnknownZonesAreReportedOnceEachUpToTheBound) {
    std::string events;
    for (int event = 0; event < 30'000; ++event) {
        events += "BEGIN:VEVENT\nUID:" + std::to_string(event) + "\nDTSTART;TZID=Nowhere" +
                  std::to_string(event / 2) + ":20260311T090000\nEND:VEVENT\n";
    }
    auto const problems = seriesOf(events).problems();
    ASSERT_EQ(problems.size(), CalendarFile::maximumProblems);
    EXPECT_EQ(problems[1].uid, "2");
    EXPECT_EQ(problems[999].uid, "1998");
}

TEST(ZoneTests, everyWindowsNameLeadsToAZoneOfTheSystem) {
    for (auto const* name :
         {"Pacific Standard Time", "eastern standard time", "India Standard Time", "UTC", "FLE Standard Time",
          "Greenland Standard Time", "Myanmar Standard Time", "UTC-11", "Central Standard Time (Mexico)",
          "Yukon Standard Time", "Nepal Standard Time"}) {
        auto const iana = ianaNameOfWindowsZone(name);
        ASSERT_TRUE(iana) << name;
        EXPECT_TRUE(Foundation::TimeZone::named(*iana)) << name << " is " << *iana;
    }
    EXPECT_EQ(ianaNameOfWindowsZone("W. Europe Standard Time"), "Europe/Berlin");
    EXPECT_EQ(ianaNameOfWindowsZone("Europe/Berlin"), std::nullopt);
}

// Clocks change at other times of the day, by other amounts, and on other dates around the world.
struct ClockChange {
    std::string name;
    std::string zone;
    std::string local;
    std::string instant;
};

class ClockChangeTests : public testing::TestWithParam<ClockChange> {};

TEST_P(ClockChangeTests, theWallClockTimeIsThisInstant) {
    auto const& change = GetParam();
    auto const series = seriesOf(eventWith("DTSTART;TZID=" + change.zone + ":" + change.local + "\n"));
    EXPECT_EQ(happenings(series, "1990-01-01T00:00:00Z", "2100-01-01T00:00:00Z"),
              (Lines{change.instant + '/' + change.instant + " Event"}));
}

INSTANTIATE_TEST_SUITE_P(
    Table, ClockChangeTests,
    testing::Values(
        ClockChange{"beforeTheGap", "America/New_York", "20260308T015959", "2026-03-08T06:59:59Z"},
        ClockChange{"inTheGap", "America/New_York", "20260308T020000", "2026-03-08T07:00:00Z"},
        ClockChange{"lateInTheGap", "America/New_York", "20260308T025959", "2026-03-08T07:59:59Z"},
        ClockChange{"afterTheGap", "America/New_York", "20260308T030000", "2026-03-08T07:00:00Z"},
        ClockChange{"firstPass", "America/New_York", "20261101T010000", "2026-11-01T05:00:00Z"},
        ClockChange{"lateInTheFirstPass", "America/New_York", "20261101T015959", "2026-11-01T05:59:59Z"},
        ClockChange{"afterBothPasses", "America/New_York", "20261101T020000", "2026-11-01T07:00:00Z"},
        ClockChange{"halfAnHourForward", "Australia/Lord_Howe", "20261004T021500", "2026-10-03T15:45:00Z"},
        ClockChange{"halfAnHourBack", "Australia/Lord_Howe", "20260405T014500", "2026-04-04T14:45:00Z"},
        ClockChange{"midnightSkipped", "America/Sao_Paulo", "20181104T000000", "2018-11-04T03:00:00Z"},
        ClockChange{"whereWinterTimeIsTheException", "Europe/Dublin", "20260329T013000",
                    "2026-03-29T01:30:00Z"},
        ClockChange{"longAfterTheTables", "Europe/Berlin", "20990701T120000", "2099-07-01T10:00:00Z"}),
    [](auto const& sample) { return sample.param.name; });

} // namespace
} // namespace Platform::ICalendar
