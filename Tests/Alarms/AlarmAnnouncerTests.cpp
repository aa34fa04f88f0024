#include "Applications/Composition/AlarmAnnouncer.h"

#include "Meetings/Alarms/MeetAlarmModeStore.h"
#include "Meetings/Alarms/MeetAlarmVoiceLanguageStore.h"
#include "Platform/Audio/RecordingSoundPlayer.h"
#include "Platform/Audio/RecordingSpeechSynthesizer.h"
#include "Platform/Defaults/InMemoryUserDefaults.h"
#include "Tests/Platform/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace Composition {
namespace {

using enum Meetings::MeetAlarmModeEnum;
using Failure = AlarmAnnouncer::Failure;
using Outcome = AlarmAnnouncer::Outcome;
using Platform::AudioFailure;

class AlarmAnnouncerTests : public testing::Test {
protected:
    AlarmAnnouncerTests() {
        sounds.place("hero.wav", "RIFF");
        sounds.place("funk.wav", "RIFF");
    }
    void choose(Meetings::MeetAlarmModeEnum mode) {
        ASSERT_EQ(Meetings::MeetAlarmModeStore::save(mode, *defaults), std::error_code());
    }

    TemporaryFolder sounds;
    std::shared_ptr<Platform::InMemoryUserDefaults> defaults =
        std::make_shared<Platform::InMemoryUserDefaults>();
    std::shared_ptr<Platform::RecordingSpeechSynthesizer> speech =
        std::make_shared<Platform::RecordingSpeechSynthesizer>();
    std::shared_ptr<Platform::RecordingSoundPlayer> player =
        std::make_shared<Platform::RecordingSoundPlayer>();
    AlarmAnnouncer const announcer{
        {.defaults = defaults, .speech = speech, .player = player, .soundFolder = sounds.path()}};
};

TEST_F(AlarmAnnouncerTests, withNothingChosenItSpeaksSpanish) {
    EXPECT_EQ(announcer.announce("Team sync"), Outcome::spoken);
    EXPECT_EQ(speech->spoken(),
              (std::vector<Platform::Utterance>{{.text = "Tienes a Team sync.", .languageCode = "es-CO"}}));
    EXPECT_TRUE(player->played().empty());
}

TEST_F(AlarmAnnouncerTests, theSettingsCountAnewForEachMeet) {
    ASSERT_EQ(announcer.announce("A"), Outcome::spoken);
    ASSERT_EQ(
        Meetings::MeetAlarmVoiceLanguageStore::save(Meetings::MeetAlarmVoiceLanguageEnum::english, *defaults),
        std::error_code());
    ASSERT_EQ(defaults->setData("Meetings.AlarmMessageTemplateDatabase.template",
                                R"({"amtText":"{event} begins"})"),
              std::error_code());
    ASSERT_EQ(announcer.announce("B"), Outcome::spoken);
    EXPECT_EQ(speech->spoken().back(), (Platform::Utterance{.text = "B begins", .languageCode = "en-US"}));
    EXPECT_EQ(announcer.sentence("C"), "C begins");
}

TEST_F(AlarmAnnouncerTests, theSoundModesPlayTheirSounds) {
    choose(hero);
    EXPECT_EQ(announcer.announce("A"), Outcome::played);
    choose(funk);
    EXPECT_EQ(announcer.announce("A"), Outcome::played);
    EXPECT_EQ(player->played(), (std::vector{sounds.path() / "hero.wav", sounds.path() / "funk.wav"}));
    EXPECT_TRUE(speech->spoken().empty());
}

TEST_F(AlarmAnnouncerTests, whatCannotBeHeardIsToldByItsReason) {
    speech->failsWith(AudioFailure::unavailable);
    EXPECT_EQ(announcer.announce("A"), std::unexpected(Failure::noSpeechProgram));
    speech->failsWith(AudioFailure::refused);
    EXPECT_EQ(announcer.announce("A"), std::unexpected(Failure::speechRefused));
    choose(hero);
    player->failsWith(AudioFailure::unavailable);
    EXPECT_EQ(announcer.announce("A"), std::unexpected(Failure::noPlayer));
    player->failsWith(AudioFailure::refused);
    EXPECT_EQ(announcer.announce("A"), std::unexpected(Failure::playerRefused));
}

TEST_F(AlarmAnnouncerTests, aSoundThatIsNotThereIsNotPlayed) {
    std::filesystem::remove(sounds.path() / "hero.wav");
    EXPECT_EQ(announcer.play(hero), std::unexpected(Failure::noSound));
    EXPECT_EQ(announcer.play(voice), std::unexpected(Failure::noSound));
    AlarmAnnouncer const nowhere(
        {.defaults = defaults, .speech = speech, .player = player, .soundFolder = std::nullopt});
    EXPECT_EQ(nowhere.play(funk), std::unexpected(Failure::noSound));
    EXPECT_TRUE(player->played().empty());
}

} // namespace
} // namespace Composition
