#include "Tests/EventStore/ICalendar/CalendarFixtures.h"

#include <gtest/gtest.h>

#include <chrono>

namespace Platform::ICalendar {
namespace {

using Lines = std::vector<std::string>;
using std::chrono::local_days;
using std::chrono::year;

std::shared_ptr<CalendarFile const> calendar(std::string const& content) {
    return read("BEGIN:VCALENDAR\r\n" + content + "END:VCALENDAR\r\n", "given.ics");
}

EventComponent const& only(std::shared_ptr<CalendarFile const> const& file) {
    EXPECT_EQ(file->events.size(), 1U);
    EXPECT_EQ(reasons(file->problems), Lines{});
    return file->events.at(0);
}

std::string titleOf(std::string const& summaryLine) {
    auto const file =
        calendar("BEGIN:VEVENT\r\nUID:u\r\nDTSTART:20260311T080000Z\r\n" + summaryLine + "END:VEVENT\r\n");
    auto const& event = only(file);
    return event.summary ? event.summary->text() : "(none)";
}

TEST(ReaderTests, anEventIsReadWhole) {
    auto const file = calendar("BEGIN:VEVENT\r\n"
                               "UID:one@example.org\r\n"
                               "SEQUENCE:3\r\n"
                               "DTSTAMP:20260101T120000Z\r\n"
                               "DTSTART;TZID=Europe/Berlin:20260311T090000\r\n"
                               "DTEND;TZID=Europe/Berlin:20260311T100000\r\n"
                               "SUMMARY:Stand-up\r\n"
                               "DESCRIPTION:Bring the numbers\\, please\\nand the plan\r\n"
                               "LOCATION:Room 4\\; left\r\n"
                               "URL;VALUE=URI:https://example.org/a;b?c=1,2\r\n"
                               "STATUS:TENTATIVE\r\n"
                               "RRULE:FREQ=WEEKLY;BYDAY=WE\r\n"
                               "EXDATE;TZID=Europe/Berlin:20260318T090000,20260325T090000\r\n"
                               "RDATE:20260320T080000Z\r\n"
                               "END:VEVENT\r\n");
    auto const& event = only(file);
    EXPECT_EQ(event.uid, "one@example.org");
    EXPECT_TRUE(event.hasUID);
    EXPECT_EQ(event.sequence, 3);
    EXPECT_EQ(event.stamp, 1767268800);
    EXPECT_EQ(event.start.text(), "20260311T090000");
    EXPECT_EQ(event.start.form, TimeForm::zoned);
    EXPECT_EQ(file->zoneNames, (Lines{"Europe/Berlin"}));
    EXPECT_EQ(event.end->text(), "20260311T100000");
    EXPECT_EQ(event.summary->text(), "Stand-up");
    EXPECT_EQ(event.description->text(), "Bring the numbers, please\nand the plan");
    EXPECT_EQ(event.location->text(), "Room 4; left");
    EXPECT_EQ(event.url->uri(), "https://example.org/a;b?c=1,2");
    EXPECT_EQ(event.status, EventStatus::tentative);
    ASSERT_EQ(event.rules.size(), 1U);
    EXPECT_EQ(event.rules[0].frequency, Frequency::weekly);
    EXPECT_EQ(event.rules[0].byDay, (std::vector<WeekdayRule>{{.weekday = 3, .ordinal = 0}}));
    ASSERT_EQ(event.exceptionDates.size(), 2U);
    EXPECT_EQ(event.exceptionDates[1].text(), "20260325T090000");
    ASSERT_EQ(event.recurrenceDates.size(), 1U);
    EXPECT_EQ(event.recurrenceDates[0].start.text(), "20260320T080000Z");
    EXPECT_EQ(event.line, 2);
}

TEST(ReaderTests, theBytesOfAnEventAreNamed) {
    std::string const block = "BEGIN:VEVENT\r\nUID:u\r\nDTSTART:20260311T080000Z\r\nEND:VEVENT\r\n";
    std::string const bytes = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n" + block + block + "END:VCALENDAR\r\n";
    auto const file = read(bytes);
    ASSERT_EQ(file->events.size(), 2U);
    EXPECT_EQ(bytes.substr(file->events[1].offset, file->events[1].length), block);
    EXPECT_EQ(file->events[1].offset, 30 + block.size());
    EXPECT_EQ(file->events[1].line, 7);
}

TEST(ReaderTests, theCalendarsNameAndColourAreRead) {
    auto const file = calendar("NAME:Plain\r\nCOLOR:teal\r\nX-WR-CALNAME:Work\\, mostly\r\n"
                               "X-APPLE-CALENDAR-COLOR:#FF2968FF\r\n");
    EXPECT_EQ(file->name, "Work, mostly");
    EXPECT_EQ(file->color, "#FF2968FF");
    auto const plain = calendar("NAME:Plain\r\nCOLOR:teal\r\n");
    EXPECT_EQ(plain->name, "Plain");
    EXPECT_EQ(plain->color, "teal");
    auto const bare = calendar("");
    EXPECT_EQ(bare->name, std::nullopt);
    EXPECT_EQ(bare->color, std::nullopt);
}

TEST(ReaderTests, theNameOfAnEventIsNotTheCalendars) {
    auto const file =
        calendar("BEGIN:VEVENT\r\nUID:u\r\nDTSTART:20260311\r\nNAME:Event\r\nCOLOR:red\r\nEND:VEVENT\r\n");
    EXPECT_EQ(file->name, std::nullopt);
    EXPECT_EQ(file->color, std::nullopt);
}

TEST(ReaderTests, aFoldedLineIsOneLine) {
    EXPECT_EQ(titleOf("SUMMARY:A long\r\n  title in\r\n\t parts\r\n"), "A long title in parts");
}

TEST(ReaderTests, aFoldMayCutACharacter) {
    EXPECT_EQ(titleOf("SUMMARY:Caf\xC3\r\n \xA9 Z\xC3\n \xBCrich\r\n"), "Café Zürich");
}

TEST(ReaderTests, aFoldMayCutANameAParameterAndAnEscape) {
    EXPECT_EQ(titleOf("SUM\r\n MARY;LANG\r\n UAGE=de:One\\\r\n nTwo\r\n"), "One\nTwo");
    auto const file = calendar("BEGIN:VEVENT\r\nUID:u\r\nDTST\r\n ART;TZID=Europe/\r\n Berlin:2026\r\n "
                               "0311T0900\r\n 00\r\nEND:VEVENT\r\n");
    EXPECT_EQ(only(file).start.text(), "20260311T090000");
    EXPECT_EQ(file->zoneNames, (Lines{"Europe/Berlin"}));
}

TEST(ReaderTests, everyLineBreakIsUnderstood) {
    for (std::string const lineBreak : {"\r\n", "\n", "\r", "\r\r\n"}) {
        std::string bytes;
        for (auto const* line : {"BEGIN:VCALENDAR", "BEGIN:VEVENT", "UID:u", "DTSTART:20260311T080000Z",
                                 "SUMMARY:A title", " in parts", "END:VEVENT", "END:VCALENDAR"}) {
            bytes += line + lineBreak;
        }
        auto const file = read(bytes);
        auto const& event = only(file);
        EXPECT_EQ(event.summary->text(), "A titlein parts");
        EXPECT_EQ(event.start.text(), "20260311T080000Z");
    }
}

TEST(ReaderTests, lineBreaksMayBeMixed) {
    auto const file = read("BEGIN:VCALENDAR\r\nBEGIN:VEVENT\nUID:u\rDTSTART:"
                           "20260311T080000Z\r\n\r\n\nSUMMARY:One\r two\nEND:VEVENT\r"
                           "END:VCALENDAR");
    EXPECT_EQ(only(file).summary->text(), "Onetwo");
}

TEST(ReaderTests, aByteOrderMarkIsSkipped) {
    auto const file =
        read("\xEF\xBB\xBF"
             "BEGIN:VCALENDAR\nBEGIN:VEVENT\nUID:u\nDTSTART:20260311\nEND:VEVENT\nEND:VCALENDAR\n");
    EXPECT_EQ(only(file).uid, "u");
}

TEST(ReaderTests, theCaseOfNamesDoesNotMatter) {
    auto const file = read(
        "begin:vcalendar\nBegin:vevent\nuid:u\ndtstart;tzid=Europe/Berlin;value=date-time:20260311t090000\n"
        "rrule:freq=daily;count=2;byday=we,th\nstatus:cancelled\nsummary:Lower\nend:vevent\nend:vcalendar\n");
    auto const& event = only(file);
    EXPECT_EQ(event.start.text(), "20260311T090000");
    EXPECT_EQ(event.rules.at(0).count, 2);
    EXPECT_EQ(event.status, EventStatus::cancelled);
    EXPECT_EQ(event.summary->text(), "Lower");
}

TEST(ReaderTests, aQuotedParameterMayHoldColonsAndSemicolons) {
    EXPECT_EQ(titleOf("SUMMARY;ALTREP=\"https://example.org/a;b:c\";LANGUAGE=en:Title: here\r\n"),
              "Title: here");
}

TEST(ReaderTests, aQuoteWithoutItsEndCostsNoTitle) {
    EXPECT_EQ(titleOf("SUMMARY;X-NOTE=\"open:Title\r\n"), "Title");
}

TEST(ReaderTests, aQuotedZoneWithItsOwnPunctuationIsRead) {
    auto const file = calendar("BEGIN:VEVENT\r\nUID:u\r\nDTSTART;TZID=\"(UTC+01:00) Amsterdam; Berlin, Rome "
                               "^'x^'\":20260311T090000\r\nEND:VEVENT\r\n");
    EXPECT_EQ(only(file).start.form, TimeForm::zoned);
    EXPECT_EQ(file->zoneNames, (Lines{"(UTC+01:00) Amsterdam; Berlin, Rome \"x\""}));
}

TEST(ReaderTests, escapesOfTextsAreDecoded) {
    EXPECT_EQ(titleOf("SUMMARY:a\\nb\\Nc\\,d\\;e\\\\f\\\\n\r\n"), "a\nb\nc,d;e\\f\\n");
    EXPECT_EQ(titleOf("SUMMARY:C:\\Users\\x and a last \\\r\n"), "C:\\Users\\x and a last \\");
}

TEST(ReaderTests, invalidUTF8BecomesReplacementCharacters) {
    EXPECT_EQ(titleOf("SUMMARY:Caf\xE9 and \xED\xA0\x80!\r\n"),
              "Caf\xEF\xBF\xBD and \xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD!");
}

TEST(ReaderTests, aNULBecomesAReplacementCharacter) {
    EXPECT_EQ(titleOf(std::string("SUMMARY:a\0b\r\n", 13)), "a\xEF\xBF\xBD"
                                                            "b");
}

TEST(ReaderTests, anEmptyTitleIsATitle) {
    EXPECT_EQ(titleOf("SUMMARY:\r\n"), "");
}

TEST(ReaderTests, theFirstOfTwoTitlesCounts) {
    EXPECT_EQ(titleOf("SUMMARY:One\r\nSUMMARY:Two\r\n"), "One");
}

TEST(ReaderTests, whatIsInsideAnAlarmIsNotTheEvents) {
    auto const file =
        calendar("BEGIN:VEVENT\r\nUID:u\r\nDTSTART:20260311T080000Z\r\nSUMMARY:Event\r\n"
                 "BEGIN:VALARM\r\nSUMMARY:Alarm\r\nDURATION:PT5M\r\nDESCRIPTION:Ring\r\nEND:VALARM\r\n"
                 "LOCATION:Here\r\nEND:VEVENT\r\n");
    auto const& event = only(file);
    EXPECT_EQ(event.summary->text(), "Event");
    EXPECT_EQ(event.duration, std::nullopt);
    EXPECT_EQ(event.description, std::nullopt);
    EXPECT_EQ(event.location->text(), "Here");
}

TEST(ReaderTests, anAlarmWithoutItsEndEndsWithTheEvent) {
    auto const file =
        calendar("BEGIN:VEVENT\r\nUID:a\r\nDTSTART:20260311T080000Z\r\nBEGIN:VALARM\r\nEND:VEVENT\r\n"
                 "BEGIN:VEVENT\r\nUID:b\r\nDTSTART:20260311T080000Z\r\nSUMMARY:B\r\nEND:VEVENT\r\n");
    ASSERT_EQ(file->events.size(), 2U);
    EXPECT_EQ(file->events[1].summary->text(), "B");
}

TEST(ReaderTests, tasksJournalsAndUnknownComponentsAreLeftOut) {
    auto const file =
        calendar("BEGIN:VTODO\r\nUID:t\r\nDTSTART:20260311\r\nBEGIN:VALARM\r\nEND:VALARM\r\nEND:VTODO\r\n"
                 "BEGIN:VJOURNAL\r\nUID:j\r\nDTSTART:20260311\r\nEND:VJOURNAL\r\n"
                 "BEGIN:X-THING\r\nBEGIN:X-PART\r\nX-WR-CALNAME:No\r\nEND:X-PART\r\nEND:X-THING\r\n"
                 "X-WR-CALNAME:Yes\r\n"
                 "BEGIN:VEVENT\r\nUID:e\r\nDTSTART:20260311\r\nEND:VEVENT\r\n");
    EXPECT_EQ(only(file).uid, "e");
    EXPECT_EQ(file->name, "Yes");
}

TEST(ReaderTests, severalCalendarsInAFileAreTakenAsOne) {
    std::string const event = "BEGIN:VEVENT\nUID:x\nDTSTART:20260311\nEND:VEVENT\n";
    auto const file =
        read("BEGIN:VCALENDAR\nX-WR-CALNAME:First\n" + event +
             "END:VCALENDAR\nBEGIN:VCALENDAR\nX-WR-CALNAME:Second\n" + event + "END:VCALENDAR\n");
    EXPECT_EQ(file->events.size(), 2U);
    EXPECT_EQ(file->name, "First");
}

TEST(ReaderTests, aDayIsADayByItsParameterOrItsLength) {
    for (auto const* line :
         {"DTSTART;VALUE=DATE:20260311", "DTSTART:20260311", "DTSTART;VALUE=DATE:20260311T000000",
          "DTSTART;TZID=Europe/Berlin;VALUE=DATE:20260311"}) {
        auto const file = calendar("BEGIN:VEVENT\r\nUID:u\r\n" + std::string(line) + "\r\nEND:VEVENT\r\n");
        EXPECT_TRUE(only(file).isAllDay()) << line;
        EXPECT_EQ(only(file).start.day(), local_days(year(2026) / 3 / 11)) << line;
    }
}

TEST(ReaderTests, aUniversalTimeNeedsNoZone) {
    auto const file =
        calendar("BEGIN:VEVENT\r\nUID:u\r\nDTSTART;TZID=Europe/Berlin:20260311T090000Z\r\nEND:VEVENT\r\n");
    EXPECT_EQ(only(file).start.form, TimeForm::utc);
}

TEST(ReaderTests, anEndOfAnotherKindIsBroughtIntoTheStartsKind) {
    auto const day =
        calendar("BEGIN:VEVENT\r\nUID:u\r\nDTSTART:20260311\r\nDTEND:20260313T100000Z\r\nEND:VEVENT\r\n");
    EXPECT_EQ(only(day).end->text(), "20260313");
    auto const time = calendar(
        "BEGIN:VEVENT\r\nUID:u\r\nDTSTART:20260311T080000Z\r\nDTEND;VALUE=DATE:20260312\r\nEND:VEVENT\r\n");
    EXPECT_EQ(only(time).end->text(), "20260312T000000Z");
}

TEST(ReaderTests, anOverrideNamesWhatItReplaces) {
    auto const file = calendar("BEGIN:VEVENT\r\nUID:u\r\nRECURRENCE-ID;RANGE=THISANDFUTURE;VALUE=DATE:"
                               "20260311\r\nDTSTART:20260312\r\nEND:VEVENT\r\n");
    EXPECT_EQ(only(file).recurrenceId->text(), "20260311");
    EXPECT_TRUE(only(file).isThisAndFuture);
}

TEST(ReaderTests, aCancelledOverrideNeedsNoStart) {
    auto const file = calendar(
        "BEGIN:VEVENT\r\nUID:u\r\nRECURRENCE-ID:20260311T080000Z\r\nSTATUS:CANCELLED\r\nEND:VEVENT\r\n");
    EXPECT_EQ(only(file).start.text(), "20260311T080000Z");
}

TEST(ReaderTests, anEventWithoutUIDGetsOneFromItsContent) {
    auto const file = sampleFile("no-uid.ics");
    ASSERT_EQ(file->events.size(), 2U);
    EXPECT_FALSE(file->events[0].hasUID);
    EXPECT_NE(file->events[0].uid, file->events[1].uid);
    auto bytes = sampleBytes("no-uid.ics");
    bytes.replace(bytes.find("20260101T120000Z"), 16, "20261231T235959Z");
    EXPECT_EQ(read(bytes)->events[0].uid, file->events[0].uid) << "the time of writing is not content";
    bytes.replace(bytes.find("First"), 5, "Other");
    EXPECT_NE(read(bytes)->events[0].uid, file->events[0].uid);
}

TEST(ReaderTests, theRulesOfATimeZoneAreKeptAsTheyStand) {
    auto const file = sampleFile("zone-of-the-file.ics");
    ASSERT_EQ(file->timeZones.size(), 1U);
    EXPECT_EQ(file->timeZones[0].identifier, "Head office");
    EXPECT_TRUE(file->timeZones[0].bytes.starts_with("BEGIN:VTIMEZONE\n"));
    EXPECT_TRUE(file->timeZones[0].bytes.ends_with("END:VTIMEZONE\n"));
    EXPECT_EQ(file->timeZones[0].line, 4);
}

} // namespace
} // namespace Platform::ICalendar
