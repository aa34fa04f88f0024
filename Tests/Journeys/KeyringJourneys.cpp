#include "DoctorReport.h"

#include "Platform/Keychain/SecretServiceKeychain.h"
#include "Tests/Keychain/PrivateKeyring.h"
#include "Tests/Keychain/StubSecretService.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

namespace {

namespace fs = std::filesystem;
using Platform::KeychainStatus;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using Words = std::vector<std::string>;

Platform::GenericPasswordIdentity const theKey{.service = "CalendarProviders.RegistryProvider",
                                               .account = "RealmEncryptionKey"};
std::string const oneEvent = calendarFile(event("u1", "Tea", ":20260311T090000Z", ":20260311T093000Z"));

// A home on a session bus of its own, where a keyring may run: the real daemon of a desktop.
class OnABusJourneys : public testing::Test {
protected:
    void SetUp() override {
        home.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
        home.environment["USER"] = "ann";
        home.write(home.folder() / ".calendars" / "home" / "tea.ics", oneEvent);
    }

    fs::path quillora() const { return home.folder() / "data" / "Quillora"; }
    fs::path database() const { return quillora() / "CalendarProviders.RegistryProvider.realm"; }
    std::string mirror() const { return home.contentOf(home.container() / "enabledCalendarAccounts.json"); }
    Words meets() const { return meetNames(home.dayJSON({"--at", "2026-03-11T08:00"})); }

    // Every command on the registry refuses with that status as its last words, and changes nothing.
    void expectRefusals(int status) const {
        auto const refusal = "\nKeychain lookup failed with status " + std::to_string(status) +
                             "; refusing to regenerate the encryption key\n";
        home.write(quillora() / ".providers.lock", ""); // Held while each of them runs.
        auto const before = home.snapshot();
        for (auto const& words :
             std::vector<Words>{{"providers", "list"},
                                {"providers", "add", "--id", "other", "--email", "a@b", "--name", "Other"},
                                {"providers", "disable", "eventKit"},
                                {"providers", "remove", "eventKit"}}) {
            auto const result = home.quillora(words);
            EXPECT_EQ(result.exitCode, 1) << words[1];
            EXPECT_EQ(result.output, "") << words[1];
            EXPECT_THAT(result.errors, testing::EndsWith(refusal)) << words[1];
            EXPECT_THAT(result.errors, HasSubstr("cannot be used; start or unlock it and try again"))
                << words[1];
        }
        EXPECT_EQ(home.snapshot(), before);
    }

    PrivateBus bus;
    PrivateHome home;
};

class KeyringJourneys : public OnABusJourneys {
protected:
    void SetUp() override {
        OnABusJourneys::SetUp();
        keyring.start(PrivateKeyring::Login::unlocked);
    }

    void setUp() const {
        auto const result = home.quillora({"setup", "--yes"});
        ASSERT_EQ(result.exitCode, 0) << result.errors;
    }

    void logIn(std::string const& url, std::string const& token) const {
        auto const result = home.quillora({"backend", "login", "--url", url, "--token-fd", "0"},
                                          ProgramRun::Output::captured, token);
        ASSERT_EQ(result.exitCode, 0) << result.errors;
    }

    static bool tokenInTheRing(std::string const& url) {
        return Platform::SecretServiceKeychain()
            .copyMatching({.service = "com.zentorik.quillora.backend", .account = url})
            .data.has_value();
    }

    bool isAnywhereInFiles(std::string const& text) const {
        return std::ranges::any_of(home.snapshot(),
                                   [&](auto const& file) { return file.second.contains(text); });
    }

    static std::optional<Foundation::SecretBytes> keyInTheRing() {
        return Platform::SecretServiceKeychain().copyMatching(theKey).data;
    }

    PrivateKeyring keyring{bus};
};

TEST_F(KeyringJourneys, theWholePathFromTheSetUpToTheWidgetsDay) {
    EXPECT_FALSE(keyInTheRing().has_value());
    EXPECT_THAT(home.outputOf({"setup", "--yes"}),
                HasSubstr("Registered \"Calendars on this computer\" (\"ann@"));
    auto const key = keyInTheRing();
    ASSERT_TRUE(key.has_value());
    EXPECT_EQ(key->size(), 64U);
    EXPECT_FALSE(fs::exists(quillora() / "Keychain"));
    EXPECT_EQ(mirror(), R"(["eventKit"])");
    EXPECT_EQ(meets(), Words{"Tea"});
    EXPECT_THAT(DoctorReport::of(home).broken(), IsEmpty());

    static_cast<void>(home.outputOf({"providers", "edit", "eventKit", "--email", "ann@home"}));
    EXPECT_EQ(home.outputOf({"providers", "list"}),
              "eventKit  Calendars on this computer  ann@home  enabled\n");
    EXPECT_EQ(home.contentOf(database()).find("ann@home"), std::string::npos);
    static_cast<void>(home.outputOf({"providers", "disable", "eventKit"}));
    EXPECT_EQ(mirror(), "[]");
    EXPECT_EQ(meets(), Words{});
    static_cast<void>(home.outputOf({"providers", "enable", "eventKit"}));
    EXPECT_EQ(meets(), Words{"Tea"});
    static_cast<void>(home.outputOf({"providers", "remove", "eventKit"}));
    EXPECT_EQ(mirror(), "[]");
    EXPECT_EQ(meets(), Words{});
    EXPECT_THAT(home.outputOf({"setup", "--yes"}), HasSubstr("Registered \"Calendars on this computer\""));
    EXPECT_EQ(meets(), Words{"Tea"});
    EXPECT_EQ(keyInTheRing(), key); // One key for all of it.
}

TEST_F(KeyringJourneys, aSecondSetUpChangesNothing) {
    setUp();
    auto const before = home.snapshot();
    EXPECT_THAT(home.outputOf({"setup", "--yes"}), HasSubstr("nothing was changed\n"));
    EXPECT_EQ(home.snapshot(), before);
}

TEST_F(KeyringJourneys, aLockedKeyringCostsNothing) {
    setUp();
    auto const key = keyInTheRing();
    keyring.lockCollections();
    expectRefusals(-25308);
    auto const setup = home.quillora({"setup", "--yes"});
    EXPECT_EQ(setup.exitCode, 1);
    EXPECT_THAT(setup.errors, HasSubstr("start or unlock it and run \"quillora setup\" again"));
    auto const sick = DoctorReport::of(home);
    EXPECT_THAT(sick.broken(), ElementsAre("keychain"));
    EXPECT_THAT(sick.worst("keychain").text, HasSubstr("locked (status -25308)"));
    EXPECT_THAT(sick.worst("keychain").mend, StartsWith("unlock it"));
    EXPECT_EQ(meets(), Words{"Tea"}); // The widget needs no key.

    keyring.stop();
    keyring.start(PrivateKeyring::Login::locked); // As after a sign-in without a password.
    expectRefusals(-25308);
    keyring.stop();
    keyring.start(PrivateKeyring::Login::unlocked);
    EXPECT_EQ(keyInTheRing(), key);
    EXPECT_THAT(home.outputOf({"providers", "list"}), HasSubstr("enabled"));
    EXPECT_THAT(DoctorReport::of(home).broken(), IsEmpty());
}

TEST_F(KeyringJourneys, anAbsentKeyringCostsNothing) {
    setUp();
    auto const key = keyInTheRing();
    keyring.stop();
    expectRefusals(-36);
    auto const sick = DoctorReport::of(home);
    EXPECT_THAT(sick.broken(), ElementsAre("keychain"));
    EXPECT_THAT(sick.worst("keychain").mend, StartsWith("gnome-keyring-daemon --start"));
    keyring.start(PrivateKeyring::Login::unlocked);
    EXPECT_EQ(keyInTheRing(), key);
    EXPECT_THAT(home.outputOf({"providers", "list"}), HasSubstr("enabled"));
}

TEST_F(KeyringJourneys, aSlowKeyringIsNotWaitedForForever) {
    setUp();
    auto const before = home.snapshot();
    keyring.freeze();
    auto const result = home.quillora({"providers", "list"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(
        result.errors,
        "quillora: the registered providers could not be read, because the desktop's keyring, which holds "
        "the key of the registrations, cannot be used; start or unlock it and try again; \"quillora "
        "doctor\" tells more\n"
        "Keychain lookup failed with status -36; refusing to regenerate the encryption key\n");
    EXPECT_EQ(home.snapshot(), before);
    keyring.kill();
    keyring.start(PrivateKeyring::Login::unlocked);
    EXPECT_THAT(home.outputOf({"providers", "list"}), HasSubstr("enabled"));
}

// A daemon in a home where nobody has made a keyring yet: it answers, and can keep nothing.
TEST_F(OnABusJourneys, aKeyringThatIsNotMadeYetIsNamedAndTheWayOutLeads) {
    PrivateKeyring keyring(bus);
    keyring.start(PrivateKeyring::Login::fresh);
    EXPECT_EQ(home.quillora({"setup", "--yes"}).exitCode, 1);
    auto const sick = DoctorReport::of(home);
    EXPECT_THAT(sick.broken(), ElementsAre("keychain", "providers"));
    EXPECT_THAT(sick.worst("keychain").text, HasSubstr("has no place for secrets yet"));
    EXPECT_THAT(sick.worst("keychain").mend, StartsWith("quillora setup --keychain file"));
    EXPECT_THAT(sick.worst("providers").text, HasSubstr("no calendar provider is registered"));
    ASSERT_EQ(home.quillora({"setup", "--keychain", "file"}).exitCode, 0);
    EXPECT_THAT(DoctorReport::of(home).broken(), IsEmpty());
}

// As "secret-tool store" leaves it, which knows no schema of ours.
TEST_F(KeyringJourneys, aTextOfAnotherProgramInTheKeysPlaceCostsNothing) {
    setUp();
    auto const before = home.contentOf(database());
    for (auto const schema : {PrivateKeyring::Schema::none, PrivateKeyring::Schema::another}) {
        ASSERT_EQ(Platform::SecretServiceKeychain().deleteMatching(theKey), KeychainStatus::success);
        keyring.placeText(theKey, "y", schema);
        expectRefusals(0);
        EXPECT_EQ(home.contentOf(database()), before);
    }
    EXPECT_THAT(DoctorReport::of(home).worst("keychain").text,
                HasSubstr("a text stands in the place of the key"));
}

TEST_F(KeyringJourneys, aKeyringThatHoldsTheKeyIsToBeUnlockedAndNoFileIsOffered) {
    setUp();
    keyring.lockCollections();
    auto const setup = home.quillora({"setup"}, ProgramRun::Output::terminal, "y\ny\ny\n");
    EXPECT_EQ(setup.exitCode, 1);
    EXPECT_THAT(setup.output, testing::Not(HasSubstr("in a file")));
    EXPECT_THAT(setup.output, HasSubstr("which holds the key of the registrations, cannot be used; start or "
                                        "unlock it and run \"quillora setup\" again"));
}

TEST_F(KeyringJourneys, ctrlCWhileTheKeyringHangsEndsTheWait) {
    setUp();
    logIn("https://h.example", "the-token");
    home.environment["TERM"] = "xterm";
    keyring.freeze();
    auto const result = home.quilloraAsked({"backend", "list"}, "Waiting for https://h.example", "\x03");
    keyring.kill();
    EXPECT_EQ(result.exitCode, 130) << result.output;
    EXPECT_THAT(result.output, HasSubstr("quillora: interrupted before the backend had answered"));
}

TEST_F(KeyringJourneys, ctrlCWhileTheKeyringHangsTellsWhatWasDone) {
    struct Row {
        char const* name;
        Words words;
        char const* lastWords;
    };
    home.environment["TERM"] = "xterm";
    ASSERT_EQ(home.quillora({"access", "deny"}).exitCode, 0);
    keyring.freeze();
    for (auto const& row : std::vector<Row>{
             {"set-up",
              {"setup", "--yes"},
              "quillora: interrupted; set up by then: Quillora's own calendar, access to your calendars; run "
              "\"quillora setup\" again for the rest\r\n"},
             {"list", {"providers", "list"}, "quillora: interrupted; no registration was changed\r\n"},
             {"disable",
              {"providers", "disable", "eventKit"},
              "quillora: interrupted; no registration was changed\r\n"},
             {"doctor", {"doctor"}, "quillora: interrupted; nothing was changed\r\n"}}) {
        auto const result =
            home.quilloraAsked(row.words, "Waiting for the desktop's keyring (1 s; Ctrl-C stops)", "\x03");
        EXPECT_EQ(result.exitCode, 130) << row.name << result.output;
        EXPECT_THAT(result.output, testing::EndsWith(row.lastWords)) << row.name;
    }
    keyring.kill();
    EXPECT_EQ(home.contentOf(home.configuration() / "calendar-access.json"), "3");
    EXPECT_FALSE(fs::exists(database()));
    // Who runs it again gets the rest.
    keyring.start(PrivateKeyring::Login::unlocked);
    setUp();
    EXPECT_EQ(meets(), Words{"Tea"});
}

TEST_F(KeyringJourneys, aScriptThatWaitsForTheKeyringReadsNothingOfIt) {
    setUp();
    keyring.freeze();
    auto const result = home.quillora({"doctor"});
    keyring.kill();
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.errors.find("Waiting"), std::string::npos) << result.errors;
}

TEST_F(OnABusJourneys, aKeyringThatDeniesGetsNoKey) {
    StubSecretService const service(bus.address(), StubSecretService::Manner::denies);
    expectRefusals(-25293);
    auto const setup = home.quillora({"setup", "--yes"});
    EXPECT_EQ(setup.exitCode, 1);
    EXPECT_THAT(setup.errors, testing::EndsWith("\nKeychain lookup failed with status -25293; refusing to "
                                                "regenerate the encryption key\n"));
    EXPECT_FALSE(fs::exists(database()));
    EXPECT_EQ(mirror(), "");
    EXPECT_THAT(DoctorReport::of(home).worst("keychain").text, HasSubstr("refuses access (status -25293)"));
}

TEST_F(KeyringJourneys, aTextInTheKeysPlaceStaysAndNoKeyIsMade) {
    keyring.placeText(theKey, "written by hand");
    expectRefusals(0);
    auto const setup = home.quillora({"setup", "--yes"});
    EXPECT_EQ(setup.exitCode, 1);
    EXPECT_FALSE(fs::exists(database()));
    auto const match = Platform::SecretServiceKeychain().copyMatching(theKey);
    EXPECT_EQ(match.status, KeychainStatus::success);
    EXPECT_FALSE(match.data.has_value());
    auto const sick = DoctorReport::of(home).worst("keychain");
    EXPECT_THAT(sick.text, HasSubstr("a text stands in the place of the key (status 0)"));
    EXPECT_THAT(sick.mend, HasSubstr("\"Quillora: CalendarProviders.RegistryProvider\""));
}

TEST_F(KeyringJourneys, aKeyringThatLostTheKeyGetsANewOneAndTheOldDatabaseIsKept) {
    setUp();
    auto const key = keyInTheRing();
    auto const oldBytes = home.contentOf(database());
    ASSERT_EQ(Platform::SecretServiceKeychain().deleteMatching(theKey), KeychainStatus::success);
    auto const sick = DoctorReport::of(home); // Before anything is lost.
    EXPECT_THAT(sick.broken(), ElementsAre("keychain"));
    EXPECT_THAT(sick.worst("keychain").text, HasSubstr("holds no key (status -25300)"));

    auto const list = home.quillora({"providers", "list"});
    EXPECT_EQ(list.exitCode, 0);
    EXPECT_THAT(list.output, StartsWith("No calendar provider is registered yet"));
    EXPECT_THAT(list.errors, StartsWith("quillora: the database of the registered providers did not open"));
    auto const newKey = keyInTheRing();
    ASSERT_TRUE(newKey.has_value());
    EXPECT_NE(newKey, key);
    auto const files = home.snapshot();
    EXPECT_EQ(std::ranges::count(files, oldBytes, &std::pair<std::string const, std::string>::second), 1);

    auto const told = DoctorReport::of(home);
    EXPECT_THAT(told.worst("quarantine").text,
                HasSubstr("a database that did not open is kept, and may go once "));
    EXPECT_THAT(told.broken(), ElementsAre("providers", "mirror"));
    EXPECT_EQ(told.worst("providers").mend, "quillora setup");
    setUp();
    EXPECT_THAT(DoctorReport::of(home).broken(), IsEmpty());
    EXPECT_EQ(keyInTheRing(), newKey);
}

TEST_F(KeyringJourneys, theKeyMovesToAFileAndBackWithoutALoss) {
    setUp();
    auto const list = home.outputOf({"providers", "list"});
    auto const key = keyInTheRing();
    static_cast<void>(home.outputOf({"setup", "--keychain", "file"}));
    EXPECT_FALSE(keyInTheRing().has_value()); // No copy stays behind.
    keyring.stop();
    EXPECT_EQ(home.outputOf({"providers", "list"}), list);
    keyring.start(PrivateKeyring::Login::unlocked);
    static_cast<void>(home.outputOf({"setup", "--keychain", "secret-service"}));
    EXPECT_EQ(home.outputOf({"providers", "list"}), list);
    EXPECT_EQ(keyInTheRing(), key);
    EXPECT_TRUE(fs::is_empty(quillora() / "Keychain"));
}

TEST_F(KeyringJourneys, theTokenMovesWithTheKeyAndALogoutLeavesNone) {
    setUp();
    logIn("https://h.example", "the-token");
    EXPECT_TRUE(tokenInTheRing("https://h.example"));
    EXPECT_EQ(home.quillora({"setup", "--keychain", "file"}).errors, "");
    EXPECT_FALSE(tokenInTheRing("https://h.example"));
    EXPECT_TRUE(isAnywhereInFiles("the-token"));
    EXPECT_EQ(home.quillora({"setup", "--keychain", "secret-service"}).errors, "");
    EXPECT_TRUE(tokenInTheRing("https://h.example"));
    EXPECT_FALSE(isAnywhereInFiles("the-token"));
    static_cast<void>(home.outputOf({"backend", "logout"}));
    EXPECT_FALSE(tokenInTheRing("https://h.example"));
}

TEST_F(KeyringJourneys, whatCannotBeTakenAlongOrAwayIsNamed) {
    static_cast<void>(home.outputOf({"setup", "--yes", "--keychain", "file"}));
    logIn("https://h.example", "the-token");
    // Another key than the one in use, which nobody may take away unasked.
    ASSERT_EQ(
        Platform::SecretServiceKeychain().add(theKey, Foundation::SecretBytes::filledBy(64, [](auto) {})),
        KeychainStatus::success);
    home.write(home.configuration() / "keychain.json", "\"secret-service\"");
    keyring.placeText({.service = "com.zentorik.quillora.backend", .account = "https://h.example"}, "a text");
    auto const result = home.quillora({"setup", "--keychain", "file"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.errors, HasSubstr("the token for \"https://h.example\" could not be taken along"));
    EXPECT_THAT(result.errors, HasSubstr("\"Quillora: CalendarProviders.RegistryProvider\""));
    EXPECT_THAT(result.errors, HasSubstr("\"Quillora: com.zentorik.quillora.backend\""));
}

// Whichever keychain the mending names: what it says opens the database is asked, not the damaged record.
TEST_F(KeyringJourneys, aDamagedChoiceCostsNoRegistrationWhicheverWayItIsMended) {
    for (auto const* inUse : {"file", "secret-service"}) {
        for (auto const* named : {"file", "secret-service"}) {
            SCOPED_TRACE(std::string(inUse) + " mended with " + named);
            ASSERT_EQ(home.quillora({"setup", "--yes", "--keychain", inUse}).exitCode, 0);
            static_cast<void>(home.outputOf({"providers", "edit", "eventKit", "--name", "Precious"}));
            home.write(home.configuration() / "keychain.json", "rubbish");
            EXPECT_EQ(DoctorReport::of(home).worst("keychain").mend,
                      std::string("quillora setup --keychain ") + inUse);
            auto const mended = home.quillora({"setup", "--keychain", named});
            EXPECT_EQ(mended.exitCode, 0) << mended.errors;
            EXPECT_EQ(mended.errors, "");
            EXPECT_THAT(home.outputOf({"providers", "list"}), HasSubstr("Precious"));
            EXPECT_EQ(DoctorReport::of(home).worst("quarantine").check, "");
        }
    }
}

TEST_F(KeyringJourneys, aDamagedChoiceIsNotMendedWhileTheKeyMayBeOutOfReach) {
    setUp();
    static_cast<void>(home.outputOf({"providers", "edit", "eventKit", "--name", "Precious"}));
    home.write(home.configuration() / "keychain.json", "rubbish");
    keyring.lockCollections();
    auto const before = home.contentOf(database());
    auto const refused = home.quillora({"setup", "--keychain", "file"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_THAT(refused.errors, HasSubstr("(status -25308), so the keychain stays as it was"));
    EXPECT_EQ(home.contentOf(home.configuration() / "keychain.json"), "rubbish");
    EXPECT_EQ(home.contentOf(database()), before);
    keyring.stop();
    keyring.start(PrivateKeyring::Login::unlocked);
    ASSERT_EQ(home.quillora({"setup", "--keychain", "file"}).exitCode, 0);
    EXPECT_THAT(home.outputOf({"providers", "list"}), HasSubstr("Precious"));
}

TEST_F(KeyringJourneys, aLockedKeyringIsOfferedAFileOnATerminal) {
    keyring.lockCollections();
    auto const result = home.quillora({"setup"}, ProgramRun::Output::terminal, "yes\ny\ny\n");
    EXPECT_EQ(result.exitCode, 0) << result.output;
    EXPECT_THAT(result.output, HasSubstr("Keychain lookup failed with status -25308"));
    EXPECT_THAT(result.output, HasSubstr("Registered \"Calendars on this computer\""));
    EXPECT_EQ(home.contentOf(home.configuration() / "keychain.json"), "\"file\"");
}

} // namespace
