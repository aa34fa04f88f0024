#include "PrivateHome.h"

#include "Tests/Audio/StandInProgram.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

namespace JSON = Foundation::JSON;
using testing::HasSubstr;
using testing::StartsWith;

class AlarmJourneys : public testing::Test {
protected:
    // Nothing that could be heard is on the path but what a test puts there.
    AlarmJourneys() { home.environment["PATH"] = programs.path().string(); }

    [[nodiscard]] std::string settings() const {
        return home.contentOf(home.configuration() / "defaults.json");
    }

    // One calendar with the identifier that is returned.
    [[nodiscard]] std::string calendarNamed(std::string const& name) const {
        home.write(home.calendars() / name / "e.ics",
                   calendarFile(event(name, "Tea", ":20260311T090000Z", ":20260311T093000Z")));
        home.write(home.calendars() / name / "displayname", name);
        auto const list = JSON::parse(home.outputOf({"alarm", "calendars", "list", "--json"}));
        for (auto const& calendar : std::get<JSON::Array>(list->member("calendars")->storage)) {
            auto const* const title = calendar.member("eciTitle");
            if (title != nullptr && JSON::text(*title) == name)
                return JSON::text(*calendar.member("eciId")).value();
        }
        ADD_FAILURE() << name << " is not listed";
        return {};
    }

    TemporaryFolder programs;
    PrivateHome home;
};

TEST_F(AlarmJourneys, aNewHomeSpeaksSpanishInTheUsualWords) {
    EXPECT_EQ(home.outputOf({"alarm", "mode"}), "voice\n");
    EXPECT_EQ(home.outputOf({"alarm", "voice"}), "spanish\n");
    EXPECT_EQ(home.outputOf({"alarm", "template"}), "\n");
    EXPECT_EQ(home.outputOf({"alarm", "preview", "--text"}), "Tienes a Sync con el equipo.\n");
    EXPECT_FALSE(std::filesystem::exists(home.configuration() / "defaults.json"));
}

TEST_F(AlarmJourneys, whatIsChosenIsStoredAndPrinted) {
    EXPECT_EQ(home.outputOf({"alarm", "mode", "funk"}), "Meets are announced with: Funk\n");
    EXPECT_EQ(home.outputOf({"alarm", "mode"}), "funk\n");
    EXPECT_EQ(home.outputOf({"alarm", "voice", "english"}), "Announcements are spoken in: English\n");
    EXPECT_EQ(home.outputOf({"alarm", "voice"}), "english\n");
    EXPECT_EQ(settings(), R"({"meetAlarmMode":"funk","meetAlarmVoiceLanguage":"english"})");
    EXPECT_EQ(home.outputOf({"alarm", "preview", "--text"}), "You have a Team sync.\n");
}

TEST_F(AlarmJourneys, whatIsNoModeOrLanguageIsRefusedAndNothingIsStored) {
    auto const mode = home.quillora({"alarm", "mode", "Funk"});
    EXPECT_EQ(mode.exitCode, 2);
    EXPECT_EQ(mode.errors, "quillora: MODE takes voice, hero or funk, not \"Funk\"\n");
    auto const voice = home.quillora({"alarm", "voice", "en"});
    EXPECT_EQ(voice.exitCode, 2);
    EXPECT_EQ(voice.errors, "quillora: LANGUAGE takes spanish or english, not \"en\"\n");
    EXPECT_EQ(home.quillora({"alarm", "mode", "hero", "funk"}).exitCode, 2);
    EXPECT_FALSE(std::filesystem::exists(home.configuration() / "defaults.json"));
}

TEST_F(AlarmJourneys, aTemplateWithThePlaceholderAnnouncesMeets) {
    EXPECT_EQ(home.outputOf({"alarm", "template", "Ya empieza {event}, ¡corre!"}),
              "Meets are announced like this: \"Ya empieza Sync con el equipo, ¡corre!\"\n");
    EXPECT_EQ(home.outputOf({"alarm", "template"}), "Ya empieza {event}, ¡corre!\n");
    EXPECT_EQ(home.outputOf({"alarm", "preview", "--meet", "Team sync", "--text"}),
              "Ya empieza Team sync, ¡corre!\n");
    EXPECT_EQ(home.outputOf({"alarm", "template", ""}),
              "Meets are announced in the usual words: \"Tienes a Sync con el equipo.\"\n");
    EXPECT_EQ(home.outputOf({"alarm", "template"}), "\n");
}

TEST_F(AlarmJourneys, aTemplateWithoutThePlaceholderIsRefusedAndTheFormerStands) {
    ASSERT_EQ(home.quillora({"alarm", "template", "Now {event}"}).exitCode, 0);
    auto const refused = home.quillora({"alarm", "template", "Now {Event}"});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_EQ(refused.output, "");
    EXPECT_EQ(refused.errors, "quillora: the message does not say where the meet's name belongs, so nothing "
                              "was stored; write {event} in that place\n");
    EXPECT_EQ(home.outputOf({"alarm", "template"}), "Now {event}\n");
}

TEST_F(AlarmJourneys, aTemplateThatIsNotUTF8IsRefused) {
    auto const refused = home.quillora({"alarm", "template", "{event}\xFF"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(refused.errors, "quillora: the message was not stored\n"
                              "The message is not valid UTF-8. Nothing was stored; write it anew.\n");
}

TEST_F(AlarmJourneys, aDamagedTemplateIsToldAndTheUsualWordsAreUsed) {
    // The data is the text "x", which is no JSON.
    home.write(home.configuration() / "defaults.json",
               R"({"Meetings.AlarmMessageTemplateDatabase.template":{"data":"eA=="}})");
    auto const told = home.quillora({"alarm", "template"});
    EXPECT_EQ(told.exitCode, 1);
    EXPECT_THAT(told.errors, HasSubstr("the stored message is damaged"));
    EXPECT_EQ(home.outputOf({"alarm", "preview", "--text"}), "Tienes a Sync con el equipo.\n");
    EXPECT_EQ(home.quillora({"alarm", "template", "Now {event}"}).exitCode, 0);
    EXPECT_EQ(home.outputOf({"alarm", "template"}), "Now {event}\n");
}

TEST_F(AlarmJourneys, settingsThatCannotBeWrittenAreToldOnEveryRoad) {
    home.write(home.configuration() / "x", "");
    std::filesystem::create_directory(home.configuration() / "defaults.json");
    for (auto const& words : {std::vector<std::string>{"alarm", "mode", "hero"},
                              std::vector<std::string>{"alarm", "voice", "english"},
                              std::vector<std::string>{"alarm", "template", "{event}"}}) {
        auto const failed = home.quillora(words);
        EXPECT_EQ(failed.exitCode, 1) << words[1];
        EXPECT_EQ(failed.output, "") << words[1];
        EXPECT_THAT(failed.errors, HasSubstr("Is a directory")) << words[1];
    }
    auto const read = home.quillora({"alarm", "mode"});
    EXPECT_EQ(read.output, "voice\n");
    EXPECT_THAT(read.errors,
                HasSubstr("the file could not be read (Is a directory), so nothing in it counts"));
}

TEST_F(AlarmJourneys, calendarsAreAddedAndRemovedByTheirIdentifiers) {
    home.setUp();
    auto const work = calendarNamed("Work");
    auto const play = calendarNamed("Play");
    EXPECT_EQ(home.outputOf({"alarm", "calendars", "add", work, play}),
              "The meets of \"Work\" are announced\nThe meets of \"Play\" are announced\n");
    auto const listed = home.outputOf({"alarm", "calendars", "list"});
    EXPECT_THAT(listed, HasSubstr(work + "                 Work      announced\n"));
    EXPECT_THAT(listed, HasSubstr(play + "                 Play      announced\n"));
    EXPECT_EQ(home.outputOf({"alarm", "calendars", "remove", work}),
              "The meets of \"Work\" are no longer announced\n");
    EXPECT_THAT(settings(), HasSubstr("Play"));
    EXPECT_THAT(settings(), testing::Not(HasSubstr("Work")));
}

TEST_F(AlarmJourneys, anUnknownCalendarIsRefusedAndNothingIsStored) {
    home.setUp();
    auto const work = calendarNamed("Work");
    auto const added = home.quillora({"alarm", "calendars", "add", work, "nowhere"});
    EXPECT_EQ(added.exitCode, 2);
    EXPECT_EQ(added.output, "");
    EXPECT_EQ(added.errors,
              "quillora: no calendar has the identifier \"nowhere\"; \"quillora alarm calendars "
              "list\" shows them\n");
    EXPECT_EQ(home.quillora({"alarm", "calendars", "remove", "nowhere"}).exitCode, 2);
    EXPECT_FALSE(std::filesystem::exists(home.configuration() / "defaults.json"));
}

TEST_F(AlarmJourneys, aCalendarThatIsGoneIsListedAndCanBeTakenOff) {
    home.setUp();
    home.write(home.configuration() / "defaults.json",
               R"({"alarmEnabledCalendarIdentifiers":["old\/gone"]})");
    EXPECT_THAT(home.outputOf({"alarm", "calendars", "list"}),
                HasSubstr("(no such calendar any more)  announced\n"));
    EXPECT_EQ(home.outputOf({"alarm", "calendars", "remove", "old/gone"}),
              "The meets of \"old/gone\" are no longer announced\n");
    EXPECT_EQ(settings(), R"({"alarmEnabledCalendarIdentifiers":[]})");
}

TEST_F(AlarmJourneys, aPreviewIsSpokenInTheChosenLanguage) {
    placeStandIn(programs, "spd-say");
    ASSERT_EQ(home.quillora({"alarm", "voice", "english"}).exitCode, 0);
    EXPECT_EQ(home.outputOf({"alarm", "preview", "--meet", "Stand-up"}), "Spoken: You have a Stand-up.\n");
    EXPECT_THAT(wordsGivenTo(programs, "spd-say"),
                HasSubstr("<--language>\n<en-US>\n<-->\n<You have a Stand-up.>\n"));
}

TEST_F(AlarmJourneys, aPreviewInText) {
    placeStandIn(programs, "spd-say");
    placeStandIn(programs, "pw-play");
    EXPECT_EQ(home.outputOf({"alarm", "preview", "--text"}), "Tienes a Sync con el equipo.\n");
    ASSERT_EQ(home.quillora({"alarm", "mode", "hero"}).exitCode, 0);
    EXPECT_EQ(home.outputOf({"alarm", "preview", "--text"}), "Tienes a Sync con el equipo.\n");
    EXPECT_EQ(wordsGivenTo(programs, "spd-say"), "");
    EXPECT_EQ(wordsGivenTo(programs, "pw-play"), "");
}

TEST_F(AlarmJourneys, aSoundIsPlayedFromBesideTheProgram) {
    placeStandIn(programs, "pw-play", "test -s \"$1\"");
    for (std::string const mode : {"hero", "funk"}) {
        ASSERT_EQ(home.quillora({"alarm", "mode", mode}).exitCode, 0);
        EXPECT_THAT(home.outputOf({"alarm", "preview"}), StartsWith("Played: "));
        EXPECT_THAT(wordsGivenTo(programs, "pw-play"),
                    HasSubstr("<" QUILLORA_BUILD_DIR "/share/quillora/sounds/" + mode + ".wav>\n"));
    }
}

TEST_F(AlarmJourneys, whereNothingCanBeHeardTheSentenceIsPrintedWithTheReason) {
    auto const unspoken = home.quillora({"alarm", "preview"});
    EXPECT_EQ(unspoken.exitCode, 0);
    EXPECT_EQ(unspoken.output, "Tienes a Sync con el equipo.\n");
    EXPECT_THAT(unspoken.errors, StartsWith("quillora: nothing here speaks, so the message is printed;"));

    placeStandIn(programs, "spd-say", "exit 1");
    EXPECT_THAT(home.quillora({"alarm", "preview"}).errors,
                StartsWith("quillora: Speech Dispatcher did not take the message"));

    ASSERT_EQ(home.quillora({"alarm", "mode", "hero"}).exitCode, 0);
    auto const unplayed = home.quillora({"alarm", "preview", "--meet", "Tea"});
    EXPECT_EQ(unplayed.output, "Tienes a Tea.\n");
    EXPECT_THAT(unplayed.errors, StartsWith("quillora: nothing here plays sounds"));

    placeStandIn(programs, "aplay", "exit 1");
    EXPECT_THAT(home.quillora({"alarm", "preview"}).errors,
                StartsWith("quillora: the sound could not be played"));
}

TEST_F(AlarmJourneys, everythingIsSaidInThePersonsLanguage) {
    home.environment["LANG"] = "es_ES.UTF-8";
    auto const refused = home.quillora({"alarm", "template", "{event}\xFF"});
    EXPECT_EQ(refused.errors, "quillora: no se guardó el mensaje\n"
                              "El mensaje no es UTF-8 válido. No se guardó nada; escríbelo de nuevo.\n");
    EXPECT_THAT(home.outputOf({"alarm", "mode", "voice"}), HasSubstr("Mensaje hablado"));
}

} // namespace
