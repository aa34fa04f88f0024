#include "PrivateHome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace {

namespace JSON = Foundation::JSON;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

// Meets of 2026-03-11, a Wednesday.
class MeetShowJourneys : public testing::Test {
protected:
    void SetUp() override {
        home.write(home.calendars() / "work" / "displayname", "Work");
        home.write(
            home.calendars() / "work" / "standup.ics",
            calendarFile(event("u1", "Stand-up", ":20260302T080000Z", ":20260302T081500Z",
                               "RRULE:FREQ=WEEKLY;BYDAY=MO,WE;UNTIL=20260501T200000Z\r\n"
                               "LOCATION:Room 1\r\nURL:https://example.org/a\r\n"
                               "DESCRIPTION:<p>&nbsp;</p><p>- Bring <b>coffee</b></p><p>more</p>\r\n")));
        home.write(home.calendars() / "work" / "fair.ics",
                   calendarFile(event("u2", "Fair", ";VALUE=DATE:20260311", ";VALUE=DATE:20260314")));
        home.setUp();
    }

    void add(std::string const& name, std::string const& rule) const {
        home.write(home.calendars() / "work" / (name + ".ics"),
                   calendarFile(event(name, name, ";TZID=Europe/Berlin:20260311T180000",
                                      ";TZID=Europe/Berlin:20260311T190000", rule + "\r\n")));
    }

    [[nodiscard]] std::string idOf(std::string const& name) const {
        auto const list = JSON::parse(home.outputOf({"meet", "show", "--day", "2026-03-11", "--json"}));
        for (auto const& meet : std::get<JSON::Array>(list.value().member("meetings")->storage))
            if (*meet.member("metName") == JSON::Value(name))
                return JSON::text(*meet.member("metId")).value();
        ADD_FAILURE() << "no meet is called " << name;
        return "none";
    }

    [[nodiscard]] std::string shown(std::string const& name) const {
        return home.outputOf({"meet", "show", idOf(name), "--day", "2026-03-11"});
    }

    PrivateHome home;
};

TEST_F(MeetShowJourneys, allThatTheCalendarTellsIsShown) {
    auto const id = idOf("Stand-up");
    auto const page = home.outputOf({"meet", "show", id, "--day", "2026-03-11"});
    EXPECT_EQ(page.substr(0, page.find("\n\n") + 2), "Stand-up\n"
                                                     "09:00 a.m. – 09:15 a.m.\n"
                                                     "Room 1\n"
                                                     "Bring coffee\n\n");
    EXPECT_THAT(page, HasSubstr("Day       Wednesday 2026-03-11\n"));
    EXPECT_THAT(page, HasSubstr("Calendar  Work ("));
    EXPECT_THAT(page, HasSubstr("Repeats   every week on Monday and Wednesday, until Friday 2026-05-01\n"));
    EXPECT_THAT(page, HasSubstr("Link      https://example.org/a\n"));
    EXPECT_THAT(page, EndsWith("Id        " + id + "\n"));
}

TEST_F(MeetShowJourneys, aBeginningOfTheIdWillDoInAnyForm) {
    auto const id = idOf("Stand-up");
    auto const page = shown("Stand-up");
    auto lower = id;
    std::ranges::transform(lower, lower.begin(), [](char character) {
        return character >= 'A' && character <= 'F' ? static_cast<char>(character + 32) : character;
    });
    auto plain = id;
    std::erase(plain, '-');
    for (auto const& name : {id.substr(0, 8), id.substr(0, 12), lower, plain})
        EXPECT_EQ(home.outputOf({"meet", "show", name, "--day", "2026-03-11"}), page) << name;
}

TEST_F(MeetShowJourneys, wholeDaysAreTold) {
    EXPECT_THAT(shown("Fair"), HasSubstr("Day       Wednesday 2026-03-11 – Friday 2026-03-13, all day\n"));
    EXPECT_THAT(shown("Fair"), HasSubstr("Repeats   no\n"));
}

TEST_F(MeetShowJourneys, rulesAreToldInWords) {
    struct Row {
        char const* name;
        char const* rule;
        char const* words;
    };
    for (auto const& row : std::vector<Row>{
             {"daily", "FREQ=DAILY", "every day"},
             {"seldom", "FREQ=DAILY;INTERVAL=10;COUNT=5", "every 10 days, 5 times in all"},
             {"weekly", "FREQ=WEEKLY;INTERVAL=2;BYDAY=MO,WE,FR",
              "every 2 weeks on Monday, Wednesday and Friday"},
             {"monthly", "FREQ=MONTHLY;BYMONTHDAY=11", "every month on day 11"},
             {"last", "FREQ=MONTHLY;BYMONTHDAY=-1", "every month on the last day"},
             {"second", "FREQ=MONTHLY;BYDAY=2WE", "every month on the second Wednesday"},
             {"lastWeekday", "FREQ=MONTHLY;BYDAY=-1FR", "every month on the last Friday"},
             {"yearly", "FREQ=YEARLY", "every year"},
             {"hourly", "FREQ=HOURLY;INTERVAL=8", "several times a day"},
         }) {
        add(row.name, std::string("RRULE:") + row.rule);
        EXPECT_THAT(shown(row.name), HasSubstr(std::string("Repeats   ") + row.words + "\n")) << row.name;
    }
}

TEST_F(MeetShowJourneys, anOccurrenceThatWasChangedByItselfSaysSo) {
    home.write(
        home.calendars() / "work" / "changed.ics",
        calendarFile(event("u9", "Choir", ":20260304T190000Z", ":20260304T200000Z", "RRULE:FREQ=WEEKLY\r\n") +
                     event("u9", "Choir, late", ":20260311T200000Z", ":20260311T210000Z",
                           "RECURRENCE-ID:20260311T190000Z\r\n")));
    EXPECT_THAT(shown("Choir, late"),
                HasSubstr("Repeats   its series does; this occurrence was changed by itself\n"));
}

TEST_F(MeetShowJourneys, withoutAnIdTheDayIsListed) {
    auto const fair = idOf("Fair").substr(0, 8);
    auto const standUp = idOf("Stand-up").substr(0, 8);
    EXPECT_EQ(home.outputOf({"meet", "show", "--day", "2026-03-11"}),
              "Wednesday 2026-03-11\n" + fair + "  all day     Fair      Work\n" + standUp +
                  "  09:00 a.m.  Stand-up  Work\n");
    EXPECT_EQ(home.outputOf({"meet", "show", "--day", "2026-03-12"}), "No meets on Thursday 2026-03-12\n");
}

TEST_F(MeetShowJourneys, aProgramGetsTheMeetAndWhatIsToldOfIt) {
    auto const id = idOf("Stand-up");
    auto const page = JSON::parse(home.outputOf({"meet", "show", id, "--day", "2026-03-11", "--json"}));
    ASSERT_TRUE(page.has_value());
    EXPECT_EQ(*page->member("version"), JSON::Value(1));
    EXPECT_EQ(*page->member("meet")->member("metId"), JSON::Value(id));
    EXPECT_EQ(*page->member("meet")->member("metDuration"), JSON::Value(900));
    JSON::Array const summary = {"Stand-up", "09:00 a.m. – 09:15 a.m.", "Room 1", "Bring coffee"};
    EXPECT_EQ(*page->member("summary"), JSON::Value(summary));
    EXPECT_EQ(*page->member("repetition"),
              JSON::Value("every week on Monday and Wednesday, until Friday 2026-05-01"));
}

TEST_F(MeetShowJourneys, aBeginningOfSeveralListsThem) {
    for (int number = 0; number < 40; ++number)
        add("Many" + std::to_string(number), "CLASS:PUBLIC");
    // With forty and two meets some digit begins several of them.
    std::string crowded;
    for (char const digit : std::string("0123456789ABCDEF")) {
        auto const result = home.quillora({"meet", "show", std::string(1, digit), "--day", "2026-03-11"});
        if (result.exitCode == 2) crowded = result.errors;
    }
    EXPECT_THAT(crowded, HasSubstr("06:00 p.m.  Many"));
    EXPECT_THAT(crowded, HasSubstr(" meets on Wednesday 2026-03-11 have ids that begin with \""));
    EXPECT_THAT(crowded, EndsWith("; type more of it\n"));
    EXPECT_GE(std::ranges::count(crowded, '\n'), 3);
}

TEST_F(MeetShowJourneys, anIdThatNoMeetHasFailsWithTheReasonLast) {
    auto const result =
        home.quillora({"meet", "show", "00000000-0000-0000-0000-000000000000", "--day", "2026-03-11"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors,
              "quillora: no meet on Wednesday 2026-03-11 has an id that begins with "
              "\"00000000-0000-0000-0000-000000000000\"; \"quillora meet show\" lists the ids of a day\n"
              "The event is no longer in the calendar. Nothing was changed; load the day again.\n");
}

TEST_F(MeetShowJourneys, whatNamesNoMeetIsWrongUse) {
    for (auto const* name : {"Stand-up", "", "-", "12g4", "1234 5678"}) {
        auto const result = home.quillora({"meet", "show", "--day", "2026-03-11", "--", name});
        EXPECT_EQ(result.exitCode, 2) << name;
        EXPECT_THAT(result.errors, HasSubstr("a meet is named by the beginning of its id")) << name;
    }
}

TEST_F(MeetShowJourneys, textsThatWouldHarmATerminalAreNeutralised) {
    home.write(
        home.calendars() / "work" / "evil.ics",
        calendarFile(event("u8", "Evil\x1B[31m\xE2\x80\xAEtxt", ":20260311T200000Z", ":20260311T210000Z",
                           "LOCATION:Here\x07\r\nDESCRIPTION:a\x9B\xE2\x80\xAA\\nb\r\n")));
    auto const list = home.outputOf({"meet", "show", "--day", "2026-03-11"});
    auto const marker = list.find("Evil");
    ASSERT_NE(marker, std::string::npos);
    auto const line = list.rfind('\n', marker) + 1;
    auto const page = home.outputOf({"meet", "show", list.substr(line, 8), "--day", "2026-03-11"});
    for (auto const& output : {list, page}) {
        EXPECT_THAT(output, Not(HasSubstr("\x1B")));
        EXPECT_THAT(output, Not(HasSubstr("\x07")));
        EXPECT_THAT(output, Not(HasSubstr("\xE2\x80\xAE")));
        EXPECT_THAT(output, HasSubstr("Evil\xEF\xBF\xBD[31m\xEF\xBF\xBDtxt"));
    }
}

TEST_F(MeetShowJourneys, withoutAccessItSaysWhatHelps) {
    ASSERT_EQ(home.quillora({"access", "deny"}).exitCode, 0);
    auto const result = home.quillora({"meet", "show"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.errors, "quillora: Quillora may not read your calendars; allow it with \"quillora "
                             "setup\" or \"quillora access grant\"\n");
}

TEST_F(MeetShowJourneys, whereTheCalendarsAreSwitchedOffItSaysSo) {
    std::filesystem::remove(home.container() / "enabledCalendarAccounts.json");
    auto const result = home.quillora({"meet", "show"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.errors, "quillora: the calendars of this computer are not switched on yet; run "
                             "\"quillora setup\"\n");
}

TEST_F(MeetShowJourneys, theDayIsTheOneThatTheWidgetStandsOn) {
    auto const before = home.outputOf({"meet", "show", "--offset", "3"});
    home.write(home.container() / "scheduleWidgetDayOffset.json", "3");
    EXPECT_EQ(home.outputOf({"meet", "show"}), before);
    EXPECT_EQ(home.contentOf(home.container() / "scheduleWidgetDayOffset.json"), "3");
}

TEST_F(MeetShowJourneys, accountsAreListedWithTheirCalendars) {
    std::filesystem::create_directory(home.folder() / "empty");
    ASSERT_EQ(
        home.quillora({"sources", "add", (home.folder() / "empty").string(), "--title", "Nothing"}).exitCode,
        0);
    auto const document = JSON::parse(home.outputOf({"calendars", "list", "--accounts", "--json"}));
    auto const& accounts = std::get<JSON::Array>(document.value().member("accounts")->storage);
    ASSERT_EQ(accounts.size(), 3U);
    auto const id = [&](std::size_t index) { return JSON::text(*accounts[index].member("eacId")).value(); };
    EXPECT_EQ(id(0), "quillora-native-calendar");
    EXPECT_EQ(*accounts[1].member("eacAccountTitle"), JSON::Value("Cal"));
    EXPECT_EQ(*accounts[1].member("eacAccountType"), JSON::Value("Local"));
    EXPECT_EQ(*accounts[2].member("eacCalendars"), JSON::Value(JSON::Array{}));
    EXPECT_EQ(home.outputOf({"calendars", "list", "--accounts"}),
              "quillora-native-calendar  Quillora  (Local)\n"
              "  quillora-native-calendar  Quillora  #5CC2C6\n" +
                  id(1) + "  Cal  (Local)\n  " + id(1) + "/work  Work  #5CC2C6\n" + id(2) +
                  "  Nothing  (Local)\n  no calendars\n");
}

} // namespace
