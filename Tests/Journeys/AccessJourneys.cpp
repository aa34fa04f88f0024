#include "PrivateHome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

constexpr char const* question = "May it read and change your calendars? [yes/no] ";

TEST(AccessJourneys, aRequestAsksOnceAndTellsTheAnswer) {
    PrivateHome const home;
    std::string const refusal = "nobody could be asked, because there is no terminal here, and no answer was "
                                "recorded; run \"quillora access request\" in a terminal, or allow it with "
                                "\"quillora access grant\"";
    // With nobody to ask nothing is recorded.
    auto const unasked = home.quillora({"access", "request"});
    EXPECT_EQ(unasked.exitCode, 2);
    EXPECT_EQ(unasked.output, "");
    EXPECT_EQ(unasked.errors, "quillora: " + refusal + "\n");
    EXPECT_EQ(home.outputOf({"access", "status"}), "Calendar access: not asked yet\n");

    auto const denied = home.quillora({"access", "request"}, ProgramRun::Output::terminal, "no\n");
    EXPECT_EQ(denied.exitCode, 1) << denied.output;
    EXPECT_THAT(denied.output,
                HasSubstr("quillora: Quillora may not read your calendars; \"quillora access "
                          "grant\" allows it without a question\r\nCalendar access was denied"));
    EXPECT_EQ(home.outputOf({"access", "status"}), "Calendar access: denied\n");
    // Who has answered is not asked again.
    auto const again = home.quillora({"access", "request"}, ProgramRun::Output::terminal, "yes\n");
    EXPECT_EQ(again.exitCode, 1) << again.output;
    EXPECT_EQ(home.outputOf({"access", "status"}), "Calendar access: denied\n");

    static_cast<void>(home.outputOf({"access", "reset"}));
    auto const granted = home.quillora({"access", "request"}, ProgramRun::Output::terminal, "yes\n");
    EXPECT_EQ(granted.exitCode, 0) << granted.output;
    EXPECT_THAT(granted.output, HasSubstr("Calendar access: granted"));
    EXPECT_EQ(home.outputOf({"access", "request"}), "Calendar access: granted\n");
}

TEST(AccessJourneys, aWriteOnlyRecordIsADenialWithoutAQuestion) {
    PrivateHome const home;
    home.write(home.configuration() / "calendar-access.json", "4");
    auto const result = home.quillora({"access", "request"}, ProgramRun::Output::terminal, "yes\n");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.output, HasSubstr("Calendar access was denied"));
    EXPECT_EQ(home.contentOf(home.configuration() / "calendar-access.json"), "4");
}

TEST(AccessJourneys, everyAnswerOnATerminalIsUnderstoodOrAskedAgain) {
    struct Row {
        char const* name;
        char const* typed;
        char const* record; // Empty for none.
    };
    for (auto const& row : std::vector<Row>{{"y", "y\n", "3"},
                                            {"YES", "YES\n", "3"},
                                            {"blanks around", "  yes \n", "3"},
                                            {"n", "N\n", "2"},
                                            {"second thought", "perhaps\nno\n", "2"},
                                            {"three times unclear", "a\nb\nc\n", ""},
                                            {"an empty line, then the end", "\n\x04", ""},
                                            {"the end at once", "\x04", ""}}) {
        PrivateHome const home;
        auto const result = home.quilloraAsked({"access", "request"}, question, row.typed);
        EXPECT_EQ(result.exitCode, std::string(row.record) == "3" ? 0 : 1) << row.name << result.output;
        EXPECT_EQ(home.contentOf(home.configuration() / "calendar-access.json"), row.record) << row.name;
    }
}

TEST(AccessJourneys, aQuestionThatIsNotAnsweredIsNotCalledADenial) {
    PrivateHome const home;
    auto const result = home.quilloraAsked({"access", "request"}, question, "\x04");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.output,
                HasSubstr(std::string(question) +
                          "\r\nquillora: the question was not answered, and no answer was recorded; run "
                          "\"quillora access request\" again, or allow it with \"quillora access grant\"\r\n"
                          "Calendar access was denied\r\n"));
    EXPECT_EQ(home.outputOf({"access", "status"}), "Calendar access: not asked yet\n");

    auto const setup = home.quilloraAsked({"setup"}, question, "\x04\x04\x04");
    EXPECT_EQ(setup.exitCode, 1);
    EXPECT_THAT(setup.output,
                HasSubstr("calendar access was not granted, because the question was not answered"));
}

TEST(AccessJourneys, interruptedAtTheQuestionNothingIsRecorded) {
    PrivateHome const home;
    auto const result = home.quilloraAsked({"access", "request"}, question, "\x03");
    EXPECT_EQ(result.exitCode, 130) << result.output;
    EXPECT_THAT(result.output,
                testing::HasSubstr("quillora: interrupted at the question; what was done before "
                                   "it stays, and nothing was done after it"));
    EXPECT_FALSE(fs::exists(home.configuration() / "calendar-access.json"));
    EXPECT_EQ(home.outputOf({"access", "status"}), "Calendar access: not asked yet\n");
}

// A home whose only folder of calendars is closed to the person.
class ClosedFolderJourneys : public testing::Test {
protected:
    void SetUp() override {
        if (!canGiveUpOverride()) GTEST_SKIP() << "here root cannot give up its power to read everything";
        home.write(home.calendars() / "home" / "tea.ics",
                   calendarFile(event("u1", "Tea", ":20260311T090000Z", ":20260311T093000Z")));
        home.setUp();
        fs::remove_all(home.folder() / "data/Quillora/Calendars");
    }
    void TearDown() override {
        std::error_code nothingThere; // Where the test was skipped.
        fs::permissions(home.calendars(), fs::perms::owner_all, nothingThere);
    }
    [[nodiscard]] std::string remedy() const {
        return home.calendars().string() + " cannot be opened; allow it with: chmod u+rx " +
               home.calendars().string() + "\n";
    }

    PrivateHome home;
};

TEST_F(ClosedFolderJourneys, aStoreThatRefusesIsADenialWhateverTheRecordSays) {
    fs::permissions(home.calendars(), fs::perms::none);
    auto const status = home.quilloraWithoutOverride({"access", "status"});
    EXPECT_EQ(status.exitCode, 0);
    EXPECT_EQ(status.output,
              "Calendar access: denied, because no calendar folder can be opened\n" + remedy());
    EXPECT_EQ(status.errors, "");
    // The record is what it was, and to grant it once more does not help.
    EXPECT_EQ(home.contentOf(home.configuration() / "calendar-access.json"), "3");
    EXPECT_EQ(home.quilloraWithoutOverride({"access", "grant"}).output, status.output);

    auto const request = home.quilloraWithoutOverride({"access", "request"});
    EXPECT_EQ(request.exitCode, 1);
    EXPECT_EQ(request.errors, "quillora: " + remedy() + "Calendar access was denied\n");

    auto const day = home.quilloraWithoutOverride({"day", "--day", "2026-03-11"});
    EXPECT_EQ(day.errors, "quillora: " + remedy());
    EXPECT_THAT(day.output, Not(HasSubstr("Tea")));
    auto const list = home.quilloraWithoutOverride({"calendars", "list"});
    EXPECT_EQ(list.exitCode, 1);
    EXPECT_EQ(list.errors, "quillora: " + remedy());

    fs::permissions(home.calendars(), fs::perms::owner_all);
    EXPECT_EQ(home.quilloraWithoutOverride({"access", "status"}).output, "Calendar access: granted\n");
}

TEST_F(ClosedFolderJourneys, theFolderAboveThatIsClosedIsTheOneToOpen) {
    auto const above = home.folder() / "Ann's $HOME";
    fs::create_directory(above);
    fs::rename(home.calendars(), above / "calendars");
    ASSERT_EQ(home.quillora({"sources", "remove", "Cal"}).exitCode, 2); // Named by its path or id.
    ASSERT_EQ(home.quillora({"sources", "remove", home.calendars().string()}).exitCode, 0);
    ASSERT_EQ(home.quillora({"sources", "add", (above / "calendars").string()}).exitCode, 0);
    fs::permissions(above, fs::perms::none);
    auto const status = home.quilloraWithoutOverride({"access", "status"});
    EXPECT_THAT(status.output,
                HasSubstr((above / "calendars").string() + " cannot be opened; allow it with: chmod u+rx '" +
                          home.folder().string() + "/Ann'\\''s $HOME'\n"));
    fs::permissions(above, fs::perms::owner_all);
    fs::rename(above / "calendars", home.calendars());
}

TEST_F(ClosedFolderJourneys, oneClosedFolderAmongOthersIsNamedAndTheRestIsShown) {
    home.write(home.folder() / "open" / "home" / "cake.ics",
               calendarFile(event("u2", "Cake", ":20260311T100000Z", ":20260311T103000Z")));
    ASSERT_EQ(home.quillora({"sources", "add", (home.folder() / "open").string()}).exitCode, 0);
    fs::permissions(home.calendars(), fs::perms::none);
    auto const status = home.quilloraWithoutOverride({"access", "status"});
    EXPECT_EQ(status.output, "Calendar access: granted\n" + remedy());
    EXPECT_THAT(home.quilloraWithoutOverride({"day", "--day", "2026-03-11"}).output, HasSubstr("Cake"));
}

} // namespace
