#include "Applications/Alarms/DesktopBell.h"

#include "AlarmFixtures.h"

#include "Meetings/Alarms/MeetAlarmModeStore.h"
#include "Platform/Audio/RecordingSoundPlayer.h"
#include "Platform/Audio/RecordingSpeechSynthesizer.h"
#include "Platform/UserNotifications/RecordingUserNotificationCenter.h"
#include "Platform/Workspace/RecordingWorkspace.h"
#include "Tests/Platform/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <boost/asio/io_context.hpp>

namespace Alarms {
namespace {

using Platform::AudioFailure;
using Texts = std::vector<std::string>;

class DesktopBellTests : public testing::Test {
protected:
    DesktopBellTests() { sounds.place("hero.wav", "RIFF"); }

    static Alarm alarmOf(Meetings::MeetEntity const& meet) {
        return {.identifier = "id", .meet = meet, .at = meet.metDate};
    }
    // Rings, and lets the announcement be made.
    void ring(Meetings::MeetEntity const& meet) {
        rung = alarmOf(meet);
        bell.ring(*rung);
        tasks.restart();
        tasks.run();
    }

    TemporaryFolder sounds;
    boost::asio::io_context tasks;
    Platform::RecordingUserNotificationCenter notifications;
    Platform::RecordingWorkspace workspace;
    std::shared_ptr<Platform::InMemoryUserDefaults> defaults =
        std::make_shared<Platform::InMemoryUserDefaults>();
    std::shared_ptr<Platform::RecordingSpeechSynthesizer> speech =
        std::make_shared<Platform::RecordingSpeechSynthesizer>();
    std::shared_ptr<Platform::RecordingSoundPlayer> player =
        std::make_shared<Platform::RecordingSoundPlayer>();
    Texts snoozed;
    Texts reports;
    std::optional<Alarm> rung;
    DesktopBell bell{
        {.notifications = notifications,
         .workspace = workspace,
         .announcer = std::make_shared<Composition::AlarmAnnouncer>(Composition::AlarmAnnouncer::Parts{
             .defaults = defaults, .speech = speech, .player = player, .soundFolder = sounds.path()}),
         .executor = Foundation::TaskExecutor(tasks.get_executor()),
         .details = [](Meetings::MeetEntity const&) { return Texts{"10:00", "Room 1"}; },
         .report = [this](std::string const& text) { reports.push_back(text); }},
        {.alarm = [this](std::string const&) { return rung; },
         .snooze = [this](std::string const& identifier) { snoozed.push_back(identifier); }}};
};

TEST_F(DesktopBellTests, aRingIsSeenAndHeard) {
    ring(meetAt("Stand-up", "2026-03-11T10:00:00Z"));
    ASSERT_EQ(notifications.shown.size(), 1U);
    EXPECT_EQ(notifications.shown.front(),
              (Platform::UserNotification{.identifier = "id",
                                          .title = "Stand-up",
                                          .body = "10:00\nRoom 1",
                                          .actions = {{.identifier = "open", .title = "Open"},
                                                      {.identifier = "snooze", .title = "Snooze 5 Minutes"},
                                                      {.identifier = "dismiss", .title = "Dismiss"}}}));
    ASSERT_EQ(speech->spoken().size(), 1U);
    EXPECT_EQ(speech->spoken().front().text, "Tienes a Stand-up.");
    EXPECT_EQ(reports, Texts{});
}

TEST_F(DesktopBellTests, aMeetWithoutANameIsCalledByItsCalendar) {
    ring(meetAt("", "2026-03-11T10:00:00Z"));
    EXPECT_EQ(notifications.shown.front().title, "Work");
}

TEST_F(DesktopBellTests, whereNothingSpeaksAChimeStandsIn) {
    speech->failsWith(AudioFailure::unavailable);
    ring(meetAt("Stand-up", "2026-03-11T10:00:00Z"));
    EXPECT_EQ(player->played(), std::vector{sounds.path() / "hero.wav"});
    EXPECT_EQ(reports, Texts{"the message was not spoken: spd-say of Speech Dispatcher is not installed"});
}

TEST_F(DesktopBellTests, whatCannotBeSeenIsStillHeardAndReported) {
    notifications.failsWith("nobody shows notifications");
    ring(meetAt("Stand-up", "2026-03-11T10:00:00Z"));
    EXPECT_EQ(speech->spoken().size(), 1U);
    EXPECT_EQ(reports, Texts{"the notification could not be shown (nobody shows notifications)"});
}

TEST_F(DesktopBellTests, whatCannotBeHeardIsStillSeenAndReportedOnce) {
    ASSERT_EQ(Meetings::MeetAlarmModeStore::save(Meetings::MeetAlarmModeEnum::hero, *defaults),
              std::error_code());
    player->failsWith(AudioFailure::refused);
    ring(meetAt("Stand-up", "2026-03-11T10:00:00Z"));
    EXPECT_EQ(notifications.shown.size(), 1U);
    EXPECT_EQ(reports, Texts{"the sound was not played: no player that is installed took it"});
}

TEST_F(DesktopBellTests, theAnswersOfThePerson) {
    auto const meet = meetAt("Stand-up", "2026-03-11T10:00:00Z");
    ring(meet);
    notifications.choose("id", "dismiss");
    EXPECT_EQ(snoozed, Texts{});
    EXPECT_EQ(workspace.opened, Texts{});
    ring(meet);
    notifications.choose("id", "snooze");
    EXPECT_EQ(snoozed, Texts{"id"});
    ring(meet);
    notifications.choose("id", "open");
    EXPECT_EQ(workspace.opened, Texts{"https://example.com/1"});
    EXPECT_EQ(snoozed, Texts{"id"});
}

TEST_F(DesktopBellTests, withoutALinkTheWidgetOpens) {
    auto meet = meetAt("Stand-up", "2026-03-11T10:00:00Z");
    meet.metUrl = std::nullopt;
    ring(meet);
    notifications.choose("id", "open");
    EXPECT_EQ(workspace.opened, Texts{"com.zentorik.quillora.Widget"});
}

TEST_F(DesktopBellTests, whatDoesNotOpenIsReported) {
    workspace.failsWith("no browser");
    ring(meetAt("Stand-up", "2026-03-11T10:00:00Z"));
    notifications.choose("id", "open");
    EXPECT_EQ(reports, Texts{"what belongs to the meet could not be opened (no browser)"});
}

TEST_F(DesktopBellTests, anAnswerToWhatIsForgottenIsPassedOver) {
    ring(meetAt("Stand-up", "2026-03-11T10:00:00Z"));
    rung = std::nullopt;
    notifications.choose("id", "open");
    EXPECT_EQ(workspace.opened, Texts{});
}

TEST(MeetLinkTests, onlyWebLinksAreFollowedAndAPlaceMayBeOne) {
    struct Row {
        std::optional<std::string> link;
        std::optional<std::string> place;
        std::optional<std::string> followed;
    };
    for (auto const& row :
         {Row{.link = "https://example.com/1", .place = "Room 1", .followed = "https://example.com/1"},
          Row{.link = "HTTP://example.com", .place = std::nullopt, .followed = "HTTP://example.com"},
          Row{.link = std::nullopt, .place = "https://example.com/2", .followed = "https://example.com/2"},
          Row{.link = "file:///etc/passwd",
              .place = "https://example.com/3",
              .followed = "https://example.com/3"},
          Row{.link = "file:///etc/passwd", .place = "Room 1", .followed = std::nullopt},
          Row{.link = "https://", .place = "ssh://host", .followed = std::nullopt},
          Row{.link = "javascript:x", .place = "see https://example.com", .followed = std::nullopt},
          Row{.link = std::nullopt, .place = std::nullopt, .followed = std::nullopt}}) {
        auto meet = Meetings::someMeet();
        meet.metUrl =
            row.link.transform([](auto const& text) { return Foundation::URL{.absoluteString = text}; });
        meet.metLocation = row.place;
        auto const followed = linkOf(meet).transform([](auto const& link) { return link.absoluteString; });
        EXPECT_EQ(followed, row.followed) << row.link.value_or("-") << " " << row.place.value_or("-");
    }
}

} // namespace
} // namespace Alarms
