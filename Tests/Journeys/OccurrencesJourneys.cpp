#include "PrivateHome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

namespace {

using testing::HasSubstr;

struct Expansion {
    char const* name;
    std::string events;
    std::vector<std::string> options;
    char const* lines;
};

void PrintTo(Expansion const& expansion, std::ostream* stream) {
    *stream << expansion.name;
}

class ExpansionJourneys : public testing::TestWithParam<Expansion> {};

TEST_P(ExpansionJourneys, printsOneObjectALine) {
    PrivateHome const home;
    auto const file = home.folder() / "a.ics";
    home.write(file, calendarFile(GetParam().events));
    std::vector<std::string> words = {"occurrences", file.string(), "--json"};
    words.insert(words.end(), GetParam().options.begin(), GetParam().options.end());
    EXPECT_EQ(home.outputOf(words), GetParam().lines);
}

std::vector<std::string> between(std::string from, std::string to) {
    return {"--from", std::move(from), "--to", std::move(to)};
}

std::vector<std::string> between(std::string from, std::string to, std::string zone) {
    return {"--from", std::move(from), "--to", std::move(to), "--zone", std::move(zone)};
}

INSTANTIATE_TEST_SUITE_P(
    Calendars, ExpansionJourneys,
    testing::Values(
        Expansion{"acrossAChangeOfClocks",
                  event("u1", "Early \\, call", ";TZID=Europe/Madrid:20260327T023000",
                        ";TZID=Europe/Madrid:20260327T033000", "RRULE:FREQ=DAILY;COUNT=4\r\n"),
                  between("2026-03-27", "2026-04-01", "Europe/Madrid"),
                  "{\"version\":1,\"start\":\"2026-03-27T01:30:00Z\",\"end\":\"2026-03-27T02:30:00Z\","
                  "\"allDay\":false,"
                  "\"title\":\"Early , call\",\"uid\":\"u1\"}\n"
                  "{\"version\":1,\"start\":\"2026-03-28T01:30:00Z\",\"end\":\"2026-03-28T02:30:00Z\","
                  "\"allDay\":false,"
                  "\"title\":\"Early , call\",\"uid\":\"u1\"}\n"
                  "{\"version\":1,\"start\":\"2026-03-29T01:30:00Z\",\"end\":\"2026-03-29T02:30:00Z\","
                  "\"allDay\":false,"
                  "\"title\":\"Early , call\",\"uid\":\"u1\"}\n"
                  "{\"version\":1,\"start\":\"2026-03-30T00:30:00Z\",\"end\":\"2026-03-30T01:30:00Z\","
                  "\"allDay\":false,"
                  "\"title\":\"Early , call\",\"uid\":\"u1\"}\n"},
        Expansion{"wholeDaysBearDates", event("d1", "Fair", ";VALUE=DATE:20260301", ";VALUE=DATE:20260303"),
                  between("2026-03-02", "2026-03-03"),
                  "{\"version\":1,\"start\":\"2026-03-01\",\"end\":\"2026-03-03\",\"allDay\":true,\"title\":"
                  "\"Fair\","
                  "\"uid\":\"d1\"}\n"},
        Expansion{"wholeDaysLieOnTheViewersDays",
                  event("d1", "Fair", ";VALUE=DATE:20260302", ";VALUE=DATE:20260303"),
                  between("2026-03-01T14:00Z", "2026-03-01T16:00Z", "Asia/Tokyo"),
                  "{\"version\":1,\"start\":\"2026-03-02\",\"end\":\"2026-03-03\",\"allDay\":true,\"title\":"
                  "\"Fair\","
                  "\"uid\":\"d1\"}\n"},
        Expansion{"floatingTimesAreTheViewers", event("f1", "Tea", ":20260311T090000", ":20260311T093000"),
                  between("2026-03-11", "2026-03-12", "Asia/Tokyo"),
                  "{\"version\":1,\"start\":\"2026-03-11T00:00:00Z\",\"end\":\"2026-03-11T00:30:00Z\","
                  "\"allDay\":false,"
                  "\"title\":\"Tea\",\"uid\":\"f1\"}\n"},
        Expansion{"boundsAreHalfOpen",
                  event("b1", "Ends at the start", ":20260311T080000Z", ":20260311T090000Z") +
                      event("b2", "Starts at the end", ":20260311T100000Z", ":20260311T110000Z") +
                      event("b3", "No length at the start", ":20260311T090000Z", ":20260311T090000Z") +
                      event("b4", "No length at the end", ":20260311T100000Z", ":20260311T100000Z"),
                  between("2026-03-11T09:00:00Z", "2026-03-11T10:00:00Z"),
                  "{\"version\":1,\"start\":\"2026-03-11T09:00:00Z\",\"end\":\"2026-03-11T09:00:00Z\","
                  "\"allDay\":false,"
                  "\"title\":\"No length at the start\",\"uid\":\"b3\"}\n"},
        Expansion{"earliestFirst",
                  event("s1", "Later", ":20260311T100000Z", ":20260311T103000Z") +
                      event("s2", "Earlier", ":20260311T080000Z", ":20260311T083000Z"),
                  between("2026-03-11", "2026-03-12"),
                  "{\"version\":1,\"start\":\"2026-03-11T08:00:00Z\",\"end\":\"2026-03-11T08:30:00Z\","
                  "\"allDay\":false,"
                  "\"title\":\"Earlier\",\"uid\":\"s2\"}\n"
                  "{\"version\":1,\"start\":\"2026-03-11T10:00:00Z\",\"end\":\"2026-03-11T10:30:00Z\","
                  "\"allDay\":false,"
                  "\"title\":\"Later\",\"uid\":\"s1\"}\n"},
        Expansion{"nothingIsNothing", event("n1", "Tea", ":20260311T090000Z", ":20260311T093000Z"),
                  between("2026-04-11", "2026-04-12"), ""}),
    [](auto const& instance) { return instance.param.name; });

std::string const tea = event("u1", "Tea", ":20260311T090000Z", ":20260311T093000Z");
std::string const teaLine =
    "{\"version\":1,\"start\":\"2026-03-11T09:00:00Z\",\"end\":\"2026-03-11T09:30:00Z\",\"allDay\":false,"
    "\"title\":\"Tea\",\"uid\":\"u1\"}\n";

TEST(OccurrencesJourneys, aFolderIsReadAsASourceIs) {
    PrivateHome const home;
    home.write(home.calendars() / "home" / "tea.ics", calendarFile(tea));
    home.write(home.calendars() / "work" / "a:b.ics",
               calendarFile(event("x:y", "", ";VALUE=DATE:20260311", ";VALUE=DATE:20260312")));
    EXPECT_EQ(
        home.outputOf({"occurrences", "calendars", "--from", "2026-03-11", "--to", "2026-03-12", "--json"}),
        "{\"version\":1,\"start\":\"2026-03-11\",\"end\":\"2026-03-12\",\"allDay\":true,\"title\":\"\","
        "\"uid\":\"x:y\"}\n" +
            teaLine);
    // A calendar's own folder works as well.
    EXPECT_EQ(home.outputOf(
                  {"occurrences", "calendars/home", "--from", "2026-03-11", "--to", "2026-03-12", "--json"}),
              teaLine);
}

TEST(OccurrencesJourneys, neitherSetupNorAccessIsNeeded) {
    PrivateHome home;
    for (auto const* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
        home.environment.erase(variable);
    home.write(home.folder() / "a.ics", calendarFile(tea));
    auto const before = home.snapshot();
    EXPECT_EQ(home.outputOf({"occurrences", "a.ics", "--from", "2026-03-11", "--to", "2026-03-12", "--json"}),
              teaLine);
    EXPECT_EQ(home.snapshot(), before);
}

TEST(OccurrencesJourneys, aSkippedEventIsNamedWithFileAndLine) {
    PrivateHome const home;
    home.write(
        home.folder() / "a.ics",
        calendarFile("BEGIN:VEVENT\r\nUID:b1\r\nSUMMARY:Broken\r\nDTSTART:nonsense\r\nEND:VEVENT\r\n" + tea));
    auto const result =
        home.quillora({"occurrences", "a.ics", "--from", "2026-03-11", "--to", "2026-03-12", "--json"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, teaLine);
    EXPECT_THAT(result.errors, HasSubstr("quillora: " + (home.folder() / "a.ics").string() + ":7: "));
    EXPECT_THAT(result.errors, HasSubstr("nonsense"));
}

TEST(OccurrencesJourneys, aFileThatIsNoCalendarIsAFailure) {
    PrivateHome const home;
    home.write(home.folder() / "page.ics", "<html>Log in</html>\n");
    home.write(home.folder() / "wide.ics", std::string_view("\xFF\xFE"
                                                            "B\0E\0",
                                                            6));
    home.write(home.folder() / "empty.ics", "");
    auto const occurrences = [&](std::string name) {
        return home.quillora(
            {"occurrences", std::move(name), "--from", "2026-03-11", "--to", "2026-03-12", "--json"});
    };
    auto const page = occurrences("page.ics");
    EXPECT_EQ(page.exitCode, 1);
    EXPECT_EQ(page.output, "");
    EXPECT_EQ(page.errors, "quillora: the file " + (home.folder() / "page.ics").string() +
                               " cannot be read: it is no iCalendar file\n");
    EXPECT_EQ(occurrences("wide.ics").exitCode, 1);
    // An empty file is a calendar without events.
    auto const empty = occurrences("empty.ics");
    EXPECT_EQ(empty.exitCode, 0);
    EXPECT_EQ(empty.errors, "");
}

TEST(OccurrencesJourneys, aFileThatIsNoCalendarCostsItsFolderNothing) {
    PrivateHome const home;
    home.write(home.calendars() / "page.ics", "<html>Log in</html>\n");
    home.write(home.calendars() / "tea.ics", calendarFile(tea));
    auto const result =
        home.quillora({"occurrences", "calendars", "--from", "2026-03-11", "--to", "2026-03-12", "--json"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, teaLine);
    EXPECT_THAT(result.errors, HasSubstr("it is no iCalendar file"));
}

TEST(OccurrencesJourneys, forAPersonItIsATable) {
    PrivateHome const home;
    home.write(home.folder() / "a.ics",
               calendarFile(tea + event("d1", "Fair", ";VALUE=DATE:20260311", ";VALUE=DATE:20260312")));
    EXPECT_EQ(home.outputOf({"occurrences", "a.ics", "--from", "2026-03-11", "--to", "2026-03-12"}),
              "2026-03-11        2026-03-12        Fair\n"
              "2026-03-11 10:00  2026-03-11 10:30  Tea\n");
}

TEST(OccurrencesJourneys, aReaderThatGoesAwayIsAFailureAndNoCrash) {
    PrivateHome const home;
    home.write(home.folder() / "a.ics", calendarFile(event("u1", "Tea", ":20000101T090000Z",
                                                           ":20000101T093000Z", "RRULE:FREQ=DAILY\r\n")));
    auto const result =
        home.quillora({"occurrences", "a.ics", "--from", "2000-01-01", "--to", "2026-01-01", "--json"},
                      ProgramRun::Output::readerGone);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.errors, "quillora: standard output could not be written: Broken pipe\n");
}

} // namespace
