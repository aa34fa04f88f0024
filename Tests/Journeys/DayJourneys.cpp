#include "PrivateHome.h"

#include "Foundation/Text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

namespace JSON = Foundation::JSON;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

// A working week in two calendars; 2026-03-11 is a Wednesday.
class DayJourneys : public testing::Test {
protected:
    void SetUp() override {
        home.write(home.calendars() / "work" / "displayname", "Work");
        home.write(home.calendars() / "work" / "color", "#D1495B");
        home.write(home.calendars() / "work" / "standup.ics",
                   calendarFile(event("u1", "Stand-up", ":20260302T080000Z", ":20260302T081500Z",
                                      "RRULE:FREQ=WEEKLY;BYDAY=MO,WE\r\nURL:https://example.org/a\r\n")));
        home.write(home.calendars() / "work" / "review.ics",
                   calendarFile(event("u2", "Review", ";TZID=Europe/Berlin:20260311T140000",
                                      ";TZID=Europe/Berlin:20260311T153000", "LOCATION:Room 1\r\n")));
        home.write(home.calendars() / "home" / "fair.ics",
                   calendarFile(event("u3", "Fair", ";VALUE=DATE:20260311", ";VALUE=DATE:20260312")));
        home.write(home.calendars() / "home" / "thursday.ics",
                   calendarFile(event("u4", "Dentist", ":20260312T090000Z", ":20260312T093000Z")));
        home.setUp();
        root = JSON::text(
                   *std::get<JSON::Array>(
                        JSON::parse(home.outputOf({"sources", "list", "--json"}))->member("sources")->storage)
                        .front()
                        .member("id"))
                   .value();
    }

    PrivateHome home;
    std::string root; // The source's id.
    std::string const at = "2026-03-11T08:00";
};

TEST_F(DayJourneys, theDayIsPrintedAsText) {
    EXPECT_EQ(home.outputOf({"day", "--at", at}), "Wednesday 11\n"
                                                  "\n"
                                                  "All day\n"
                                                  "▌ Fair\n"
                                                  "\n"
                                                  "▌ 09:00 a.m.  Stand-up     15m\n"
                                                  "▌ 02:00 p.m.  Review    1h 30m\n");
}

TEST_F(DayJourneys, theDayIsPrintedForPrograms) {
    auto const day = home.dayJSON({"--at", at});
    auto const meet = [&](std::size_t index) {
        return std::get<JSON::Array>(day.member("meetings")->storage)[index];
    };
    EXPECT_EQ(*day.member("version"), JSON::Value(1));
    EXPECT_EQ(*day.member("date"), JSON::Value("2026-03-11T07:00:00Z"));
    EXPECT_EQ(*day.member("dayOffset"), JSON::Value(0));
    EXPECT_EQ(*day.member("hasAccessError"), JSON::Value(false));
    EXPECT_EQ(*day.member("reloadAfter"), JSON::Value("2026-03-11T07:15:00Z"));
    EXPECT_THAT(meetNames(day), ElementsAre("Fair", "Stand-up", "Review"));

    auto const identifier = *meet(1).member("metId");
    JSON::Object const standUp = {{"metId", identifier},
                                  {"metName", "Stand-up"},
                                  {"metDate", "2026-03-11T08:00:00Z"},
                                  {"metDescription", ""},
                                  {"metDuration", JSON::Value(900)},
                                  {"metColor", "#D1495B"},
                                  {"metIsAllDay", false},
                                  {"metUrl", "https://example.org/a"},
                                  {"metCalendarName", "Work"},
                                  {"metCalendarIdentifier", root + "/work"},
                                  {"metRecurrenceFrequency", "weekly"},
                                  {"metRecurringWeekdays", JSON::Array{2, 4}},
                                  {"metOriginalIdentifier", root + "/work:u1"},
                                  {"metSource", "eventKit"}};
    EXPECT_EQ(meet(1), JSON::Value(standUp));
    EXPECT_EQ(*meet(2).member("metLocation"), JSON::Value("Room 1"));
    EXPECT_EQ(meet(2).member("metUrl"), nullptr);

    auto const rows = JSON::parse(R"([{"kind":"header","weekday":"Wednesday","day":11},
        {"kind":"label","text":"All day"},{"kind":"bar","name":"Fair","color":"#5CC2C6"},
        {"kind":"space","height":15},
        {"kind":"card","name":"Stand-up","time":"09:00 a.m.","duration":"15m","color":"#D1495B"},
        {"kind":"card","name":"Review","time":"02:00 p.m.","duration":"1h 30m","color":"#D1495B"}])");
    EXPECT_EQ(*day.member("face")->member("rows"), rows.value());
    EXPECT_EQ(*day.member("face")->member("family"), JSON::Value("large"));
}

TEST_F(DayJourneys, anOccurrenceHasTheSameIdentifierAtEveryLook) {
    auto const first = home.outputOf({"day", "--at", at, "--json"});
    EXPECT_EQ(home.outputOf({"day", "--at", at, "--json"}), first);
}

TEST_F(DayJourneys, smallAndMediumShowNoWholeDays) {
    EXPECT_EQ(home.outputOf({"day", "--at", at, "--family", "small"}),
              "Wednesday 11\n\n▌ 09:00  Stand-up\n▌ 02:00  Review\n");
    EXPECT_EQ(home.outputOf({"day", "--at", at, "--family", "medium"}),
              "Wednesday 11\n\n▌ 09:00 a.m.  Stand-up     15m\n▌ 02:00 p.m.  Review    1h 30m\n");
}

TEST_F(DayJourneys, todaysEndedMeetsAreGoneFromTheFaceOnly) {
    auto const day = home.dayJSON({"--at", "2026-03-11T12:00", "--family", "small"});
    EXPECT_THAT(meetNames(day), ElementsAre("Fair", "Stand-up", "Review"));
    EXPECT_EQ(home.outputOf({"day", "--at", "2026-03-11T12:00", "--family", "small"}),
              "Wednesday 11\n\n▌ 02:00  Review\n");
}

TEST_F(DayJourneys, anotherDayIsLookedAtWithoutMovingTheWidget) {
    auto const before = home.snapshot();
    EXPECT_THAT(meetNames(home.dayJSON({"--at", at, "--offset", "1"})), ElementsAre("Dentist"));
    EXPECT_THAT(meetNames(home.dayJSON({"--at", at, "--day", "2026-03-12"})), ElementsAre("Dentist"));
    EXPECT_THAT(meetNames(home.dayJSON({"--at", at, "--offset", "-2"})), ElementsAre("Stand-up"));
    EXPECT_EQ(home.snapshot(), before);
    EXPECT_EQ(*home.dayJSON({"--at", at, "--offset", "-2"}).member("dayOffset"), JSON::Value(-2));
}

TEST_F(DayJourneys, aDayBeyondTheButtonsIsShownWhole) {
    auto const day = home.dayJSON({"--at", "2025-12-31T23:30", "--day", "2026-03-11"});
    EXPECT_THAT(meetNames(day), ElementsAre("Fair", "Stand-up", "Review"));
    EXPECT_EQ(*day.member("dayOffset"), JSON::Value(70));
    EXPECT_EQ(*day.member("date"), JSON::Value("2026-03-11T22:30:00Z"));
    EXPECT_EQ(*day.member("reloadAfter"), JSON::Value("2025-12-31T22:45:00Z"));
    auto const back = home.dayJSON({"--at", "2026-06-01T12:00", "--day", "2026-03-11"});
    EXPECT_THAT(meetNames(back), ElementsAre("Fair", "Stand-up", "Review"));
}

TEST_F(DayJourneys, theStoredDayIsTheOneShown) {
    ASSERT_EQ(home.quillora({"next"}).exitCode, 0);
    EXPECT_THAT(meetNames(home.dayJSON({"--at", at})), ElementsAre("Dentist"));
    EXPECT_THAT(meetNames(home.dayJSON({"--at", at, "--offset", "0"})),
                ElementsAre("Fair", "Stand-up", "Review"));
}

TEST_F(DayJourneys, aHiddenCalendarIsLeftOut) {
    EXPECT_EQ(home.outputOf({"calendars", "hide", root + "/work"}), "Hid \"Work\"\n");
    EXPECT_THAT(meetNames(home.dayJSON({"--at", at})), ElementsAre("Fair"));
    EXPECT_THAT(home.outputOf({"calendars", "list"}), HasSubstr("Work  #D1495B  hidden\n"));
    EXPECT_EQ(home.outputOf({"calendars", "show", root + "/work"}), "Shows \"Work\"\n");
    EXPECT_THAT(meetNames(home.dayJSON({"--at", at})), ElementsAre("Fair", "Stand-up", "Review"));
}

TEST_F(DayJourneys, calendarsAreListedForPrograms) {
    ASSERT_EQ(home.quillora({"calendars", "hide", root + "/home"}).exitCode, 0);
    auto const list = JSON::parse(home.outputOf({"calendars", "list", "--json"}));
    auto const expected = JSON::parse(R"({"version":1,"accounts":[
        {"eacId":"quillora-native-calendar","eacAccountTitle":"Quillora","eacAccountType":"Local","eacCalendars":[
            {"eciId":"quillora-native-calendar","eciTitle":"Quillora","eciColorHex":"#5CC2C6","isHidden":false}]},
        {"eacId":"ROOT","eacAccountTitle":"Cal","eacAccountType":"Local","eacCalendars":[
            {"eciId":"ROOT/home","eciTitle":"home","eciColorHex":"#5CC2C6","isHidden":true},
            {"eciId":"ROOT/work","eciTitle":"Work","eciColorHex":"#D1495B","isHidden":false}]}]})");
    // The id is worked out from the folder's path, which differs from run to run.
    auto text = JSON::serialize(expected.value()).value();
    for (auto place = text.find("ROOT"); place != std::string::npos; place = text.find("ROOT"))
        text.replace(place, 4, root);
    EXPECT_EQ(list.value(), JSON::parse(text).value());
}

TEST_F(DayJourneys, picturesHaveTheSizeOfTheirFamilyAndScale) {
    struct Size {
        std::string family;
        std::string scale;
        std::uint32_t width;
        std::uint32_t height;
    };
    for (auto const& size :
         {Size{"small", "1", 170, 170}, Size{"medium", "1", 364, 170}, Size{"large", "1", 364, 382},
          Size{"large", "2", 728, 764}, Size{"small", "1.5", 255, 255}}) {
        auto const file = home.folder() / "day.png";
        ASSERT_EQ(
            home.outputOf({"day", "--at", at, "--family", size.family, "--scale", size.scale, "--png", file}),
            "");
        auto const picture = home.contentOf(file);
        ASSERT_GT(picture.size(), 24U);
        EXPECT_EQ(picture.substr(0, 8), "\x89PNG\r\n\x1a\n");
        auto const number = [&](std::size_t place) {
            std::uint32_t value = 0;
            for (std::size_t index = 0; index < 4; ++index)
                value = value << 8U | static_cast<unsigned char>(picture[place + index]);
            return value;
        };
        EXPECT_EQ(number(16), size.width) << size.family << size.scale;
        EXPECT_EQ(number(20), size.height) << size.family << size.scale;
    }
}

TEST_F(DayJourneys, severalOutputsComeFromOneLook) {
    auto const output = home.outputOf({"day", "--at", at, "--png", "a.png", "--svg", "a.svg", "--pdf",
                                       "a.pdf", "--scheme", "dark", "--text", "--family", "small"});
    EXPECT_EQ(output, "Wednesday 11\n\n▌ 09:00  Stand-up\n▌ 02:00  Review\n");
    EXPECT_THAT(home.contentOf(home.folder() / "a.png"), StartsWith("\x89PNG"));
    EXPECT_THAT(home.contentOf(home.folder() / "a.svg"), StartsWith("<?xml"));
    EXPECT_THAT(home.contentOf(home.folder() / "a.pdf"), StartsWith("%PDF"));
}

TEST_F(DayJourneys, aPictureMayGoToStandardOutput) {
    EXPECT_THAT(home.outputOf({"day", "--at", at, "--svg", "-"}), StartsWith("<?xml"));
}

TEST_F(DayJourneys, coloursAreForTerminalsThatWantThem) {
    home.environment["TERM"] = "xterm-256color";
    auto const words = std::vector<std::string>{"day", "--at", at};
    EXPECT_THAT(home.quillora(words, ProgramRun::Output::terminal).output,
                HasSubstr("\x1b[38;2;209;73;91m▌\x1b[0m"));
    EXPECT_THAT(home.quillora(words).output, testing::Not(HasSubstr("\x1b")));
    home.environment["NO_COLOR"] = "1";
    EXPECT_THAT(home.quillora(words, ProgramRun::Output::terminal).output, testing::Not(HasSubstr("\x1b")));
    home.environment.erase("NO_COLOR");
    home.environment["TERM"] = "dumb";
    EXPECT_THAT(home.quillora(words, ProgramRun::Output::terminal).output, testing::Not(HasSubstr("\x1b")));
}

TEST_F(DayJourneys, aReaderThatGoesAwayIsAFailureAndNoCrash) {
    auto const result = home.quillora({"day", "--at", at}, ProgramRun::Output::readerGone);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.errors, "quillora: standard output could not be written: Broken pipe\n");
    auto const full = home.quillora({"day", "--at", at}, ProgramRun::Output::fullDevice);
    EXPECT_EQ(full.exitCode, 1);
    EXPECT_EQ(full.errors, "quillora: standard output could not be written: No space left on device\n");
}

TEST_F(DayJourneys, withoutAccessTheFaceSaysSoAndTheHintMendsIt) {
    EXPECT_EQ(home.outputOf({"access", "deny"}), "Calendar access: denied\n");
    auto const result = home.quillora({"day", "--at", at});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, "Wednesday 11\n\nNo access to your calendars\n");
    EXPECT_EQ(result.errors,
              "quillora: Quillora may not read your calendars; allow it with \"quillora setup\" or "
              "\"quillora access grant\"\n");
    EXPECT_EQ(*home.dayJSON({"--at", at}).member("hasAccessError"), JSON::Value(true));
    EXPECT_EQ(home.outputOf({"access", "grant"}), "Calendar access: granted\n");
    EXPECT_THAT(meetNames(home.dayJSON({"--at", at})), ElementsAre("Fair", "Stand-up", "Review"));
}

TEST_F(DayJourneys, aHostileLocaleAndZoneChangeOnlyWhatTheyShould) {
    home.environment["LANG"] = "tr_TR.ISO-8859-9";
    home.environment["LC_ALL"] = "tr_TR.ISO-8859-9";
    home.environment["TZ"] = "Asia/Kathmandu";
    auto const day = home.dayJSON({"--at", "2026-03-11T08:00"});
    EXPECT_EQ(*day.member("date"), JSON::Value("2026-03-11T02:15:00Z"));
    EXPECT_EQ(home.outputOf({"day", "--at", "2026-03-11T08:00", "--family", "medium"}),
              "Çarşamba 11\n\n▌ 01:45 p.m.  Stand-up     15m\n▌ 06:45 p.m.  Review    1h 30m\n");
}

TEST_F(DayJourneys, thePersonsLanguageIsSpoken) {
    home.environment["LANG"] = "es_ES.UTF-8";
    EXPECT_EQ(home.outputOf({"day", "--at", "2026-03-11T23:00", "--family", "small"}),
              "Miércoles 11\n\nSin eventos\n");
}

TEST_F(DayJourneys, aZoneThatNobodyKnowsFallsBackToTheSystems) {
    home.environment["TZ"] = "Nowhere/Atall";
    home.environment["LC_ALL"] = "xx_YY";
    EXPECT_EQ(home.quillora({"day"}).exitCode, 0);
}

TEST_F(DayJourneys, foreignTextsReachNeitherTheTerminalNorTheErrors) {
    home.write(
        home.calendars() / "work" / "evil.ics",
        calendarFile(event("u9", "\x1b]0;owned\x07\\n\xff", ":20260311T060000Z", ":20260311T070000Z")));
    auto const result = home.quillora({"day", "--at", "2026-03-11T06:00"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.output, testing::Not(HasSubstr("\x1b")));
    EXPECT_TRUE(Foundation::Text::isValidUTF8(result.output));
    EXPECT_TRUE(Foundation::Text::isValidUTF8(home.outputOf({"day", "--at", "2026-03-11T06:00", "--json"})));
}

TEST_F(DayJourneys, aBrokenEventIsNamedAndCostsNoOther) {
    home.write(
        home.calendars() / "work" / "broken.ics",
        calendarFile("BEGIN:VEVENT\r\nUID:b1\r\nSUMMARY:Broken\r\nDTSTART:nonsense\r\nEND:VEVENT\r\n"));
    auto const result = home.quillora({"day", "--at", at, "--family", "small"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, "Wednesday 11\n\n▌ 09:00  Stand-up\n▌ 02:00  Review\n");
    auto const file = (home.calendars() / "work" / "broken.ics").string();
    EXPECT_THAT(result.errors, StartsWith("quillora: " + file + ":"));
    EXPECT_THAT(result.errors, HasSubstr("nonsense"));
}

TEST_F(DayJourneys, whatCannotBeReadIsNamedAndTheRestShown) {
    if (!canGiveUpOverride()) GTEST_SKIP() << "here root cannot give up its power to read everything";
    std::filesystem::permissions(home.calendars() / "home", std::filesystem::perms::none);
    auto const folder = home.quilloraWithoutOverride({"day", "--at", at});
    EXPECT_EQ(folder.exitCode, 0);
    EXPECT_EQ(folder.output,
              "Wednesday 11\n\n▌ 09:00 a.m.  Stand-up     15m\n▌ 02:00 p.m.  Review    1h 30m\n");
    EXPECT_THAT(folder.errors, HasSubstr((home.calendars() / "home").string()));

    std::filesystem::permissions(home.calendars() / "home", std::filesystem::perms::owner_all);
    std::filesystem::permissions(home.calendars() / "work" / "review.ics", std::filesystem::perms::none);
    auto const file = home.quilloraWithoutOverride({"day", "--at", at, "--family", "small"});
    EXPECT_EQ(file.exitCode, 0);
    EXPECT_EQ(file.output, "Wednesday 11\n\n▌ 09:00  Stand-up\n");
    EXPECT_THAT(file.errors, HasSubstr((home.calendars() / "work" / "review.ics").string()));
}

TEST_F(DayJourneys, manyProblemsAreCountedNotRecited) {
    std::string events;
    for (int index = 0; index < 30; ++index)
        events += "BEGIN:VEVENT\r\nUID:b" + std::to_string(index) + "\r\nDTSTART:x\r\nEND:VEVENT\r\n";
    home.write(home.calendars() / "work" / "broken.ics", calendarFile(events));
    auto const result = home.quillora({"day", "--at", at});
    EXPECT_EQ(std::ranges::count(result.errors, '\n'), 11);
    EXPECT_THAT(result.errors, HasSubstr("quillora: 20 more of these; QUILLORA_LOG=error shows them all\n"));
}

} // namespace
