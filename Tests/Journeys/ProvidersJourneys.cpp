#include "PrivateHome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <sys/stat.h>
#include <thread>

namespace {

namespace fs = std::filesystem;
namespace JSON = Foundation::JSON;
using testing::HasSubstr;
using Words = std::vector<std::string>;

Words const addition = {"providers", "add", "--id", "cal", "--email", "ann@host", "--name", "My calendars"};

// A home whose person asked for the keychain of files: there is no bus, and so no keyring.
class ProvidersJourneys : public testing::Test {
protected:
    void SetUp() override { home.write(home.configuration() / "keychain.json", "\"file\""); }

    fs::path quillora() const { return home.folder() / "data" / "Quillora"; }
    fs::path database() const { return quillora() / "CalendarProviders.RegistryProvider.realm"; }
    fs::path mirror() const { return home.container() / "enabledCalendarAccounts.json"; }

    /// The id, name, address, description and state of each provider, as programs read them.
    std::vector<Words> listed() const {
        auto const document = JSON::parse(home.outputOf({"providers", "list", "--json"}));
        std::vector<Words> found;
        EXPECT_TRUE(document.has_value());
        if (!document) return found;
        EXPECT_EQ(JSON::integer(*document->member("version")), 1);
        for (auto const& provider : std::get<JSON::Array>(document->member("providers")->storage)) {
            Words texts;
            for (auto const* key : {"capId", "capProvider", "capDisplayName", "capEmail", "capDescription"})
                texts.push_back(JSON::text(*provider.member(key)).value());
            texts.emplace_back(JSON::boolean(*provider.member("capIsEnabled")).value() ? "on" : "off");
            found.push_back(texts);
        }
        return found;
    }

    void expectRefusal(Words const& words, std::string const& errors) const {
        auto const result = home.quillora(words);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.errors, errors);
    }

    // What each command came to that was run at the same moment as the others.
    std::vector<ProgramResult> together(std::vector<Words> const& commands) const {
        std::vector<ProgramResult> results(commands.size());
        std::vector<std::thread> threads;
        for (std::size_t index = 0; index < commands.size(); ++index)
            threads.emplace_back([&, index] { results[index] = home.quillora(commands[index]); });
        for (auto& thread : threads)
            thread.join();
        return results;
    }

    PrivateHome home;
    std::vector<Words> const onlyCal = {{"cal", "eventKit", "My calendars", "ann@host", "", "on"}};
};

TEST_F(ProvidersJourneys, aRegisteredProviderIsListed) {
    EXPECT_EQ(home.outputOf({"providers", "list"}),
              "No calendar provider is registered yet; register one with \"quillora providers add\"\n");
    EXPECT_EQ(home.outputOf({"providers", "list", "--json"}), "{\"version\":1,\"providers\":[]}\n");
    EXPECT_EQ(home.outputOf(addition), "Registered \"My calendars\" (\"ann@host\") as \"cal\"\n");
    EXPECT_EQ(home.outputOf({"providers", "list"}), "cal  My calendars  ann@host  enabled\n");
    EXPECT_EQ(listed(), onlyCal);
}

TEST_F(ProvidersJourneys, aRegistrationSwitchesTheWidgetOn) {
    home.write(home.calendars() / "home" / "tea.ics",
               calendarFile(event("u1", "Tea", ":20260311T090000Z", ":20260311T093000Z")));
    static_cast<void>(home.outputOf({"sources", "add", home.calendars().string()}));
    static_cast<void>(home.outputOf({"access", "grant"}));
    EXPECT_THAT(home.quillora({"day", "--at", "2026-03-11T08:00"}).errors, HasSubstr("not switched on yet"));
    static_cast<void>(home.outputOf(addition));
    EXPECT_EQ(home.contentOf(mirror()), R"(["eventKit"])");
    EXPECT_EQ(meetNames(home.dayJSON({"--at", "2026-03-11T08:00"})), Words{"Tea"});
    EXPECT_EQ(home.outputOf({"providers", "disable", "cal"}), "Disabled \"My calendars\"\n");
    EXPECT_EQ(home.contentOf(mirror()), "[]");
    EXPECT_EQ(meetNames(home.dayJSON({"--at", "2026-03-11T08:00"})), Words{});
    EXPECT_EQ(home.outputOf({"providers", "enable", "cal"}), "Enabled \"My calendars\"\n");
    EXPECT_EQ(meetNames(home.dayJSON({"--at", "2026-03-11T08:00"})), Words{"Tea"});
}

TEST_F(ProvidersJourneys, whatItMakesIsForThePersonAloneAndSealed) {
    static_cast<void>(home.outputOf(addition));
    ASSERT_TRUE(fs::is_regular_file(database()));
    for (auto const& entry : fs::recursive_directory_iterator(home.folder() / "data")) {
        struct stat status{};
        ASSERT_EQ(::stat(entry.path().c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777U, entry.is_directory() ? 0700U : 0600U) << entry.path();
    }
    EXPECT_EQ(home.contentOf(database()).find("ann@host"), std::string::npos);
}

TEST_F(ProvidersJourneys, anEditChangesWhatIsGivenAndLeavesTheRest) {
    static_cast<void>(home.outputOf(addition));
    EXPECT_EQ(home.outputOf({"providers", "edit", "cal", "--email", "ann@home", "--description", "At home"}),
              "The provider is now \"My calendars\" (\"ann@home\")\n");
    EXPECT_EQ(listed(),
              (std::vector<Words>{{"cal", "eventKit", "My calendars", "ann@home", "At home", "on"}}));
    static_cast<void>(home.outputOf({"providers", "disable", "cal"}));
    static_cast<void>(home.outputOf({"providers", "edit", "cal", "--name", ""}));
    EXPECT_EQ(listed(), (std::vector<Words>{{"cal", "eventKit", "", "ann@home", "At home", "off"}}));
    EXPECT_EQ(home.contentOf(mirror()), "[]");
}

TEST_F(ProvidersJourneys, aRemovedProviderIsForgotten) {
    static_cast<void>(home.outputOf(addition));
    EXPECT_EQ(home.outputOf({"providers", "remove", "cal"}), "Removed \"My calendars\"\n");
    EXPECT_EQ(listed(), std::vector<Words>{});
    EXPECT_EQ(home.contentOf(mirror()), "[]");
    static_cast<void>(home.outputOf(addition));
    EXPECT_EQ(listed(), onlyCal);
}

TEST_F(ProvidersJourneys, removingAnUnknownIdSucceedsAndMendsTheMirror) {
    static_cast<void>(home.outputOf(addition));
    home.write(mirror(), "[]");
    EXPECT_EQ(home.outputOf({"providers", "remove", "nobody"}), "No provider is registered as \"nobody\"\n");
    EXPECT_EQ(home.contentOf(mirror()), R"(["eventKit"])");
    EXPECT_EQ(listed(), onlyCal);
}

struct RefusedProvider {
    char const* name;
    Words words;
    char const* errors;
};

void PrintTo(RefusedProvider const& refused, std::ostream* stream) {
    *stream << refused.name;
}

class RefusedProviderJourneys : public ProvidersJourneys,
                                public testing::WithParamInterface<RefusedProvider> {};

TEST_P(RefusedProviderJourneys, endWithTheRegistrysMessageAndChangeNothing) {
    static_cast<void>(home.outputOf(addition));
    auto const before = home.snapshot();
    expectRefusal(GetParam().words, GetParam().errors);
    EXPECT_EQ(home.snapshot(), before);
}

INSTANTIATE_TEST_SUITE_P(
    Providers, RefusedProviderJourneys,
    testing::Values(RefusedProvider{"blankId",
                                    {"providers", "add", "--id", "   ", "--email", "", "--name", "N"},
                                    "quillora: the provider \"   \" was not registered\n"
                                    "The provider id cannot be empty\n"},
                    RefusedProvider{"emptyId",
                                    {"providers", "add", "--id", "", "--email", "a@b", "--name", "N"},
                                    "quillora: the provider \"\" was not registered\n"
                                    "The provider id cannot be empty\n"},
                    RefusedProvider{"blankEmail",
                                    {"providers", "add", "--id", "b", "--email", "\t", "--name", "N"},
                                    "quillora: the provider \"b\" was not registered\n"
                                    "The provider email cannot be empty\n"},
                    RefusedProvider{"secondOfTheKind",
                                    {"providers", "add", "--id", "b", "--email", "a@b", "--name", "N"},
                                    "quillora: the provider \"b\" was not registered\n"
                                    "A provider of type eventKit is already registered\n"},
                    RefusedProvider{"sameIdAgain", addition,
                                    "quillora: the provider \"cal\" was not registered\n"
                                    "A provider of type eventKit is already registered\n"},
                    RefusedProvider{"editOfAnUnknownId",
                                    {"providers", "edit", "nobody", "--name", "N"},
                                    "quillora: the provider \"nobody\" was not changed\n"
                                    "No provider is registered with that id\n"},
                    RefusedProvider{"enablingAnUnknownId",
                                    {"providers", "enable", "CAL"},
                                    "quillora: the provider \"CAL\" was not changed\n"
                                    "No provider is registered with that id\n"},
                    RefusedProvider{"disablingAnUnknownId",
                                    {"providers", "disable", " cal"},
                                    "quillora: the provider \" cal\" was not changed\n"
                                    "No provider is registered with that id\n"},
                    RefusedProvider{"blankEmailInAnEdit",
                                    {"providers", "edit", "cal", "--email", " "},
                                    "quillora: the provider \"cal\" was not changed\n"
                                    "The provider email cannot be empty\n"}),
    [](testing::TestParamInfo<RefusedProvider> const& info) { return std::string(info.param.name); });

TEST_F(ProvidersJourneys, withoutAKeyringNoKeyIsMadeAndNothingIsTouched) {
    static_cast<void>(home.outputOf(addition));
    // The keyring of the desktop, which this home does not have.
    home.write(home.configuration() / "keychain.json", "\"secret-service\"");
    auto const before = home.snapshot();
    std::string const refusal =
        "Keychain lookup failed with status -36; refusing to regenerate the encryption key\n";
    std::string const remedy =
        ", because the desktop's keyring, which holds the key of the registrations, cannot "
        "be used; start or unlock it and try again; \"quillora doctor\" tells more\n" +
        refusal;
    expectRefusal({"providers", "list"}, "quillora: the registered providers could not be read" + remedy);
    expectRefusal(addition, "quillora: the provider \"cal\" was not registered" + remedy);
    expectRefusal({"providers", "remove", "cal"}, "quillora: the provider \"cal\" was not removed" + remedy);
    EXPECT_EQ(home.snapshot(), before);
}

TEST_F(ProvidersJourneys, withoutAChoiceItIsTheKeyringOfTheDesktop) {
    fs::remove(home.configuration() / "keychain.json");
    // Where there is nothing registered, there is another way.
    expectRefusal(
        {"providers", "list"},
        "quillora: the registered providers could not be read, because the desktop's keyring cannot be "
        "used; start or unlock it and try again, or keep the key in a file that only you can read with "
        "\"quillora setup --keychain file\"; \"quillora doctor\" tells more\n"
        "Keychain lookup failed with status -36; refusing to regenerate the encryption key\n");
}

TEST_F(ProvidersJourneys, aChoiceWhoseRecordWasLostIsToldByTheKeyFile) {
    static_cast<void>(home.outputOf(addition));
    fs::remove(home.configuration() / "keychain.json");
    EXPECT_EQ(listed(), onlyCal);
    static_cast<void>(home.outputOf({"setup", "--yes", "--keychain", "file"}));
    EXPECT_EQ(home.contentOf(home.configuration() / "keychain.json"), "\"file\"");
    EXPECT_EQ(listed(), onlyCal);
}

TEST_F(ProvidersJourneys, aKeychainThatHoldsTheRightKeyAlreadyNeedsNoOther) {
    static_cast<void>(home.outputOf(addition));
    home.write(home.configuration() / "keychain.json", "\"secret-service\""); // Which does not run.
    static_cast<void>(home.outputOf({"setup", "--yes", "--keychain", "file"}));
    EXPECT_EQ(listed(), onlyCal);
}

TEST_F(ProvidersJourneys, severalFirstSetUpsAtOnceMakeOneKey) {
    auto const results = together(std::vector<Words>(6, {"setup", "--yes", "--keychain", "file"}));
    for (auto const& result : results)
        EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(listed().size(), 1U);
    for (auto const& entry : fs::directory_iterator(quillora()))
        EXPECT_EQ(entry.path().filename().string().find("quarantined"), std::string::npos) << entry.path();
}

TEST_F(ProvidersJourneys, ofSeveralAdditionsAtOnceOneIsRegistered) {
    static_cast<void>(home.outputOf({"providers", "list"})); // A key is there.
    std::vector<Words> additions;
    for (int number = 1; number <= 6; ++number) {
        additions.push_back({"providers", "add", "--id", "p" + std::to_string(number), "--email", "a@b",
                             "--name", "N" + std::to_string(number)});
    }
    auto const results = together(additions);
    EXPECT_EQ(std::ranges::count(results, 0, &ProgramResult::exitCode), 1);
    for (auto const& result : results) {
        if (result.exitCode == 0) continue;
        EXPECT_THAT(result.errors,
                    testing::EndsWith("\nA provider of type eventKit is already registered\n"));
    }
    EXPECT_EQ(listed().size(), 1U);
}

TEST_F(ProvidersJourneys, changesAtOnceAllStay) {
    static_cast<void>(home.outputOf(addition));
    for (int round = 0; round < 3; ++round) {
        auto const number = std::to_string(round);
        auto const results = together({{"providers", "edit", "cal", "--name", "Name " + number},
                                       {"providers", "edit", "cal", "--email", number + "@home"},
                                       {"providers", "edit", "cal", "--description", "Text " + number},
                                       {"providers", round % 2 == 0 ? "disable" : "enable", "cal"}});
        for (auto const& result : results)
            EXPECT_EQ(result.exitCode, 0) << result.errors;
        EXPECT_EQ(listed(), (std::vector<Words>{{"cal", "eventKit", "Name " + number, number + "@home",
                                                 "Text " + number, round % 2 == 0 ? "off" : "on"}}));
        EXPECT_EQ(home.contentOf(mirror()), round % 2 == 0 ? "[]" : R"(["eventKit"])");
    }
}

TEST_F(ProvidersJourneys, whatIsRemovedStaysRemovedWhateverIsEditedMeanwhile) {
    for (int round = 0; round < 5; ++round) {
        static_cast<void>(home.outputOf(addition));
        auto const results =
            together({{"providers", "remove", "cal"}, {"providers", "edit", "cal", "--name", "New"}});
        EXPECT_EQ(results[0].exitCode, 0) << results[0].errors;
        if (results[1].exitCode != 0)
            EXPECT_THAT(results[1].errors, testing::EndsWith("No provider is registered with that id\n"));
        EXPECT_EQ(listed(), std::vector<Words>{});
    }
}

TEST_F(ProvidersJourneys, ofSeveralLoginsAtOnceOneTokenStaysAndALogoutTakesIt) {
    std::vector<ProgramResult> results(5);
    std::vector<std::thread> threads;
    for (std::size_t index = 0; index < results.size(); ++index) {
        threads.emplace_back([&, index] {
            auto const number = std::to_string(index);
            results[index] = home.quillora(
                {"backend", "login", "--url", "https://h" + number + ".example", "--token-fd", "0"},
                ProgramRun::Output::captured, "the-token-" + number);
        });
    }
    for (auto& thread : threads)
        thread.join();
    for (auto const& result : results) {
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.errors, "");
    }
    auto const isToken = [](auto const& file) { return file.second.contains("the-token-"); };
    EXPECT_EQ(std::ranges::count_if(home.snapshot(), isToken), 1);
    static_cast<void>(home.outputOf({"backend", "logout"}));
    EXPECT_EQ(std::ranges::count_if(home.snapshot(), isToken), 0);
}

TEST_F(ProvidersJourneys, aLockThatCannotBeOpenedIsNamed) {
    static_cast<void>(home.outputOf(addition));
    auto const lock = quillora() / ".providers.lock";
    fs::remove(lock);
    fs::create_directory(lock);
    expectRefusal(
        {"providers", "disable", "cal"},
        "quillora: the registered providers could not be locked, so nothing was changed: " + lock.string() +
            " cannot be opened (Is a directory); remove that file, and try again\n");
    fs::remove(lock);
    EXPECT_EQ(listed(), onlyCal);
}

TEST_F(ProvidersJourneys, aChoiceThatNamesNoKeychainIsNotGuessed) {
    static_cast<void>(home.outputOf(addition));
    home.write(home.configuration() / "keychain.json", "file");
    auto const before = home.snapshot();
    expectRefusal(
        {"providers", "list"},
        "quillora: the registered providers could not be read\n"
        "the file " +
            (home.configuration() / "keychain.json").string() +
            " names no keychain, so no key was looked for; write \"secret-service\" or \"file\" into "
            "it, with the quotation marks\n");
    EXPECT_EQ(home.snapshot(), before);
}

TEST_F(ProvidersJourneys, aDatabaseOfOtherBytesIsSetAsideAndANewOneBegun) {
    static_cast<void>(home.outputOf(addition));
    std::string const damaged = "these bytes are no database";
    home.write(database(), damaged);
    auto const list = home.quillora({"providers", "list"});
    EXPECT_EQ(list.exitCode, 0);
    EXPECT_THAT(list.errors, testing::MatchesRegex(
                                 "quillora: the database of the registered providers did not open, so "
                                 "that none of them is known any more; it is kept as " +
                                 quillora().string() +
                                 "/quarantined-[0-9TZ]+-00-CalendarProviders.RegistryProvider.realm, and "
                                 "\"quillora setup\" registers anew\n"));
    EXPECT_EQ(listed(), std::vector<Words>{});
    // The old bytes are kept beside it.
    auto const files = home.snapshot();
    EXPECT_EQ(std::ranges::count(files, damaged, &std::pair<std::string const, std::string>::second), 1);
    static_cast<void>(home.outputOf(addition));
    EXPECT_EQ(listed(), onlyCal);
}

TEST_F(ProvidersJourneys, aWidgetThatCannotBeToldIsReported) {
    static_cast<void>(home.outputOf(addition));
    fs::remove(mirror());
    fs::create_directory(mirror()); // Nothing can be written in its place.
    auto const result = home.quillora({"providers", "disable", "cal"});
    EXPECT_EQ(result.exitCode, 0) << result.errors; // Nothing is enabled, and nothing is what it tells.
    auto const failed = home.quillora({"providers", "enable", "cal"});
    EXPECT_EQ(failed.exitCode, 1);
    EXPECT_EQ(failed.errors,
              "quillora: the registered providers were changed, but the widget could not be told: " +
                  mirror().string() +
                  " cannot be written (Is a directory); when that is mended, run the same \"quillora "
                  "providers enable\" or \"disable\" once more\n");
    EXPECT_EQ(listed(), onlyCal);
}

TEST_F(ProvidersJourneys, theSetUpRegistersUnderTheKeychainThatIsNamed) {
    std::filesystem::remove(home.configuration() / "keychain.json");
    home.environment["USER"] = "ann";
    auto const output = home.outputOf({"setup", "--yes", "--keychain", "file"});
    EXPECT_THAT(output,
                HasSubstr("kept in a file that only you can read. That protects them from other users "
                          "of this computer, but not from the programs that you run"));
    EXPECT_THAT(output, HasSubstr("Registered \"Calendars on this computer\" (\"ann@"));
    EXPECT_EQ(home.contentOf(home.configuration() / "keychain.json"), "\"file\"");
    EXPECT_EQ(home.contentOf(mirror()), R"(["eventKit"])");
    auto const providers = listed();
    ASSERT_EQ(providers.size(), 1U);
    EXPECT_EQ(providers[0][0], "eventKit");
    EXPECT_TRUE(providers[0][3].starts_with("ann@")) << providers[0][3];
}

TEST_F(ProvidersJourneys, aSecondSetUpEnablesWhatIsRegisteredAndLeavesTheRest) {
    static_cast<void>(home.outputOf(addition));
    static_cast<void>(home.outputOf({"providers", "disable", "cal"}));
    static_cast<void>(home.outputOf({"setup", "--yes", "--keychain", "file"}));
    EXPECT_EQ(listed(), onlyCal);
    EXPECT_EQ(home.contentOf(mirror()), R"(["eventKit"])");
}

TEST_F(ProvidersJourneys, aKeychainThatCannotTakeTheKeyIsNotChanged) {
    static_cast<void>(home.outputOf(addition));
    auto const result = home.quillora({"setup", "--yes", "--keychain", "secret-service"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(
        result.errors,
        "quillora: the key of the registered providers could not be copied into the other keychain "
        "(status -36), so the keychain stays as it was; see that both can be used, and try again. Where "
        "the old one is gone for good, so are the registrations: move " +
            database().string() + " away, and try again\n");
    EXPECT_EQ(home.contentOf(home.configuration() / "keychain.json"), "\"file\"");
    EXPECT_EQ(listed(), onlyCal);
}

TEST_F(ProvidersJourneys, withoutAKeyringTheSetUpForOneSaysSo) {
    std::filesystem::remove(home.configuration() / "keychain.json");
    auto const result = home.quillora({"setup", "--yes", "--keychain", "secret-service"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.errors, testing::EndsWith("\"quillora setup --keychain file\"\nKeychain lookup failed "
                                                 "with status -36; refusing to regenerate the encryption "
                                                 "key\n"));
    EXPECT_FALSE(fs::exists(mirror()));
}

TEST_F(ProvidersJourneys, aKeyringThatIsGoneForGoodIsLeftByTheWayThatIsNamed) {
    static_cast<void>(home.outputOf(addition));
    home.write(home.configuration() / "keychain.json", "\"secret-service\"");
    fs::remove_all(quillora() / "Keychain");
    ASSERT_EQ(home.quillora({"setup", "--yes", "--keychain", "file"}).exitCode, 1);
    fs::rename(database(), home.folder() / "old");
    EXPECT_THAT(home.outputOf({"setup", "--yes", "--keychain", "file"}),
                HasSubstr("Registered \"Calendars on"));
    EXPECT_EQ(home.contentOf(mirror()), R"(["eventKit"])");
}

TEST_F(ProvidersJourneys, textsOfAnyKindAreKeptAndShownHarmlessly) {
    static_cast<void>(home.outputOf({"providers", "add", "--id", "a b/ñ", "--email", "\"ann\"@host", "--name",
                                     "Rot\x1b[31m\n漢", "--description", "\xff"}));
    EXPECT_EQ(listed(), (std::vector<Words>{
                            {"a b/ñ", "eventKit", "Rot\x1b[31m\n漢", "\"ann\"@host", "\xef\xbf\xbd", "on"}}));
    auto const output = home.outputOf({"providers", "list"});
    EXPECT_EQ(output.find('\x1b'), std::string::npos);
    EXPECT_EQ(std::ranges::count(output, '\n'), 1);
    EXPECT_EQ(home.outputOf({"providers", "remove", "a b/ñ"}).find('\x1b'), std::string::npos);
}

TEST_F(ProvidersJourneys, withoutAHomeItSaysWhatIsMissing) {
    for (auto const* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
        home.environment.erase(variable);
    for (auto const& words : std::vector<Words>{{"providers", "list"}, addition}) {
        auto const result = home.quillora(words);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.errors,
                  "quillora: neither HOME nor XDG_CONFIG_HOME and XDG_DATA_HOME name a folder, so there is "
                  "no place for Quillora's files; set HOME\n");
    }
}

} // namespace
