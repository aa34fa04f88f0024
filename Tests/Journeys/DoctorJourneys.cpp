#include "DoctorReport.h"

#include "Platform/Keychain/KeyFile.h"
#include "Tests/Keychain/PrivateKeyring.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using Words = std::vector<std::string>;

std::string const oneEvent = calendarFile(event("u1", "Tea", ":20260311T090000Z", ":20260311T093000Z"));

// A home in use, with the keychain of files: there is no bus, and so no keyring.
class DoctorJourneys : public testing::Test {
protected:
    void SetUp() override {
        home.write(home.calendars() / "home" / "tea.ics", oneEvent);
        home.setUp();
    }

    fs::path quillora() const { return home.folder() / "data" / "Quillora"; }
    fs::path database() const { return quillora() / "CalendarProviders.RegistryProvider.realm"; }
    fs::path keyFile() const {
        return quillora() / "Keychain" / "item CalendarProviders.RegistryProvider RealmEncryptionKey";
    }
    fs::path mirror() const { return home.container() / "enabledCalendarAccounts.json"; }

    DoctorReport report() const { return DoctorReport::of(home); }
    DoctorReport withoutOverride() const {
        return DoctorReport::from(home.quilloraWithoutOverride({"doctor", "--json"}));
    }

    // That only this is broken, with this text, and that what the doctor names mends it: a command of this
    // program is run.
    void expectMended(std::string const& check, std::string const& text, Words const& command) const {
        auto const sick = report();
        EXPECT_THAT(sick.broken(), testing::Contains(check));
        EXPECT_THAT(sick.worst(check).text, HasSubstr(text));
        std::string line = "quillora";
        for (auto const& word : command)
            line += " " + word;
        EXPECT_EQ(sick.worst(check).mend, line);
        auto const mending = home.quillora(command);
        EXPECT_EQ(mending.exitCode, 0) << mending.errors;
        EXPECT_THAT(report().broken(), IsEmpty());
    }

    PrivateHome home;
};

TEST_F(DoctorJourneys, aHomeInUseWorks) {
    auto const healthy = report();
    EXPECT_THAT(healthy.broken(), IsEmpty());
    for (auto const* name : {"home", "keychain", "database", "providers", "mirror", "access", "sources",
                             "calendars", "folder", "offset", "texts", "zone"})
        EXPECT_EQ(healthy.worst(name).health, "works") << name << ": " << healthy.worst(name).text;
    EXPECT_EQ(healthy.worst("bus").health, "note"); // There is none, and nothing needs one.
    EXPECT_THAT(healthy.worst("database").text, HasSubstr("registered providers: 1"));
    EXPECT_THAT(healthy.worst("zone").text, HasSubstr("Europe/Berlin"));
}

TEST_F(DoctorJourneys, aPersonReadsLinesAndWhatMendsThem) {
    EXPECT_THAT(home.outputOf({"doctor"}), testing::EndsWith("\nEverything works\n"));
    fs::remove(mirror());
    auto const result = home.quillora({"doctor"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.output,
                HasSubstr("\nBROKEN  mirror         the widget shows no calendars, which is not what is "
                          "registered: it was not told\n"
                          "                       -> quillora providers enable eventKit\n"));
    EXPECT_EQ(result.errors, "quillora: broken: 1; the line below each names what mends it\n");
}

TEST_F(DoctorJourneys, withoutAHomeThatIsWhatIsBroken) {
    for (auto const* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
        home.environment.erase(variable);
    EXPECT_THAT(report().broken(), ElementsAre("home"));
}

TEST(DoctorInANewHomeJourneys, itNamesTheSetUp) {
    PrivateHome const home;
    auto const found = DoctorReport::of(home);
    EXPECT_THAT(found.broken(), ElementsAre("keychain", "providers", "access", "sources"));
    EXPECT_THAT(found.worst("keychain").text, HasSubstr("status -36"));
    EXPECT_THAT(found.worst("keychain").mend, StartsWith("quillora setup --keychain file"));
    EXPECT_EQ(found.worst("access").text, "Calendar access: not asked yet");
    EXPECT_EQ(found.worst("sources").mend, "quillora setup");
    EXPECT_EQ(found.worst("folder").health, "works");
    EXPECT_EQ(found.worst("folder").text,
              home.container().string() + " is not there yet; the first command that needs it makes it");
    ASSERT_EQ(home.quillora({"setup", "--yes", "--keychain", "file"}).exitCode, 0);
    EXPECT_THAT(DoctorReport::of(home).broken(), IsEmpty());
}

TEST_F(DoctorJourneys, aChoiceThatNamesNoKeychainIsNamed) {
    home.write(home.configuration() / "keychain.json", "purse");
    auto const sick = report();
    EXPECT_THAT(sick.broken(), ElementsAre("keychain"));
    EXPECT_THAT(sick.worst("keychain").text, HasSubstr("names no keychain"));
    EXPECT_EQ(sick.worst("database").health, "note"); // Nobody can know, and nothing is claimed.
    ASSERT_EQ(home.quillora({"setup", "--keychain", "file"}).exitCode, 0);
    EXPECT_THAT(report().broken(), IsEmpty());
}

// Nothing can be written in the place of a folder, and what is written in that of a closed file stays closed.
TEST_F(DoctorJourneys, aChoiceThatCannotBeReadIsMendedByWhatIsNamed) {
    auto const choice = home.configuration() / "keychain.json";
    fs::remove(choice);
    fs::create_directory(choice);
    auto const sick = report();
    EXPECT_THAT(sick.broken(), ElementsAre("keychain"));
    EXPECT_EQ(sick.worst("keychain").mend, "mv " + choice.string() + " " + choice.string() + ".away");
    ASSERT_EQ(std::system(sick.worst("keychain").mend.c_str()), 0);
    EXPECT_THAT(report().broken(), IsEmpty());

    if (!canGiveUpOverride()) GTEST_SKIP() << "here root cannot give up its power to read everything";
    home.write(choice, "\"file\"");
    fs::permissions(choice, fs::perms::none);
    auto const closed = withoutOverride();
    EXPECT_THAT(closed.broken(), ElementsAre("keychain"));
    EXPECT_EQ(closed.worst("keychain").mend, "chmod u+rw " + choice.string());
    ASSERT_EQ(std::system(closed.worst("keychain").mend.c_str()), 0);
    EXPECT_THAT(withoutOverride().broken(), IsEmpty());
}

TEST_F(DoctorJourneys, aClosedFolderIsNotTakenForAnEmptyOne) {
    if (!canGiveUpOverride()) GTEST_SKIP() << "here root cannot give up its power to read everything";
    fs::permissions(quillora(), fs::perms::none);
    auto const sick = withoutOverride();
    fs::permissions(quillora(), fs::perms::owner_all);
    EXPECT_THAT(sick.broken(), testing::IsSupersetOf({"keychain", "database"}));
    EXPECT_THAT(sick.worst("database").text, HasSubstr("cannot be read just now: Permission denied"));
    for (auto const* check : {"keychain", "database"})
        EXPECT_EQ(sick.worst(check).mend, "chmod u+rwx " + quillora().string());
}

TEST_F(DoctorJourneys, aLockThatCannotBeOpenedIsNamed) {
    if (!canGiveUpOverride()) GTEST_SKIP() << "here root cannot give up its power to write everywhere";
    for (auto const& lock : {fs::path(database().string() + ".lock"), quillora() / ".providers.lock"}) {
        fs::permissions(lock, fs::perms::none);
        auto const sick = withoutOverride();
        EXPECT_THAT(sick.broken(), ElementsAre("database"));
        EXPECT_THAT(sick.worst("database").text,
                    HasSubstr("because " + lock.string() + " cannot be opened: Permission denied"));
        ASSERT_EQ(sick.worst("database").mend, "chmod u+rw " + lock.string());
        ASSERT_EQ(std::system(sick.worst("database").mend.c_str()), 0);
        EXPECT_THAT(withoutOverride().broken(), IsEmpty());
    }
}

TEST_F(DoctorJourneys, whatStandsInTheMirrorsPlaceIsNamed) {
    for (auto const isFolder : {true, false}) {
        fs::remove(mirror());
        if (isFolder)
            fs::create_directory(mirror());
        else
            ASSERT_EQ(::mkfifo(mirror().c_str(), 0600), 0);
        auto const sick = report();
        EXPECT_THAT(sick.broken(), ElementsAre("mirror"));
        EXPECT_THAT(sick.worst("mirror").text,
                    HasSubstr(mirror().string() + ", which tells it what is registered, cannot be read: " +
                              (isFolder ? "Is a directory" : "Not a regular file")));
        auto const move = "mv " + mirror().string() + " " + mirror().string() + ".away";
        EXPECT_EQ(sick.worst("mirror").mend, move + " && quillora providers enable eventKit");
        ASSERT_EQ(std::system(move.c_str()), 0);
        static_cast<void>(home.outputOf({"providers", "enable", "eventKit"}));
        EXPECT_THAT(report().broken(), IsEmpty());
        fs::remove(mirror().string() + ".away");
    }
}

TEST_F(DoctorJourneys, aKeyFileThatOthersMayReadIsNamed) {
    fs::permissions(keyFile(), fs::perms::others_read, fs::perm_options::add);
    auto const sick = report();
    EXPECT_THAT(sick.broken(), ElementsAre("keychain"));
    EXPECT_THAT(sick.worst("keychain").text, HasSubstr("status -36"));
    EXPECT_THAT(sick.worst("keychain").mend,
                StartsWith("chmod -R go-rwx,u+rwX " + (quillora() / "Keychain").string()));
    fs::permissions(keyFile(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_THAT(report().broken(), IsEmpty());
}

TEST_F(DoctorJourneys, aDamagedKeyFileCanBeGivenUp) {
    fs::resize_file(keyFile(), 40);
    auto const sick = report();
    EXPECT_THAT(sick.broken(), ElementsAre("keychain"));
    auto const folder = (quillora() / "Keychain").string();
    EXPECT_THAT(sick.worst("keychain").mend,
                testing::EndsWith("or: mv " + folder + " " + folder + ".away, then: quillora setup"));
    fs::rename(folder, folder + ".away");
    ASSERT_EQ(home.quillora({"setup", "--yes"}).exitCode, 0);
    EXPECT_THAT(report().broken(), IsEmpty());
}

TEST_F(DoctorJourneys, aTextInTheKeysPlaceIsNamed) {
    home.write(keyFile(), "a text");
    auto const sick = report();
    EXPECT_THAT(sick.broken(), ElementsAre("keychain"));
    EXPECT_THAT(sick.worst("keychain").text, HasSubstr("(status 0)"));
    EXPECT_EQ(sick.worst("keychain").mend, "rm '" + keyFile().string() + "' && quillora setup");
    fs::remove(keyFile());
    ASSERT_EQ(home.quillora({"setup"}).exitCode, 0);
    EXPECT_THAT(report().broken(), IsEmpty());
}

TEST_F(DoctorJourneys, aKeyOfAnotherLengthIsNamed) {
    auto const shortKey = Platform::KeyFile::contentOf(Foundation::SecretBytes::filledBy(32, [](auto) {}));
    auto const bytes = shortKey.bytes();
    home.write(keyFile(), {reinterpret_cast<char const*>(bytes.data()), bytes.size()});
    auto const sick = report();
    EXPECT_THAT(sick.broken(), ElementsAre("keychain"));
    EXPECT_THAT(sick.worst("keychain").text, HasSubstr("32 bytes in place of 64"));
}

TEST_F(DoctorJourneys, aLostKeyIsNamedBeforeItCostsTheDatabase) {
    fs::remove(keyFile());
    auto const sick = report();
    EXPECT_THAT(sick.broken(), ElementsAre("keychain"));
    EXPECT_THAT(sick.worst("keychain").text, HasSubstr("holds no key (status -25300)"));
    EXPECT_EQ(sick.worst("keychain").mend, "quillora setup");
    ASSERT_EQ(home.quillora({"setup"}).exitCode, 0);
    auto const mended = report();
    EXPECT_THAT(mended.broken(), IsEmpty());
    EXPECT_THAT(mended.worst("quarantine").text, HasSubstr("RegistryProvider.realm"));
}

TEST_F(DoctorJourneys, aDamagedDatabaseIsNamedAndThenItsCopy) {
    home.write(database(), "no database");
    expectMended("database", "does not open: the file is not a database of this program", {"setup"});
    auto const copy = report().worst("quarantine");
    EXPECT_EQ(copy.health, "note");
    EXPECT_THAT(copy.text, HasSubstr("a database that did not open is kept, and may go once nothing in it is "
                                     "missed: " +
                                     quillora().string() + "/quarantined-"));
    // A command and nothing else, which leaves nothing of the copy behind.
    EXPECT_THAT(copy.mend, testing::MatchesRegex("rm [^ ,]+\\.realm [^ ,]+\\.realm\\.lock"));
    ASSERT_EQ(std::system(copy.mend.c_str()), 0);
    for (auto const& entry : fs::directory_iterator(quillora()))
        EXPECT_THAT(entry.path().filename().string(), testing::Not(HasSubstr("quarantined"))) << entry.path();
}

TEST_F(DoctorJourneys, aDatabaseOfAnotherKeyIsNamed) {
    auto content = home.contentOf(database());
    content.back() = static_cast<char>(content.back() ^ 1);
    home.write(database(), content);
    expectMended("database", "the file is damaged or was written with another key", {"setup"});
}

TEST_F(DoctorJourneys, aDatabaseThatSomebodyKeepsLockedIsNamed) {
    int const lock = ::open((database().string() + ".lock").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(::flock(lock, LOCK_EX | LOCK_NB), 0);
    auto const sick = report();
    ::close(lock);
    EXPECT_THAT(sick.broken(), ElementsAre("database"));
    EXPECT_THAT(sick.worst("database").text, HasSubstr("another program keeps their database locked"));
    EXPECT_THAT(report().broken(), IsEmpty());
}

TEST_F(DoctorJourneys, foldersThatCannotBeWrittenAreNamed) {
    if (!canGiveUpOverride()) GTEST_SKIP() << "here root cannot give up its power to write everywhere";
    for (auto const& folder : {quillora(), home.container()})
        fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec);
    auto const sick = DoctorReport::from(home.quilloraWithoutOverride({"doctor", "--json"}));
    for (auto const& folder : {quillora(), home.container()})
        fs::permissions(folder, fs::perms::owner_all);
    EXPECT_THAT(sick.broken(), ElementsAre("database", "folder"));
    EXPECT_THAT(sick.worst("database").text,
                HasSubstr("nothing can be written in " + quillora().string() + ": Permission denied"));
    EXPECT_EQ(sick.worst("database").mend, "chmod u+rwx " + quillora().string());
    EXPECT_EQ(sick.worst("folder").mend, "chmod u+rwx " + home.container().string());
}

TEST_F(DoctorJourneys, noProviderAndADisabledOneAreToldApart) {
    static_cast<void>(home.outputOf({"providers", "disable", "eventKit"}));
    auto const disabled = report();
    EXPECT_THAT(disabled.broken(), IsEmpty()); // By the person's own choice.
    EXPECT_EQ(disabled.worst("providers").health, "note");
    EXPECT_EQ(disabled.worst("providers").mend, "quillora providers enable eventKit");
    static_cast<void>(home.outputOf({"providers", "remove", "eventKit"}));
    expectMended("providers", "no calendar provider is registered", {"setup"});
}

TEST_F(DoctorJourneys, aMirrorThatDisagreesIsNamed) {
    fs::remove(mirror());
    expectMended("mirror", "the widget shows no calendars, which is not what is registered",
                 {"providers", "enable", "eventKit"});
    static_cast<void>(home.outputOf({"providers", "disable", "eventKit"}));
    home.write(mirror(), R"(["eventKit"])");
    expectMended("mirror", "the widget shows the calendars of this computer, which is not what is registered",
                 {"providers", "disable", "eventKit"});
}

TEST_F(DoctorJourneys, aMirrorWithoutARegistrationIsNamed) {
    fs::remove(database());
    auto const sick = report();
    EXPECT_THAT(sick.broken(), ElementsAre("providers", "mirror"));
    EXPECT_THAT(sick.worst("mirror").text, HasSubstr("though none is registered"));
    EXPECT_EQ(sick.worst("mirror").mend, "quillora setup");
    ASSERT_EQ(home.quillora({"setup"}).exitCode, 0);
    EXPECT_THAT(report().broken(), IsEmpty());
}

TEST_F(DoctorJourneys, accessThatIsMissingIsNamed) {
    for (auto const* record : {"0", "1", "2", "4", "9"}) {
        home.write(home.configuration() / "calendar-access.json", record);
        EXPECT_EQ(report().worst("calendars").check, ""); // Nothing was read without consent.
        expectMended("access", "Calendar access: ", {"access", "grant"});
    }
    home.write(home.configuration() / "calendar-access.json", "yes");
    expectMended("access", "cannot be read, and counts as none", {"access", "grant"});
}

TEST_F(DoctorJourneys, calendarsThatNobodyMayOpenAreNamed) {
    if (!canGiveUpOverride()) GTEST_SKIP() << "here root cannot give up its power to read everything";
    auto const own = quillora() / "Calendars" / "quillora-native-calendar";
    for (auto const& folder : {own, home.calendars()})
        fs::permissions(folder, fs::perms::none);
    auto const sick = DoctorReport::from(home.quilloraWithoutOverride({"doctor", "--json"}));
    for (auto const& folder : {own, home.calendars()})
        fs::permissions(folder, fs::perms::owner_all);
    EXPECT_THAT(sick.broken(), ElementsAre("access", "sources"));
    EXPECT_THAT(sick.worst("access").text, HasSubstr("not one of the folders of calendars may be opened"));
    EXPECT_THAT(sick.worst("sources").text, HasSubstr("Permission denied"));
}

TEST_F(DoctorJourneys, aCalendarsFolderThatMayNotBeReadIsNamed) {
    if (!canGiveUpOverride()) GTEST_SKIP() << "here root cannot give up its power to read everything";
    auto const folder = home.calendars() / "home";
    fs::permissions(folder, fs::perms::none);
    auto const run = home.quilloraWithoutOverride({"doctor", "--json"});
    fs::permissions(folder, fs::perms::owner_all);
    auto const sick = DoctorReport::from(run);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(sick.broken(), ElementsAre("sources"));
    EXPECT_EQ(sick.worst("sources").text,
              "the folder " + folder.string() + " cannot be read: Permission denied");
    EXPECT_EQ(sick.worst("sources").mend, "chmod u+rx " + folder.string());
    EXPECT_THAT(report().broken(), IsEmpty());
}

TEST_F(DoctorJourneys, settingsThatMayNotBeReadAreNamedWithTheirFolder) {
    if (!canGiveUpOverride()) GTEST_SKIP() << "here root cannot give up its power to read everything";
    for (auto const& [folder, check] :
         {std::pair{home.configuration(), "home"}, {home.container(), "mirror"}}) {
        SCOPED_TRACE(check);
        fs::permissions(folder, fs::perms::none);
        auto const sick = DoctorReport::from(home.quilloraWithoutOverride({"doctor", "--json"}));
        fs::permissions(folder, fs::perms::owner_all);
        EXPECT_THAT(sick.worst(check).text, HasSubstr("Permission denied"));
        EXPECT_EQ(sick.worst(check).mend, "chmod u+rwx " + folder.string());
    }
    EXPECT_THAT(report().broken(), IsEmpty());
}

TEST_F(DoctorJourneys, aSourceThatIsGoneIsNamed) {
    fs::rename(home.calendars(), home.folder() / "elsewhere");
    auto const sick = report();
    EXPECT_THAT(sick.broken(), ElementsAre("sources"));
    EXPECT_EQ(sick.worst("sources").text, "there is no folder " + home.calendars().string());
    auto const mend = sick.worst("sources").mend;
    ASSERT_THAT(mend, HasSubstr("quillora sources remove "));
    static_cast<void>(home.outputOf({"sources", "remove", mend.substr(mend.rfind(' ') + 1)}));
    EXPECT_THAT(report().broken(), IsEmpty());
}

TEST_F(DoctorJourneys, theProductsOwnCalendarIsMissed) {
    fs::remove_all(quillora() / "Calendars");
    expectMended("sources", "Quillora's own calendar cannot be used: there is no folder ", {"setup"});
}

TEST_F(DoctorJourneys, aDamagedListOfSourcesIsNamed) {
    home.write(home.configuration() / "calendar-store.json", "{");
    auto const sick = report();
    EXPECT_THAT(sick.broken(), ElementsAre("sources"));
    EXPECT_THAT(sick.worst("sources").text, HasSubstr("the list of calendar folders is damaged"));
    EXPECT_EQ(sick.worst("sources").mend, "quillora sources add DIR");
}

TEST_F(DoctorJourneys, eventsThatCannotBeShownAreNamed) {
    home.write(home.calendars() / "home" / "broken.ics", "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\n");
    auto const found = report();
    EXPECT_EQ(found.worst("calendars").health, "note");
    EXPECT_THAT(found.worst("calendars").text, HasSubstr("broken.ics"));
    EXPECT_THAT(found.broken(), IsEmpty());
}

TEST_F(DoctorJourneys, aSharedFolderThatIsNotThereIsNamed) {
    auto const missing = home.folder() / "mounted elsewhere";
    home.environment["QUILLORA_GROUP_CONTAINER"] = missing.string();
    auto const sick = report();
    EXPECT_THAT(sick.broken(), ElementsAre("mirror", "folder"));
    EXPECT_EQ(sick.worst("folder").mend, "mkdir -p -m 700 '" + missing.string() + "'");
    home.environment["QUILLORA_GROUP_CONTAINER"] = "relative";
    EXPECT_THAT(report().worst("folder").mend, StartsWith("unset QUILLORA_GROUP_CONTAINER"));
}

TEST(DoctorInANewHomeJourneys, aSharedFolderThatCannotBeMadeIsNamedAndNotTried) {
    PrivateHome home;
    auto const inTheWay = home.folder() / "file";
    home.write(inTheWay, "no folder");
    home.environment["XDG_DATA_HOME"] = inTheWay.string();
    auto const sick = DoctorReport::of(home);
    EXPECT_THAT(sick.broken(), testing::Contains("folder"));
    EXPECT_THAT(sick.worst("folder").text, HasSubstr("and none can be made"));
}

TEST_F(DoctorJourneys, theStoredDayIsLookedAt) {
    auto const file = home.container() / "scheduleWidgetDayOffset.json";
    home.write(file, "-3");
    EXPECT_THAT(report().worst("offset").text, HasSubstr("-3"));
    for (auto const* content : {"25", "soon", "", "1.5"}) {
        home.write(file, content);
        EXPECT_EQ(report().worst("offset").health, "note") << content;
        EXPECT_EQ(report().worst("offset").mend, "quillora today") << content;
        static_cast<void>(home.outputOf({"today"}));
        EXPECT_EQ(report().worst("offset").health, "works") << content;
    }
    fs::remove(file);
    fs::create_directory(file);
    EXPECT_THAT(report().broken(), ElementsAre("offset"));
    EXPECT_EQ(report().worst("offset").mend, "mv " + file.string() + " " + file.string() + ".away");
}

TEST_F(DoctorJourneys, aBusThatDoesNotAnswerIsNamed) {
    home.environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + (home.folder() / "no bus").string();
    EXPECT_THAT(report().broken(), ElementsAre("bus"));
}

TEST_F(DoctorJourneys, aWidgetIsSeenOnTheBus) {
    PrivateBus const bus;
    home.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
    EXPECT_EQ(report().worst("bus").health, "works");
    EXPECT_EQ(report().worst("widget").mend, "quillora-widget");
    auto* const connection = g_dbus_connection_new_for_address_sync(
        bus.address().c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr);
    ASSERT_NE(connection, nullptr);
    g_variant_unref(g_dbus_connection_call_sync(connection, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                "org.freedesktop.DBus", "RequestName",
                                                g_variant_new("(su)", "com.zentorik.quillora.Widget", 0U),
                                                nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
    EXPECT_EQ(report().worst("widget").health, "works");
    g_object_unref(connection);
}

// The program in another place, as a broken installation has it.
class InstalledDoctorJourneys : public DoctorJourneys {
protected:
    void SetUp() override {
        DoctorJourneys::SetUp();
        copyProgram(home.folder() / "usr");
        fs::create_directories(home.folder() / "usr" / "share");
        fs::copy(QUILLORA_BUILD_DIR "/share/quillora", texts(), fs::copy_options::recursive);
    }

    fs::path texts() const { return home.folder() / "usr" / "share" / "quillora"; }

    DoctorReport installedReport() const {
        return DoctorReport::from(run({.path = (home.folder() / "usr" / "bin" / "quillora").string(),
                                       .arguments = {"doctor", "--json"},
                                       .environment = home.environment}));
    }
};

TEST_F(InstalledDoctorJourneys, textsThatAreMissingOrDamagedAreNamed) {
    EXPECT_THAT(installedReport().broken(), IsEmpty());
    auto const table = texts() / "Meetings_Meetings.bundle" / "en.lproj" / "Localizable.strings";
    home.write(table, home.contentOf(table) + "\n\"torn\" = \"off");
    auto const damaged = installedReport();
    EXPECT_THAT(damaged.broken(), ElementsAre("texts"));
    EXPECT_THAT(damaged.worst("texts").text, HasSubstr("Localizable.strings:"));
    home.write(texts() / "WidgetExtension_WidgetExtension.bundle" / "Colors.json", "{");
    EXPECT_THAT(installedReport().worst("texts").text, HasSubstr("Colors.json: "));
    fs::remove_all(texts() / "WidgetExtension_WidgetExtension.bundle");
    EXPECT_THAT(installedReport().worst("texts").text, HasSubstr("WidgetExtension_WidgetExtension.bundle"));
}

TEST_F(DoctorJourneys, aTimeZoneThatNobodyKnowsIsNamed) {
    home.environment["TZ"] = "Mars/Base";
    EXPECT_THAT(report().broken(), ElementsAre("zone"));
    EXPECT_THAT(report().worst("zone").text, HasSubstr("\"Mars/Base\""));
    for (auto const* zone : {"", ":Europe/Madrid", "/usr/share/zoneinfo/Asia/Kathmandu", "UTC", "EST5EDT"}) {
        home.environment["TZ"] = zone;
        EXPECT_EQ(report().worst("zone").health, "works") << zone;
    }
}

TEST_F(DoctorJourneys, missingTimeZoneDataIsNamed) {
    home.environment["TZDIR"] = "/nonexistent";
    auto const sick = report();
    EXPECT_THAT(sick.broken(), ElementsAre("zone"));
    EXPECT_EQ(sick.worst("zone").mend, "apt-get install tzdata");
}

} // namespace
