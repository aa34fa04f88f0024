#include "Meetings/Alarms/AlarmEnabledCalendarsStore.h"
#include "Meetings/Alarms/ArmedAlarmsStore.h"
#include "Meetings/Alarms/MeetAlarmModeStore.h"
#include "Meetings/Alarms/MeetAlarmVoiceLanguageStore.h"

#include "Platform/Defaults/InMemoryUserDefaults.h"

#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace Meetings {
namespace {

using Identifiers = std::set<std::string>;
using Name = std::optional<std::string_view>;
using StringArray = Platform::UserDefaults::StringArray;

TEST(MeetAlarmModeEnumTests, eachModeHasItsNames) {
    struct Row {
        MeetAlarmModeEnum mode;
        std::string_view rawValue;
        std::string_view titleKey;
        Name systemSound;
        Name installedSound;
        Name bundledSound;
    };
    std::vector<Row> const rows{
        {.mode = MeetAlarmModeEnum::voice,
         .rawValue = "voice",
         .titleKey = "meet-alarm-mode-voice",
         .systemSound = std::nullopt,
         .installedSound = std::nullopt,
         .bundledSound = std::nullopt},
        {.mode = MeetAlarmModeEnum::hero,
         .rawValue = "hero",
         .titleKey = "meet-alarm-mode-hero",
         .systemSound = "Hero.aiff",
         .installedSound = "quillora-alarm-sound-hero.aiff",
         .bundledSound = "hero.wav"},
        {.mode = MeetAlarmModeEnum::funk,
         .rawValue = "funk",
         .titleKey = "meet-alarm-mode-funk",
         .systemSound = "Funk.aiff",
         .installedSound = "quillora-alarm-sound-funk.aiff",
         .bundledSound = "funk.wav"},
    };
    ASSERT_EQ(rows.size(), allMeetAlarmModes.size());
    for (std::size_t index = 0; index < rows.size(); ++index) {
        auto const& row = rows[index];
        SCOPED_TRACE(row.rawValue);
        EXPECT_EQ(allMeetAlarmModes[index], row.mode);
        EXPECT_EQ(Foundation::rawValue(row.mode), row.rawValue);
        EXPECT_EQ(Foundation::fromRawValue<MeetAlarmModeEnum>(row.rawValue), row.mode);
        EXPECT_EQ(id(row.mode), row.rawValue);
        EXPECT_EQ(titleKey(row.mode), row.titleKey);
        EXPECT_EQ(systemSoundSourceFileName(row.mode), row.systemSound);
        EXPECT_EQ(installedSoundFileName(row.mode), row.installedSound);
        EXPECT_EQ(bundledSoundFileName(row.mode), row.bundledSound);
    }
}

TEST(MeetAlarmVoiceLanguageEnumTests, eachLanguageHasItsNamesAndItsSentence) {
    struct Row {
        MeetAlarmVoiceLanguageEnum language;
        std::string_view rawValue;
        std::string_view titleKey;
        std::string_view voice;
        std::string_view code;
        std::string_view sample;
        std::string_view sentence;
    };
    std::vector<Row> const rows{
        {.language = MeetAlarmVoiceLanguageEnum::spanish,
         .rawValue = "spanish",
         .titleKey = "meet-alarm-voice-language-spanish",
         .voice = "Paulina",
         .code = "es-CO",
         .sample = "Sync con el equipo",
         .sentence = "Tienes a Stand-up."},
        {.language = MeetAlarmVoiceLanguageEnum::english,
         .rawValue = "english",
         .titleKey = "meet-alarm-voice-language-english",
         .voice = "Samantha",
         .code = "en-US",
         .sample = "Team sync",
         .sentence = "You have a Stand-up."},
    };
    ASSERT_EQ(rows.size(), allMeetAlarmVoiceLanguages.size());
    for (std::size_t index = 0; index < rows.size(); ++index) {
        auto const& row = rows[index];
        SCOPED_TRACE(row.rawValue);
        EXPECT_EQ(allMeetAlarmVoiceLanguages[index], row.language);
        EXPECT_EQ(Foundation::rawValue(row.language), row.rawValue);
        EXPECT_EQ(Foundation::fromRawValue<MeetAlarmVoiceLanguageEnum>(row.rawValue), row.language);
        EXPECT_EQ(id(row.language), row.rawValue);
        EXPECT_EQ(titleKey(row.language), row.titleKey);
        EXPECT_EQ(sayVoiceName(row.language), row.voice);
        EXPECT_EQ(speechLanguageCode(row.language), row.code);
        EXPECT_EQ(sampleMeetingName(row.language), row.sample);
        EXPECT_EQ(spokenText(row.language, "Stand-up"), row.sentence);
    }
}

TEST(MeetAlarmVoiceLanguageEnumTests, theNameIsSpokenAsItStands) {
    EXPECT_EQ(spokenText(MeetAlarmVoiceLanguageEnum::spanish, ""), "Tienes a .");
    EXPECT_EQ(spokenText(MeetAlarmVoiceLanguageEnum::english, "Sync. {event}"), "You have a Sync. {event}.");
}

class AlarmStoresTests : public testing::Test {
protected:
    Platform::InMemoryUserDefaults defaults;
    std::error_code const done;
    std::error_code const fullDisk = std::make_error_code(std::errc::no_space_on_device);
};

TEST_F(AlarmStoresTests, withNothingStoredMeetsAreSpokenOfInSpanish) {
    EXPECT_EQ(MeetAlarmModeStore::load(defaults), MeetAlarmModeEnum::voice);
    EXPECT_EQ(MeetAlarmVoiceLanguageStore::load(defaults), MeetAlarmVoiceLanguageEnum::spanish);
    EXPECT_EQ(AlarmEnabledCalendarsStore::load(defaults), Identifiers{});
    EXPECT_EQ(ArmedAlarmsStore::load(defaults), Identifiers{});
}

TEST_F(AlarmStoresTests, whatIsNoModeLoadsAsVoice) {
    for (auto const* text : {"Funk", "HERO", " hero", "bell", ""}) {
        ASSERT_EQ(defaults.setString("meetAlarmMode", text), done);
        EXPECT_EQ(MeetAlarmModeStore::load(defaults), MeetAlarmModeEnum::voice) << text;
    }
    ASSERT_EQ(defaults.setStringArray("meetAlarmMode", {"hero"}), done);
    EXPECT_EQ(MeetAlarmModeStore::load(defaults), MeetAlarmModeEnum::voice);
}

TEST_F(AlarmStoresTests, whatIsNoLanguageLoadsAsSpanish) {
    for (auto const* text : {"English", "en", "french", ""}) {
        ASSERT_EQ(defaults.setString("meetAlarmVoiceLanguage", text), done);
        EXPECT_EQ(MeetAlarmVoiceLanguageStore::load(defaults), MeetAlarmVoiceLanguageEnum::spanish) << text;
    }
    ASSERT_EQ(defaults.setData("meetAlarmVoiceLanguage", "english"), done);
    EXPECT_EQ(MeetAlarmVoiceLanguageStore::load(defaults), MeetAlarmVoiceLanguageEnum::spanish);
}

TEST_F(AlarmStoresTests, everyModeAndLanguageIsStoredByItsRawValue) {
    for (auto const mode : allMeetAlarmModes) {
        EXPECT_EQ(MeetAlarmModeStore::save(mode, defaults), done);
        EXPECT_EQ(defaults.string("meetAlarmMode"), Foundation::rawValue(mode));
        EXPECT_EQ(MeetAlarmModeStore::load(defaults), mode);
    }
    for (auto const language : allMeetAlarmVoiceLanguages) {
        EXPECT_EQ(MeetAlarmVoiceLanguageStore::save(language, defaults), done);
        EXPECT_EQ(defaults.string("meetAlarmVoiceLanguage"), Foundation::rawValue(language));
        EXPECT_EQ(MeetAlarmVoiceLanguageStore::load(defaults), language);
    }
}

TEST_F(AlarmStoresTests, calendarsAreStoredAsAListAndLoadedAsASet) {
    EXPECT_EQ(AlarmEnabledCalendarsStore::save({"k3fa/work", "k3fa/home", ""}, defaults), done);
    EXPECT_EQ(defaults.stringArray("alarmEnabledCalendarIdentifiers"),
              (StringArray{"", "k3fa/home", "k3fa/work"}));
    ASSERT_EQ(defaults.setStringArray("alarmEnabledCalendarIdentifiers", {"b", "a", "b"}), done);
    EXPECT_EQ(AlarmEnabledCalendarsStore::load(defaults), (Identifiers{"a", "b"}));
    ASSERT_EQ(defaults.setString("alarmEnabledCalendarIdentifiers", "a"), done);
    EXPECT_EQ(AlarmEnabledCalendarsStore::load(defaults), Identifiers{});
}

TEST_F(AlarmStoresTests, clearingTheCalendarsRemovesTheKey) {
    ASSERT_EQ(AlarmEnabledCalendarsStore::save({"a"}, defaults), done);
    EXPECT_EQ(AlarmEnabledCalendarsStore::clear(defaults), done);
    EXPECT_EQ(defaults.keys(), StringArray{});
    EXPECT_EQ(AlarmEnabledCalendarsStore::clear(defaults), done);
}

TEST_F(AlarmStoresTests, calendarsComeAndGoWithoutTheOthers) {
    EXPECT_EQ(AlarmEnabledCalendarsStore::insert({"b", "a"}, defaults), done);
    EXPECT_EQ(AlarmEnabledCalendarsStore::insert({"c", "a"}, defaults), done);
    EXPECT_EQ(AlarmEnabledCalendarsStore::load(defaults), (Identifiers{"a", "b", "c"}));
    EXPECT_EQ(AlarmEnabledCalendarsStore::remove({"a", "b", "x"}, defaults), done);
    EXPECT_EQ(AlarmEnabledCalendarsStore::load(defaults), Identifiers{"c"});
}

TEST_F(AlarmStoresTests, anAlarmArmedTwiceIsThereOnce) {
    EXPECT_EQ(ArmedAlarmsStore::insert("a", defaults), done);
    EXPECT_EQ(ArmedAlarmsStore::insert("a", defaults), done);
    EXPECT_EQ(defaults.stringArray("armedAlarmIdentifiers"), StringArray{"a"});
    EXPECT_EQ(ArmedAlarmsStore::load(defaults), Identifiers{"a"});
}

TEST_F(AlarmStoresTests, alarmsComeAndGoOneByOne) {
    EXPECT_EQ(ArmedAlarmsStore::save({"a", "b"}, defaults), done);
    EXPECT_EQ(ArmedAlarmsStore::insert("c", defaults), done);
    EXPECT_TRUE(ArmedAlarmsStore::contains("a", defaults));
    EXPECT_EQ(ArmedAlarmsStore::remove("a", defaults), done);
    EXPECT_FALSE(ArmedAlarmsStore::contains("a", defaults));
    EXPECT_EQ(ArmedAlarmsStore::remove("a", defaults), done);
    EXPECT_EQ(ArmedAlarmsStore::load(defaults), (Identifiers{"b", "c"}));
}

TEST_F(AlarmStoresTests, disarmingAllKeepsTheKey) {
    ASSERT_EQ(ArmedAlarmsStore::save({"a", "b"}, defaults), done);
    EXPECT_EQ(ArmedAlarmsStore::removeAll(defaults), done);
    EXPECT_EQ(defaults.stringArray("armedAlarmIdentifiers"), StringArray{});
    EXPECT_EQ(ArmedAlarmsStore::load(defaults), Identifiers{});
}

TEST_F(AlarmStoresTests, theKeysAreApart) {
    ASSERT_EQ(MeetAlarmModeStore::save(MeetAlarmModeEnum::funk, defaults), done);
    ASSERT_EQ(MeetAlarmVoiceLanguageStore::save(MeetAlarmVoiceLanguageEnum::english, defaults), done);
    ASSERT_EQ(AlarmEnabledCalendarsStore::save({"a"}, defaults), done);
    ASSERT_EQ(ArmedAlarmsStore::insert("b", defaults), done);
    EXPECT_EQ(defaults.keys(), (StringArray{"alarmEnabledCalendarIdentifiers", "armedAlarmIdentifiers",
                                            "meetAlarmMode", "meetAlarmVoiceLanguage"}));
    EXPECT_EQ(MeetAlarmModeStore::load(defaults), MeetAlarmModeEnum::funk);
    EXPECT_EQ(AlarmEnabledCalendarsStore::load(defaults), Identifiers{"a"});
}

TEST_F(AlarmStoresTests, aFailedChangeIsToldAndLeavesTheFormerValue) {
    ASSERT_EQ(MeetAlarmModeStore::save(MeetAlarmModeEnum::hero, defaults), done);
    ASSERT_EQ(MeetAlarmVoiceLanguageStore::save(MeetAlarmVoiceLanguageEnum::english, defaults), done);
    ASSERT_EQ(AlarmEnabledCalendarsStore::save({"a"}, defaults), done);
    ASSERT_EQ(ArmedAlarmsStore::save({"a"}, defaults), done);
    defaults.failsAfter(0);
    EXPECT_EQ(MeetAlarmModeStore::save(MeetAlarmModeEnum::funk, defaults), fullDisk);
    EXPECT_EQ(MeetAlarmVoiceLanguageStore::save(MeetAlarmVoiceLanguageEnum::spanish, defaults), fullDisk);
    EXPECT_EQ(AlarmEnabledCalendarsStore::save({}, defaults), fullDisk);
    EXPECT_EQ(AlarmEnabledCalendarsStore::clear(defaults), fullDisk);
    EXPECT_EQ(ArmedAlarmsStore::insert("b", defaults), fullDisk);
    EXPECT_EQ(ArmedAlarmsStore::remove("a", defaults), fullDisk);
    EXPECT_EQ(ArmedAlarmsStore::removeAll(defaults), fullDisk);
    EXPECT_EQ(MeetAlarmModeStore::load(defaults), MeetAlarmModeEnum::hero);
    EXPECT_EQ(MeetAlarmVoiceLanguageStore::load(defaults), MeetAlarmVoiceLanguageEnum::english);
    EXPECT_EQ(AlarmEnabledCalendarsStore::load(defaults), Identifiers{"a"});
    EXPECT_EQ(ArmedAlarmsStore::load(defaults), Identifiers{"a"});
}

} // namespace
} // namespace Meetings
