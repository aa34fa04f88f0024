#include "PrivateHome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

std::string const oneEvent = calendarFile(event("u1", "Tea", ":20260311T090000Z", ":20260311T093000Z"));

unsigned modeOf(fs::path const& path) {
    struct stat status{};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777U;
}

// There is no bus in these homes, and so no keyring.
std::vector<std::string> const toDefaults = {"setup", "--yes", "--keychain", "file"};
std::string const withoutKeyring =
    "quillora: the calendars of this computer are not switched on, because the desktop's keyring cannot be "
    "used; start or unlock it and run \"quillora setup\" again, or keep the key in a file that only you can "
    "read with \"quillora setup --keychain file\"\n"
    "Keychain lookup failed with status -36; refusing to regenerate the encryption key\n";

TEST(SetupJourneys, aNewHomeIsPreparedWithoutAQuestion) {
    PrivateHome home;
    home.environment["USER"] = "ann";
    auto const own = (home.folder() / "data/Quillora/Calendars/quillora-native-calendar").string();
    EXPECT_THAT(
        home.outputOf(toDefaults),
        testing::MatchesRegex(
            "Made Quillora's own calendar: " + own +
            "\n"
            "The key of the registrations is kept in a file that only you can read\\. That protects them "
            "from "
            "other users of this computer, but not from the programs that you run, nor from who gets hold of "
            "its disk or of a backup\n"
            "Registered \"Calendars on this computer\" \\(\"ann@[^\"]+\"\\) as \"eventKit\"\n"
            "Calendar access: granted\n"
            "Add calendars with \"quillora sources add DIR\"; see your day with \"quillora day\"\n"));
    EXPECT_EQ(home.contentOf(home.container() / "enabledCalendarAccounts.json"), R"(["eventKit"])");
    EXPECT_EQ(home.contentOf(home.configuration() / "calendar-access.json"), "3");
    EXPECT_TRUE(fs::is_directory(own));
    EXPECT_EQ(home.outputOf({"access", "status"}), "Calendar access: granted\n");
}

TEST(SetupJourneys, withoutAKeyringItDoesTheRestAndNamesTheWayOut) {
    PrivateHome const home;
    home.write(home.folder() / ".calendars" / "home" / "tea.ics", oneEvent);
    auto const result = home.quillora({"setup", "--yes"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.output, HasSubstr("Made Quillora's own calendar: "));
    EXPECT_THAT(result.output, HasSubstr("Added \".calendars\" "));
    EXPECT_THAT(result.output, HasSubstr("Calendar access: granted\n"));
    EXPECT_EQ(result.errors, withoutKeyring);
    // No key was made anywhere, and the widget was told nothing.
    EXPECT_FALSE(fs::exists(home.folder() / "data/Quillora/Keychain"));
    EXPECT_FALSE(fs::exists(home.configuration() / "keychain.json"));
    EXPECT_FALSE(fs::exists(home.container() / "enabledCalendarAccounts.json"));

    EXPECT_THAT(home.outputOf(toDefaults), HasSubstr("Registered \"Calendars on this computer\""));
    EXPECT_EQ(meetNames(home.dayJSON({"--at", "2026-03-11T08:00"})), std::vector<std::string>{"Tea"});
}

TEST(SetupJourneys, whatItMakesIsForThePersonAlone) {
    PrivateHome const home;
    home.setUp();
    for (auto const& folder : {home.container(), home.configuration(), home.folder() / "data" / "Quillora"})
        EXPECT_EQ(modeOf(folder), 0700U) << folder;
    for (auto const& file :
         {home.container() / "enabledCalendarAccounts.json", home.configuration() / "calendar-access.json",
          home.configuration() / "calendar-store.json"})
        EXPECT_EQ(modeOf(file), 0600U) << file;
}

TEST(SetupJourneys, aSecondTimeItChangesNothingAndSaysSo) {
    PrivateHome const home;
    home.write(home.folder() / ".calendars" / "home" / "tea.ics", oneEvent);
    EXPECT_THAT(home.outputOf(toDefaults), Not(HasSubstr("nothing was changed")));
    auto const before = home.snapshot();
    for (auto const& words : {toDefaults, std::vector<std::string>{"setup"}}) {
        auto const output = home.outputOf(words);
        EXPECT_THAT(output, HasSubstr("Quillora's own calendar is there: "));
        EXPECT_THAT(output, HasSubstr(") is registered as \"eventKit\"\n"));
        EXPECT_THAT(output, HasSubstr("The calendars in " + (home.folder() / ".calendars").string() +
                                      " are shown already\n"));
        EXPECT_THAT(output, HasSubstr("All of this was set up already; nothing was changed\n"));
        EXPECT_EQ(home.snapshot(), before);
    }
}

TEST(SetupJourneys, aHomeThatWasSwitchedOnWithoutARegistrationIsRegistered) {
    PrivateHome const home;
    home.setUp();
    // As earlier versions left it: the widget was told, and no database knows.
    for (auto const* name : {"CalendarProviders.RegistryProvider.realm", "Keychain"})
        fs::remove_all(home.folder() / "data/Quillora" / name);
    EXPECT_THAT(home.outputOf({"setup"}), HasSubstr("Registered \"Calendars on this computer\""));
    // Now a change of the providers loses nothing.
    static_cast<void>(home.outputOf({"providers", "remove", "somebody else"}));
    EXPECT_EQ(home.contentOf(home.container() / "enabledCalendarAccounts.json"), R"(["eventKit"])");
}

TEST(SetupJourneys, aMirrorThatWasLostIsWrittenAnew) {
    PrivateHome const home;
    home.setUp();
    fs::remove(home.container() / "enabledCalendarAccounts.json");
    auto const output = home.outputOf({"setup"});
    EXPECT_THAT(output, HasSubstr(") is registered as \"eventKit\"\n"));
    EXPECT_THAT(output, Not(HasSubstr("nothing was changed")));
    EXPECT_EQ(home.contentOf(home.container() / "enabledCalendarAccounts.json"), R"(["eventKit"])");
}

TEST(SetupJourneys, foldersOfOtherProgramsAreFoundAndShown) {
    PrivateHome const home;
    home.write(home.folder() / ".calendars" / "home" / "tea.ics", oneEvent);
    home.write(home.folder() / "data" / "calendars" / "tea.ics", oneEvent);
    fs::create_directories(home.folder() / "data" / "khal" / "calendars" / "empty");
    auto const output = home.outputOf(toDefaults);
    EXPECT_THAT(output,
                HasSubstr("Added \".calendars\" (" + (home.folder() / ".calendars").string() + ") as "));
    EXPECT_THAT(output,
                HasSubstr("Added \"calendars\" (" + (home.folder() / "data/calendars").string() + ") as "));
    EXPECT_THAT(output, Not(HasSubstr("khal")));
    EXPECT_EQ(meetNames(home.dayJSON({"--at", "2026-03-11T08:00"})),
              (std::vector<std::string>{"Tea", "Tea"}));
}

TEST(SetupJourneys, withNobodyToAskItSaysSoAndChangesNothing) {
    PrivateHome const home;
    home.write(home.folder() / ".calendars" / "home" / "tea.ics", oneEvent);
    auto const before = home.snapshot();
    auto const result = home.quillora({"setup"});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors,
              "quillora: nothing was set up, because nobody could be asked whether Quillora may "
              "read your calendars; run \"quillora setup\" in a terminal, or \"quillora setup "
              "--yes\"\n");
    EXPECT_EQ(home.snapshot(), before);
}

TEST(SetupJourneys, onATerminalThePersonIsAsked) {
    PrivateHome const home;
    home.write(home.folder() / ".calendars" / "home" / "tea.ics", oneEvent);
    // Access, the key file, the folder.
    auto const granted = home.quillora({"setup"}, ProgramRun::Output::terminal, "yes\ny\ny\n");
    EXPECT_EQ(granted.exitCode, 0) << granted.output;
    EXPECT_THAT(granted.output, HasSubstr("The desktop's keyring cannot be used: Keychain lookup failed with "
                                          "status -36; refusing to regenerate the encryption key."));
    EXPECT_THAT(granted.output, HasSubstr("but not from the programs that you run"));
    EXPECT_THAT(granted.output, HasSubstr("Registered \"Calendars on this computer\""));
    EXPECT_THAT(granted.output, HasSubstr("Calendar access: granted"));
    EXPECT_THAT(granted.output, HasSubstr("Added \".calendars\""));
    EXPECT_EQ(home.contentOf(home.configuration() / "calendar-access.json"), "3");
    EXPECT_EQ(home.contentOf(home.configuration() / "keychain.json"), "\"file\"");
}

TEST(SetupJourneys, aKeyFileThatIsRefusedIsNotMade) {
    PrivateHome const home;
    auto const refused = home.quillora({"setup"}, ProgramRun::Output::terminal, "yes\nn\n");
    EXPECT_EQ(refused.exitCode, 1) << refused.output;
    EXPECT_THAT(refused.output, HasSubstr("\"quillora setup --keychain file\""));
    EXPECT_FALSE(fs::exists(home.folder() / "data/Quillora/Keychain"));
    EXPECT_FALSE(fs::exists(home.configuration() / "keychain.json"));
}

TEST(SetupJourneys, aDisabledProviderIsOnlyEnabledWhenThePersonWantsIt) {
    PrivateHome const home;
    home.setUp();
    static_cast<void>(home.outputOf({"providers", "disable", "eventKit"}));
    auto const before = home.snapshot();
    auto const stays = "\"Calendars on this computer\" is registered, and stays disabled; show its calendars "
                       "with \"quillora providers enable eventKit\"";
    EXPECT_THAT(home.outputOf({"setup"}), HasSubstr(stays));
    EXPECT_THAT(home.quillora({"setup"}, ProgramRun::Output::terminal, "n\n").output, HasSubstr(stays));
    EXPECT_EQ(home.snapshot(), before);
    EXPECT_THAT(home.quillora({"setup"}, ProgramRun::Output::terminal, "y\n").output,
                HasSubstr("Enabled \"Calendars on this computer\""));
    EXPECT_EQ(home.contentOf(home.container() / "enabledCalendarAccounts.json"), R"(["eventKit"])");
}

TEST(SetupJourneys, aNoIsRememberedAndCanBeTakenBack) {
    PrivateHome const home;
    auto const denied = home.quillora({"setup"}, ProgramRun::Output::terminal, "no\n");
    EXPECT_EQ(denied.exitCode, 0) << denied.output;
    EXPECT_THAT(denied.output, HasSubstr("The calendars of this computer are not switched on without it"));
    EXPECT_FALSE(fs::exists(home.container() / "enabledCalendarAccounts.json"));
    EXPECT_EQ(home.contentOf(home.configuration() / "calendar-access.json"), "2");
    EXPECT_EQ(home.outputOf({"access", "status"}), "Calendar access: denied\n");
    EXPECT_EQ(home.outputOf({"access", "reset"}), "Calendar access: not asked yet\n");
    EXPECT_FALSE(fs::exists(home.configuration() / "calendar-access.json"));
    auto const granted = home.quillora({"setup"}, ProgramRun::Output::terminal, "yes\ny\n");
    EXPECT_EQ(granted.exitCode, 0) << granted.output;
    EXPECT_EQ(home.outputOf({"access", "status"}), "Calendar access: granted\n");
    EXPECT_TRUE(fs::exists(home.container() / "enabledCalendarAccounts.json"));
}

TEST(SetupJourneys, afterANoItAsksAgainAndANobodyLeavesTheNo) {
    PrivateHome const home;
    home.write(home.configuration() / "calendar-access.json", "2");
    auto const unasked = home.quillora({"setup"});
    EXPECT_EQ(unasked.exitCode, 0) << unasked.errors;
    EXPECT_EQ(home.contentOf(home.configuration() / "calendar-access.json"), "2");
    auto const granted = home.quillora({"setup"}, ProgramRun::Output::terminal, "yes\ny\n");
    EXPECT_EQ(granted.exitCode, 0) << granted.output;
    EXPECT_EQ(home.contentOf(home.configuration() / "calendar-access.json"), "3");
}

TEST(SetupJourneys, aFolderWithinASourceIsLeftOutWithTheReason) {
    PrivateHome const home;
    home.write(home.folder() / ".calendars" / "home" / "tea.ics", oneEvent);
    ASSERT_EQ(home.quillora({"sources", "add", (home.folder() / ".calendars/home").string()}).exitCode, 0);
    auto const outer = (home.folder() / ".calendars").string();
    EXPECT_THAT(home.outputOf(toDefaults),
                HasSubstr("Left out the calendars in " + outer + ": it and the source \"home\" (" + outer +
                          "/home) lie one in the other, so events would show twice; if you want both, run "
                          "\"quillora sources add " +
                          outer + "\"\n"));
    EXPECT_EQ(meetNames(home.dayJSON({"--at", "2026-03-11T08:00"})), (std::vector<std::string>{"Tea"}));
}

TEST(SetupJourneys, whatCannotBeSwitchedOnIsNamedWithItsFileAndCause) {
    PrivateHome home;
    home.environment["QUILLORA_GROUP_CONTAINER"] = (home.folder() / "gone").string();
    auto const result = home.quillora(toDefaults);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(
        result.errors,
        "quillora: the calendars of this computer are registered, but the widget could not be told: " +
            (home.folder() / "gone/enabledCalendarAccounts.json").string() +
            " cannot be written (No such file or directory); when that is mended, run \"quillora setup\" "
            "once more\n");
}

TEST(CalendarsJourneys, aChoiceThatCannotBeKeptIsNamedWithItsFileAndCause) {
    PrivateHome const home;
    home.setUp();
    // A folder in its place: as root and as anyone, no file can be put there.
    auto const file = home.container() / "hiddenCalendarIdentifiers.json";
    fs::create_directories(file / "x");
    auto const result = home.quillora({"calendars", "hide", "quillora-native-calendar"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "quillora: " + file.string() +
                                 ": the file could not be read (Is a directory), so nothing in it counts\n"
                                 "quillora: the hidden calendars could not be saved and stay as they were: " +
                                 file.string() + " cannot be written (Is a directory)\n");
}

TEST(SetupJourneys, beforeTheSetupTheDayIsEmptyAndTheHintNamesIt) {
    PrivateHome const home;
    auto const result = home.quillora({"day", "--at", "2026-03-11T08:00"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, "Wednesday 11\n\nNo events\n");
    EXPECT_EQ(result.errors,
              "quillora: the calendars of this computer are not switched on yet; run \"quillora setup\"\n");
}

TEST(SetupJourneys, withoutAHomeItSaysWhatIsMissing) {
    PrivateHome home;
    for (auto const* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
        home.environment.erase(variable);
    for (auto const& words : std::vector<std::vector<std::string>>{
             {"setup", "--yes"}, {"access", "status"}, {"sources", "list"}, {"sources", "add", "/"}}) {
        auto const result = home.quillora(words);
        EXPECT_EQ(result.exitCode, 1) << words.front();
        EXPECT_EQ(result.errors,
                  "quillora: neither HOME nor XDG_CONFIG_HOME and XDG_DATA_HOME name a folder, so there is "
                  "no place for Quillora's files; set HOME\n");
    }
}

TEST(SourcesJourneys, aFolderIsAddedListedAndRemoved) {
    PrivateHome const home;
    home.setUp();
    auto const list = home.outputOf({"sources", "list"});
    EXPECT_THAT(list, HasSubstr("  Cal  " + home.calendars().string() + "\n"));
    auto const removed = home.outputOf({"sources", "remove", "calendars"}); // Relative to the working folder.
    EXPECT_EQ(removed, "Removed \"Cal\" (" + home.calendars().string() + "); its files stay\n");
    EXPECT_EQ(home.outputOf({"sources", "list"}),
              "No folder was added yet; add one with \"quillora sources add DIR\"\n");
    EXPECT_EQ(home.outputOf({"sources", "list", "--json"}), "{\"version\":1,\"sources\":[]}\n");
    EXPECT_TRUE(fs::is_directory(home.calendars()));
}

TEST(SourcesJourneys, aSourceWhoseFolderIsGoneCanBeRemoved) {
    PrivateHome const home;
    home.setUp();
    fs::remove_all(home.calendars());
    EXPECT_EQ(home.quillora({"day"}).exitCode, 0);
    EXPECT_EQ(home.quillora({"sources", "remove", home.calendars().string()}).exitCode, 0);
}

TEST(SetupJourneys, ctrlCAtAQuestionSaysWhatBecomesOfTheRest) {
    PrivateHome const home;
    home.write(home.folder() / ".calendars" / "home" / "tea.ics", oneEvent);
    ASSERT_EQ(home.quillora({"access", "grant"}).exitCode, 0);
    auto const result = home.quilloraAsked({"setup", "--keychain", "file"}, "[y/n]", "\x03");
    EXPECT_EQ(result.exitCode, 130) << result.output;
    EXPECT_THAT(result.output,
                HasSubstr("quillora: interrupted at the question; what was done before it stays, "
                          "and nothing was done after it"));
    EXPECT_THAT(home.outputOf({"providers", "list"}), HasSubstr("eventKit"));
    EXPECT_FALSE(fs::exists(home.configuration() / "calendar-store.json"));
}

TEST(SourcesJourneys, anEmptyFolderIsAddedWithAWord) {
    PrivateHome const home;
    fs::create_directories(home.calendars());
    ASSERT_EQ(home.quillora(toDefaults).exitCode, 0);
    auto const result = home.quillora({"sources", "add", home.calendars().string()});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.errors, "quillora: " + home.calendars().string() +
                                 " holds no .ics file yet, neither itself nor in a folder directly below\n");
}

TEST(SourcesJourneys, oneSourceInAnotherIsAddedWithAWarning) {
    PrivateHome const home;
    home.write(home.calendars() / "home" / "tea.ics", oneEvent);
    home.setUp();
    auto const inner = (home.calendars() / "home").string();
    auto const warning = [&](std::string const& list) {
        auto const id = list.substr(list.rfind(" as ") + 4);
        return "quillora: " + inner + " lies in " + home.calendars().string() +
               " and each is read by itself, so the events in " + inner +
               " show twice; if that is not what you want, take one of them off, the new one with "
               "\"quillora sources remove " +
               id.substr(0, id.find('\n')) + "\"\n";
    };
    auto const added = home.quillora({"sources", "add", inner});
    EXPECT_EQ(added.exitCode, 0);
    EXPECT_EQ(added.errors, warning(added.output));
    EXPECT_EQ(meetNames(home.dayJSON({"--at", "2026-03-11T08:00"})),
              (std::vector<std::string>{"Tea", "Tea"}));
    // And the other way round, by way of a link.
    static_cast<void>(home.outputOf({"sources", "remove", home.calendars().string()}));
    fs::create_directory_symlink(home.calendars(), home.folder() / "link");
    auto const outer = home.quillora({"sources", "add", (home.folder() / "link").string()});
    EXPECT_EQ(outer.exitCode, 0);
    EXPECT_THAT(outer.errors, HasSubstr(inner + " lies in " + (home.folder() / "link").string() + " and"));
}

TEST(SourcesJourneys, quilloraOwnCalendarIsNoSource) {
    PrivateHome const home;
    home.setUp();
    auto const own = home.folder() / "data/Quillora/Calendars/quillora-native-calendar";
    auto const refused = home.quillora({"sources", "add", own.string()});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_EQ(refused.errors, "quillora: " + own.string() +
                                  " is Quillora's own calendar, which is shown without being a source\n");
    auto const above = home.quillora({"sources", "add", own.parent_path().string()});
    EXPECT_EQ(above.exitCode, 0);
    EXPECT_THAT(above.errors, HasSubstr(own.string() + " lies in " + own.parent_path().string() + " and"));
}

TEST(SourcesJourneys, whatIsNeitherFileNorFolderIsRefusedInPlainWords) {
    PrivateHome const home;
    home.setUp();
    auto const pipe = home.folder() / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    auto const socket = home.folder() / "socket";
    ASSERT_EQ(::mknod(socket.c_str(), S_IFSOCK | 0600, 0), 0);
    for (auto const& path : {std::string("/dev/null"), pipe.string(), socket.string()}) {
        SCOPED_TRACE(path);
        auto const added = home.quillora({"sources", "add", path});
        EXPECT_EQ(added.exitCode, 2);
        EXPECT_EQ(added.errors, "quillora: " + path + " is not a folder\n");
        auto const listed =
            home.quillora({"occurrences", path, "--from", "2026-03-01", "--to", "2026-03-02"});
        EXPECT_EQ(listed.exitCode, 2);
        EXPECT_EQ(listed.errors, "quillora: " + path +
                                     " is neither a file nor a folder; name an .ics file or a folder of "
                                     "calendars\n");
    }
}

TEST(SourcesJourneys, aFolderThatCannotBeReadIsRefused) {
    if (!canGiveUpOverride()) GTEST_SKIP() << "here root cannot give up its power to read everything";
    PrivateHome const home;
    home.setUp();
    fs::create_directories(home.folder() / "locked");
    fs::permissions(home.folder() / "locked", fs::perms::none);
    auto const before = home.contentOf(home.configuration() / "calendar-store.json");
    auto const result = home.quilloraWithoutOverride({"sources", "add", (home.folder() / "locked").string()});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.errors, "quillora: the folder " + (home.folder() / "locked").string() +
                                 " cannot be read: Permission denied\n");
    EXPECT_EQ(home.contentOf(home.configuration() / "calendar-store.json"), before);
}

} // namespace
