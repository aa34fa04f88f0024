#include "PrivateHome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>

namespace {

namespace JSON = Foundation::JSON;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

std::string const oneEvent = calendarFile(event("u1", "Tea", ":20260311T090000Z", ":20260311T093000Z"));

// A home in use, with one calendar and the widget two days ahead.
class BadInputJourneys : public testing::Test {
protected:
    void SetUp() override {
        home.write(home.calendars() / "home" / "tea.ics", oneEvent);
        home.setUp();
        home.write(home.container() / "scheduleWidgetDayOffset.json", "2");
    }

    PrivateHome home;
    std::vector<std::string> const look = {"--at", "2026-03-09T08:00"};
};

struct WrongUse {
    char const* name;
    std::vector<std::string> words;
    char const* mentions; // What the one line must name.
};

void PrintTo(WrongUse const& wrongUse, std::ostream* stream) {
    *stream << wrongUse.name;
}

class WrongUseJourneys : public BadInputJourneys, public testing::WithParamInterface<WrongUse> {};

TEST_P(WrongUseJourneys, isOneLineAndChangesNothing) {
    auto const before = home.snapshot();
    auto const result = home.quillora(GetParam().words);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, StartsWith("quillora: "));
    EXPECT_THAT(result.errors, HasSubstr(GetParam().mentions));
    EXPECT_EQ(std::ranges::count(result.errors, '\n'), 1);
    EXPECT_TRUE(result.errors.ends_with('\n'));
    EXPECT_EQ(home.snapshot(), before);
}

INSTANTIATE_TEST_SUITE_P(
    CommandLines, WrongUseJourneys,
    testing::Values(
        WrongUse{"command", {"dya"}, "\"dya\""}, WrongUse{"option", {"day", "--frob"}, "\"--frob\""},
        WrongUse{"optionWithAPicture", {"day", "--png", "a.png", "--frob"}, "\"--frob\""},
        WrongUse{"twoPicturesInOneFile", {"day", "--png", "a.png", "--svg", "a.png"}, "--png and --svg"},
        WrongUse{"twoPicturesInOneFileByAnotherName",
                 {"day", "--svg", "a.png", "--pdf", "calendars/../a.png"},
                 "--svg and --pdf"},
        WrongUse{"pictureAndDocumentOnStandardOutput",
                 {"day", "--png", "/dev/stdout", "--json"},
                 "standard output takes one thing at a time"},
        WrongUse{"pictureWithoutAName", {"day", "--png", "--"}, "--png needs a value"},
        WrongUse{"family", {"day", "--family", "huge", "--png", "a.png"}, "\"huge\""},
        WrongUse{"familyNotOffered", {"day", "--family", "extraLarge"}, "\"extraLarge\""},
        WrongUse{"offset", {"day", "--offset", "two"}, "\"two\""},
        WrongUse{"offsetWithAFraction", {"day", "--offset", "1.5"}, "\"1.5\""},
        WrongUse{"offsetPastTheCalendar", {"day", "--offset", "9223372036854775807"}, "9223372036854775807"},
        WrongUse{"date", {"day", "--day", "2026-02-30", "--png", "a.png"}, "\"2026-02-30\""},
        WrongUse{"dateWithATime", {"day", "--day", "2026-02-03T10:00"}, "\"2026-02-03T10:00\""},
        WrongUse{"dateInWords", {"day", "--day", "tomorrow"}, "\"tomorrow\""},
        WrongUse{"moment", {"day", "--at", "noon"}, "\"noon\""},
        WrongUse{"meetShowTwice", {"meet", "show", "85", "86"}, "\"86\""},
        WrongUse{"meetShowNoId", {"meet", "show", "Tea"}, "\"Tea\""},
        WrongUse{"meetAddWithoutAName", {"meet", "add", "--start", "09:00"}, "--name"},
        WrongUse{"meetAddWithoutAStart", {"meet", "add", "--name", "Tea"}, "--start"},
        WrongUse{"meetAddAtNoTime", {"meet", "add", "--name", "Tea", "--start", "25:00"}, "\"25:00\""},
        WrongUse{"meetAddOnADayAlone",
                 {"meet", "add", "--name", "Tea", "--start", "2026-03-11"},
                 "--start needs a time"},
        WrongUse{"meetAddAWholeDayAtATime",
                 {"meet", "add", "--name", "Tea", "--all-day", "--start", "09:00"},
                 "--start takes a day"},
        WrongUse{"meetAddAWholeDayOfMinutes",
                 {"meet", "add", "--name", "Tea", "--all-day", "--duration", "30m"},
                 "--duration"},
        WrongUse{"meetAddOfNoLength",
                 {"meet", "add", "--name", "Tea", "--start", "09:00", "--duration", "-5"},
                 "\"-5\""},
        WrongUse{"meetAddWithEndAndLength",
                 {"meet", "add", "--name", "Tea", "--start", "09:00", "--end", "10:00", "--duration", "5"},
                 "--duration and --end"},
        WrongUse{"meetAddInNoCalendar",
                 {"meet", "add", "--name", "Tea", "--start", "09:00", "--calendar", "none"},
                 "\"none\""},
        WrongUse{"meetAddInNoRhythm",
                 {"meet", "add", "--name", "Tea", "--start", "09:00", "--repeat", "often"},
                 "\"often\""},
        WrongUse{
            "meetAddOnNoWeekday",
            {"meet", "add", "--name", "Tea", "--start", "09:00", "--repeat", "weekly", "--weekdays", "mon,x"},
            "\"x\""},
        WrongUse{
            "meetAddOnWeekdaysOfAMonth",
            {"meet", "add", "--name", "Tea", "--start", "09:00", "--repeat", "monthly", "--weekdays", "mon"},
            "--repeat weekly"},
        WrongUse{"meetAddUntilWithoutARhythm",
                 {"meet", "add", "--name", "Tea", "--start", "09:00", "--until", "2026-05-01"},
                 "--until goes with --repeat"},
        WrongUse{"meetAddUntilBeforeItBegins",
                 {"meet", "add", "--name", "Tea", "--start", "2026-03-11T09:00", "--repeat", "daily",
                  "--until", "2026-03-10"},
                 "--until lies before"},
        WrongUse{"meetAddNoTimes",
                 {"meet", "add", "--name", "Tea", "--start", "09:00", "--repeat", "daily", "--count", "0"},
                 "--count"},
        WrongUse{"meetAddWithABadLink",
                 {"meet", "add", "--name", "Tea", "--start", "09:00", "--url", "http://["},
                 "\"http://[\""},
        WrongUse{"meetEditNothing", {"meet", "edit", "85"}, "something to change"},
        WrongUse{"meetEditBothReaches",
                 {"meet", "edit", "85", "--name", "A", "--this", "--future"},
                 "--this and --future"},
        WrongUse{"meetDeleteNothing", {"meet", "delete"}, "ID"},
        WrongUse{"scheme", {"day", "--scheme", "blue"}, "\"blue\""},
        WrongUse{"scale", {"day", "--scale", "0", "--png", "a.png"}, "\"0\""},
        WrongUse{"scaleNotANumber", {"day", "--scale", "nan", "--png", "a.png"}, "\"nan\""},
        WrongUse{"scaleTooLarge", {"day", "--scale", "1000", "--png", "a.png"}, "\"1000\""},
        WrongUse{"folderOfAPicture", {"day", "--svg", "a.svg", "--png", "none/a.png"}, "/none"},
        WrongUse{"folderAsAPicture", {"day", "--png", "."}, "is a folder"},
        WrongUse{"twoOutputsAtOnce", {"day", "--json", "--png", "-"}, "standard output"},
        WrongUse{"missingSource", {"sources", "add", "/none/at/all"}, "/none/at/all"},
        WrongUse{"fileAsSource", {"sources", "add", "calendars/home/tea.ics"}, "tea.ics is not a folder"},
        WrongUse{"sourceTwice", {"sources", "add", "calendars"}, "is a source already"},
        WrongUse{"sourceTwiceByAnotherWay", {"sources", "add", "calendars/home/.."}, "is a source already"},
        WrongUse{"sourceWithABlankTitle", {"sources", "add", "data", "--title", " "}, "--title"},
        WrongUse{"sourceWithALineBreak", {"sources", "add", "a\nb"}, "a b"},
        WrongUse{"unknownSource", {"sources", "remove", "zzzz"}, "\"zzzz\""},
        WrongUse{"unknownCalendar", {"calendars", "hide", "zzzz/none"}, "\"zzzz/none\""},
        WrongUse{"oneUnknownCalendar", {"calendars", "hide", "quillora-native-calendar", "zzzz"}, "\"zzzz\""},
        WrongUse{"unknownCalendarToShow", {"calendars", "show", "zzzz"}, "\"zzzz\""},
        WrongUse{"accessWord", {"access", "maybe"}, "\"access maybe\""},
        WrongUse{"providerWithoutAnId", {"providers", "add", "--email", "a@b", "--name", "N"}, "--id"},
        WrongUse{"providerWithoutAnEmail", {"providers", "add", "--id", "a", "--name", "N"}, "--email"},
        WrongUse{"providerWithoutAName", {"providers", "add", "--id", "a", "--email", "a@b"}, "--name"},
        WrongUse{"providerEditOfNothing", {"providers", "edit", "a"}, "--description"},
        WrongUse{"providerOfNoId", {"providers", "enable"}, "ID"},
        WrongUse{"keychain", {"setup", "--yes", "--keychain", "purse"}, "\"purse\""},
        WrongUse{"argumentOfSetup", {"setup", "now"}, "\"now\""},
        WrongUse{"occurrencesOfNothing",
                 {"occurrences", "none.ics", "--from", "2026-03-01", "--to", "2026-03-02"},
                 "none.ics"},
        WrongUse{"occurrencesFromNever",
                 {"occurrences", "calendars", "--from", "never", "--to", "2026-03-02"},
                 "\"never\""},
        WrongUse{"occurrencesBackwards",
                 {"occurrences", "calendars", "--from", "2026-03-03", "--to", "2026-03-02"},
                 "--to"},
        WrongUse{
            "occurrencesNowhere",
            {"occurrences", "calendars", "--from", "2026-03-01", "--to", "2026-03-02", "--zone", "Mars/Base"},
            "\"Mars/Base\""}),
    [](auto const& instance) { return instance.param.name; });

TEST_F(BadInputJourneys, aDamagedListOfSourcesIsNamedAndKeepsNobodyFromTheRest) {
    home.write(home.configuration() / "calendar-store.json", "{\"sources\":");
    auto const day = home.quillora({"day", "--at", "2026-03-09T08:00"});
    EXPECT_EQ(day.exitCode, 0);
    EXPECT_EQ(day.output, "Wednesday 11\n\nNo events\n");
    EXPECT_THAT(day.errors, HasSubstr("calendar-store.json"));
    auto const path = (home.configuration() / "calendar-store.json").string();
    for (auto const& words :
         std::vector<std::vector<std::string>>{{"sources", "list"}, {"sources", "list", "--json"}}) {
        auto const list = home.quillora(words);
        EXPECT_EQ(list.exitCode, 1);
        // Nobody knows whether folders were added.
        EXPECT_EQ(list.output, "");
        EXPECT_EQ(list.errors,
                  "quillora: " + path +
                      ": the list of calendar folders is damaged, so none of them is shown; the next "
                      "change keeps a copy of it and starts a new list\n");
    }
}

TEST_F(BadInputJourneys, ofAListOfSourcesDamagedInPartTheRestIsShown) {
    home.write(home.configuration() / "calendar-store.json",
               R"({"version":1,"sources":[7,{"kind":"folder","id":"k3fa","path":"/c","title":"Kept"}]})");
    auto const list = home.quillora({"sources", "list"});
    EXPECT_EQ(list.exitCode, 0);
    EXPECT_EQ(list.output, "k3fa  Kept  /c\n");
    EXPECT_THAT(list.errors, HasSubstr("is damaged in 1 of its entries"));
}

TEST_F(BadInputJourneys, aListOfSourcesThatIsNoFileIsToldInPlainWords) {
    auto const path = home.configuration() / "calendar-store.json";
    std::filesystem::remove(path);
    std::filesystem::create_symlink("/dev/zero", path);
    EXPECT_EQ(home.quillora({"sources", "list"}).errors,
              "quillora: " + path.string() +
                  ": the list of calendar folders could not be read (Not a regular file), so none of them is "
                  "shown\n");
}

TEST_F(BadInputJourneys, aDamagedListOfSourcesIsMendedByTheNextChange) {
    auto const path = home.configuration() / "calendar-store.json";
    for (auto const* content : {"x", "[]", "{}"}) {
        home.write(path, content);
        auto const add = home.quillora({"sources", "add", home.calendars().string()});
        EXPECT_EQ(add.exitCode, 0) << content;
        EXPECT_THAT(add.errors, HasSubstr(path.string() + ": the list of calendar folders is damaged"))
            << content;
        auto const list = home.quillora({"sources", "list"});
        EXPECT_THAT(list.output, HasSubstr(home.calendars().string())) << content;
        EXPECT_EQ(list.errors, "") << content;
    }
    EXPECT_EQ(home.contentOf(path.string() + ".damaged"), "x");
    EXPECT_EQ(home.contentOf(path.string() + ".damaged-3"), "{}");
}

TEST_F(BadInputJourneys, aChangeThatCannotBeToldIsSaidToBeMade) {
    using Words = std::vector<std::string>;
    auto const failing = [this](Words const& words) {
        auto const result = home.quillora(words, ProgramRun::Output::fullDevice);
        EXPECT_EQ(result.exitCode, 1) << words[0];
        return result.errors;
    };
    std::string const begins =
        "quillora: standard output could not be written (No space left on device), but this is done: ";
    Words const tea = {"meet", "add", "--name", "Tea", "--start", "2026-03-11T10:00"};
    EXPECT_THAT(failing(tea), StartsWith(begins + "Added \"Tea\", Wednesday 2026-03-11"));
    auto asJSON = tea;
    asJSON.emplace_back("--json");
    EXPECT_THAT(failing(asJSON), StartsWith(begins + "Added \"Tea\", Wednesday 2026-03-11"));
    EXPECT_EQ(meetNames(home.dayJSON({"--day", "2026-03-11"})).size(), 3U);
    EXPECT_EQ(failing({"alarm", "mode", "funk"}), begins + "Meets are announced with: Funk\n");
    EXPECT_EQ(failing({"calendars", "hide", "quillora-native-calendar"}), begins + "Hid \"Quillora\"\n");
    EXPECT_THAT(failing({"next"}), StartsWith(begins));
    EXPECT_EQ(failing({"access", "deny"}), begins + "Calendar access: denied\n");
    EXPECT_EQ(failing({"access", "status"}),
              "quillora: standard output could not be written: No space left on device\n");
    EXPECT_EQ(failing({"access", "grant"}), begins + "Calendar access: granted\n");
    // Where nothing was changed nothing is said of it.
    EXPECT_EQ(failing({"calendars", "list"}),
              "quillora: standard output could not be written: No space left on device\n");
}

TEST_F(BadInputJourneys, damagedSettingsAreNamedOnceByEveryCommandThatReadsThem) {
    (void)home.outputOf({"alarm", "template", "{event} now"});
    auto const path = home.configuration() / "defaults.json";
    auto const damaged = home.contentOf(path).substr(1);
    home.write(path, damaged);
    auto const said =
        "quillora: " + path.string() +
        ": the file is damaged, so nothing in it counts; the next change keeps a copy of it and "
        "starts anew\n";
    for (auto const& words : std::vector<std::vector<std::string>>{{"alarm", "template"},
                                                                   {"alarm", "mode"},
                                                                   {"alarm", "voice"},
                                                                   {"alarm", "calendars", "list"},
                                                                   {"alarm", "preview", "--text"}}) {
        auto const result = home.quillora(words);
        EXPECT_EQ(result.exitCode, 0) << words[1];
        EXPECT_EQ(result.errors, said) << words[1];
    }
    auto const change = home.quillora({"alarm", "mode", "funk"});
    EXPECT_EQ(change.exitCode, 0);
    EXPECT_EQ(change.errors, said);
    EXPECT_EQ(home.contentOf(path.string() + ".damaged"), damaged);
    EXPECT_EQ(home.quillora({"alarm", "mode"}).errors, "");
}

TEST_F(BadInputJourneys, aDamagedChoiceOfHiddenCalendarsIsNamedAndACopyKept) {
    auto const path = home.container() / "hiddenCalendarIdentifiers.json";
    home.write(path, "[\"k3fa");
    auto const said =
        "quillora: " + path.string() +
        ": the file is damaged, so nothing in it counts; the next change keeps a copy of it and "
        "starts anew\n";
    for (auto const& words :
         std::vector<std::vector<std::string>>{{"day", "--at", "2026-03-11T08:00"},
                                               {"meet", "show", "--day", "2026-03-11"},
                                               {"explain", "--day", "2026-03-11"},
                                               {"calendars", "list"},
                                               {"calendars", "hide", "quillora-native-calendar"}}) {
        auto const result = home.quillora(words);
        EXPECT_EQ(result.exitCode, 0) << words[0];
        EXPECT_EQ(result.errors, said) << words[0];
    }
    EXPECT_EQ(home.contentOf(path), "[\"quillora-native-calendar\"]");
    EXPECT_EQ(home.contentOf(path.string() + ".damaged"), "[\"k3fa");
    EXPECT_EQ(home.quillora({"calendars", "list"}).errors, "");
}

TEST_F(BadInputJourneys, withoutAHomeThatIsWhatTheDayAndItsExplanationSay) {
    for (auto const* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
        home.environment.erase(variable);
    auto const said =
        "quillora: neither HOME nor XDG_CONFIG_HOME and XDG_DATA_HOME name a folder, so there is no "
        "place for Quillora's files; set HOME\n";
    for (auto const& words :
         std::vector<std::vector<std::string>>{{"day"}, {"explain"}, {"explain", "tea"}, {"meet", "show"}}) {
        auto const result = home.quillora(words);
        EXPECT_EQ(result.exitCode, words[0] == "day" ? 0 : 1) << words[0];
        EXPECT_EQ(result.errors, said) << words[0];
    }
}

TEST_F(BadInputJourneys, aListOfSourcesOfANewerVersionIsNeverChanged) {
    auto const path = home.configuration() / "calendar-store.json";
    home.write(path, R"({"version":2,"sources":[]})");
    for (auto const& words : std::vector<std::vector<std::string>>{
             {"sources", "add", home.calendars().string()}, {"sources", "remove", "k3fa"}}) {
        auto const result = home.quillora(words);
        EXPECT_EQ(result.exitCode, 1) << words[1];
        EXPECT_EQ(result.errors, "quillora: " + path.string() +
                                     ": the list of calendar folders was written by a newer version "
                                     "of Quillora; what is understood of it is shown, and it cannot "
                                     "be changed\n");
        EXPECT_EQ(home.contentOf(path), R"({"version":2,"sources":[]})");
    }
}

TEST_F(BadInputJourneys, aDamagedSetOfHiddenCalendarsHidesNothing) {
    for (auto const* content : {"{}", "[\"a\",3]", "hidden", "", "\xff"}) {
        home.write(home.container() / "hiddenCalendarIdentifiers.json", content);
        EXPECT_THAT(meetNames(home.dayJSON(look)), ElementsAre("Tea")) << content;
    }
}

TEST_F(BadInputJourneys, aDamagedSetOfAccountsIsAnEmptyDay) {
    home.write(home.container() / "enabledCalendarAccounts.json", "[\"eventKit\"");
    EXPECT_THAT(meetNames(home.dayJSON(look)), testing::IsEmpty());
    home.write(home.container() / "enabledCalendarAccounts.json", "[\"eventKit\",\"other\"]");
    EXPECT_THAT(meetNames(home.dayJSON(look)), ElementsAre("Tea"));
}

TEST_F(BadInputJourneys, aDamagedConsentIsNoConsent) {
    home.write(home.configuration() / "calendar-access.json", "yes");
    auto const status = home.quillora({"access", "status"});
    EXPECT_EQ(status.exitCode, 1);
    EXPECT_EQ(status.output, "");
    EXPECT_EQ(status.errors, "quillora: " + (home.configuration() / "calendar-access.json").string() +
                                 " holds no answer, so it is not known whether Quillora may read your "
                                 "calendars; answer anew with \"quillora access grant\" or \"quillora access "
                                 "deny\"\n");
    EXPECT_EQ(*home.dayJSON(look).member("hasAccessError"), JSON::Value(true));
    EXPECT_EQ(home.outputOf({"access", "grant"}), "Calendar access: granted\n");
    EXPECT_THAT(meetNames(home.dayJSON(look)), ElementsAre("Tea"));
    home.write(home.configuration() / "calendar-access.json", "7");
    EXPECT_EQ(home.outputOf({"access", "status"}), "Calendar access: unknown (7), which counts as denied\n");
    EXPECT_EQ(*home.dayJSON(look).member("hasAccessError"), JSON::Value(true));
}

TEST_F(BadInputJourneys, settingsThatMayNotBeReadAreNamedAndNotTakenForNone) {
    if (!canGiveUpOverride()) GTEST_SKIP() << "here root cannot give up its power to read everything";
    std::filesystem::permissions(home.configuration(), std::filesystem::perms::none);
    auto const list = home.quilloraWithoutOverride({"sources", "list"});
    auto const status = home.quilloraWithoutOverride({"access", "status"});
    auto const day = home.quilloraWithoutOverride({"day", "--at", look[1]});
    std::filesystem::permissions(home.configuration(), std::filesystem::perms::owner_all);
    EXPECT_EQ(list.exitCode, 1);
    EXPECT_EQ(list.output, "");
    EXPECT_THAT(list.errors, HasSubstr("could not be read (Permission denied)"));
    auto const unknown =
        "quillora: it is not known whether Quillora may read your calendars, since your answer "
        "in " +
        (home.configuration() / "calendar-access.json").string() + " cannot be read: Permission denied\n";
    EXPECT_EQ(status.exitCode, 1);
    EXPECT_EQ(status.output, "");
    EXPECT_EQ(status.errors, unknown);
    EXPECT_EQ(day.errors, unknown);
}

TEST_F(BadInputJourneys, aSharedFolderThatMayNotBeReadIsNotTakenForOneThatWasNeverSetUp) {
    if (!canGiveUpOverride()) GTEST_SKIP() << "here root cannot give up its power to read everything";
    std::filesystem::permissions(home.container(), std::filesystem::perms::none);
    auto const day = home.quilloraWithoutOverride({"day"});
    auto const setup = home.quilloraWithoutOverride({"setup", "--yes"});
    std::filesystem::permissions(home.container(), std::filesystem::perms::owner_all);
    auto const file = (home.container() / "enabledCalendarAccounts.json").string();
    EXPECT_EQ(day.errors,
              "quillora: no calendars are shown, since which ones are switched on cannot be read from " +
                  file + ": Permission denied; \"quillora doctor\" names what mends it\n");
    EXPECT_EQ(setup.exitCode, 1);
    EXPECT_EQ(setup.errors,
              "quillora: the calendars of this computer are registered, but the widget could not be "
              "told: " +
                  file +
                  " cannot be written (Permission denied); when that is mended, run "
                  "\"quillora setup\" once more\n");
}

TEST_F(BadInputJourneys, aFolderInPlaceOfAPreferenceFileIsNoFile) {
    std::filesystem::remove(home.container() / "scheduleWidgetDayOffset.json");
    std::filesystem::create_directory(home.container() / "scheduleWidgetDayOffset.json");
    EXPECT_EQ(*home.dayJSON(look).member("dayOffset"), JSON::Value(0));
    EXPECT_EQ(home.quillora({"next"}).exitCode, 1);
}

TEST_F(BadInputJourneys, helpIsThereForEveryWordOfThePath) {
    for (auto const& words : std::vector<std::vector<std::string>>{
             {}, {"--help"}, {"day", "--help"}, {"sources", "--help"}, {"sources", "add", "--help"}}) {
        auto const result = home.quillora(words);
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_THAT(result.output, HasSubstr("Usage:\n  quillora "));
        EXPECT_EQ(result.errors, "");
    }
    EXPECT_THAT(home.outputOf({"--version"}), testing::MatchesRegex("quillora [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

} // namespace
