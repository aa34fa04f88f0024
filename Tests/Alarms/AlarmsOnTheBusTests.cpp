#include "Applications/Alarms/DesktopBell.h"
#include "Platform/UserNotifications/SessionBusUserNotificationCenter.h"

#include "AlarmFixtures.h"

#include "Platform/Audio/RecordingSoundPlayer.h"
#include "Platform/Audio/RecordingSpeechSynthesizer.h"
#include "Platform/WidgetHost/GLibMainLoop.h"
#include "Platform/Workspace/RecordingWorkspace.h"
#include "Tests/Platform/PrivateBus.h"
#include "Tests/UserNotifications/StubNotificationServer.h"
#include "Tests/WidgetHost/LoopDriver.h"

#include <gtest/gtest.h>

#include <boost/asio/io_context.hpp>

// The service with the test's clock, and a notification server on a private bus.
namespace Alarms {
namespace {

using Texts = std::vector<std::string>;

class AlarmsOnTheBusTests : public testing::Test {
protected:
    AlarmsOnTheBusTests() {
        meets = {meetAt("Stand-up", "2026-03-11T10:00:00Z"), meetAt("Review", "2026-03-11T14:30:00Z")};
        start();
    }
    ~AlarmsOnTheBusTests() override { end(); }

    // As after a log-in or a crash.
    void start() {
        end();
        timer.emplace();
        notifications.emplace(bus.address(),
                              Platform::NotifyingApplication{.name = "Quillora", .desktopEntry = "q"});
        bell.emplace(
            DesktopBellParts{
                .notifications = *notifications,
                .workspace = workspace,
                .announcer = std::make_shared<Composition::AlarmAnnouncer>(Composition::AlarmAnnouncer::Parts{
                    .defaults = defaults, .speech = speech, .player = player, .soundFolder = std::nullopt}),
                .executor = Foundation::TaskExecutor(tasks.get_executor()),
                .details = [](Meetings::MeetEntity const&) { return Texts{}; },
                .report = [this](std::string const& text) { reports.push_back(text); }},
            DesktopBellAnswers{
                .alarm = [this](auto const& identifier) { return service->rungAlarm(identifier); },
                .snooze = [this](auto const& identifier) { service->snooze(identifier); }});
        service.emplace(
            clock, *timer, loop, AlarmMemory(defaults),
            AlarmServiceRoads{.askMeets = [this](MeetsAnswer const& answer) { answer(meets); },
                              .announcedCalendars = [] { return std::set<std::string>{"work"}; },
                              .ring = [this](Alarm const& alarm) { bell->ring(alarm); },
                              .report = [this](std::string const& text) { reports.push_back(text); }});
        service->start();
        EXPECT_TRUE(LoopDriver::runUntil([this] { return timer->scheduled().has_value(); }));
    }
    void end() {
        service.reset();
        bell.reset();
        notifications.reset();
        LoopDriver::runPending();
    }

    void reach(std::string const& text, Platform::WallClockTimer::Wake wake) {
        clock.set(moment(text));
        timer->wake(wake);
        LoopDriver::runPending();
    }
    // Titles of what the server was given, once it was given so many. A look at what else would arrive
    // follows from the next ring: what is sent is served in order.
    Texts titles(std::size_t count) {
        EXPECT_TRUE(LoopDriver::runUntil([&] { return server.shown().size() >= count; }));
        Texts shown;
        for (auto const& one : server.shown())
            shown.push_back(one.title);
        return shown;
    }

    static constexpr auto deadline = Platform::WallClockTimer::Wake::deadline;
    static constexpr auto clockSet = Platform::WallClockTimer::Wake::clockSet;

    PrivateBus bus;
    StubNotificationServer server{bus.address(), {"actions", "body"}};
    boost::asio::io_context tasks;
    Platform::GLibMainLoop loop;
    Platform::FixedClock clock{moment("2026-03-11T09:00:00Z")};
    std::shared_ptr<Platform::InMemoryUserDefaults> defaults =
        std::make_shared<Platform::InMemoryUserDefaults>();
    std::shared_ptr<Platform::RecordingSpeechSynthesizer> speech =
        std::make_shared<Platform::RecordingSpeechSynthesizer>();
    std::shared_ptr<Platform::RecordingSoundPlayer> player =
        std::make_shared<Platform::RecordingSoundPlayer>();
    Platform::RecordingWorkspace workspace;
    std::vector<Meetings::MeetEntity> meets;
    Texts reports;
    std::optional<Platform::ManualWallClockTimer> timer;
    std::optional<Platform::SessionBusUserNotificationCenter> notifications;
    std::optional<DesktopBell> bell;
    std::optional<AlarmService> service;
};

TEST_F(AlarmsOnTheBusTests, eachMeetIsShownOnceAcrossSleepClockChangesAndARestart) {
    reach("2026-03-11T10:00:00Z", deadline);
    EXPECT_EQ(titles(1), Texts{"Stand-up"});
    reach("2026-03-11T10:01:00Z", clockSet);
    reach("2026-03-11T09:59:00Z", clockSet);
    reach("2026-03-11T10:00:00Z", deadline);
    start();
    reach("2026-03-11T14:32:00Z", clockSet);
    EXPECT_EQ(titles(2), (Texts{"Stand-up", "Review"}));
    start();
    meets.push_back(meetAt("Last", "2026-03-11T15:00:00Z"));
    service->replan();
    EXPECT_TRUE(
        LoopDriver::runUntil([this] { return timer->scheduled() == moment("2026-03-11T15:00:00Z"); }));
    reach("2026-03-11T15:00:00Z", deadline);
    EXPECT_EQ(titles(3), (Texts{"Stand-up", "Review", "Last"}));
    EXPECT_EQ(reports, Texts{});
}

TEST_F(AlarmsOnTheBusTests, aSnoozeOnTheScreenRingsAgainInItsPlace) {
    reach("2026-03-11T10:00:00Z", deadline);
    ASSERT_EQ(titles(1), Texts{"Stand-up"});
    ASSERT_TRUE(
        LoopDriver::runUntil([this] { return service->rungAlarm(meets[0].metId.uuidString()).has_value(); }));
    // The server's answer to the notification comes before the person's.
    LoopDriver::runPending();
    server.choose(server.shown().front().number, "snooze");
    EXPECT_TRUE(
        LoopDriver::runUntil([this] { return timer->scheduled() == moment("2026-03-11T10:05:00Z"); }));
    reach("2026-03-11T10:05:00Z", deadline);
    EXPECT_EQ(titles(2), (Texts{"Stand-up", "Stand-up"}));
}

TEST_F(AlarmsOnTheBusTests, openFollowsTheMeetsLink) {
    reach("2026-03-11T10:00:00Z", deadline);
    ASSERT_EQ(titles(1), Texts{"Stand-up"});
    server.choose(server.shown().front().number, "default");
    EXPECT_TRUE(LoopDriver::runUntil([this] { return !workspace.opened.empty(); }));
    EXPECT_EQ(workspace.opened, Texts{"https://example.com/1"});
}

} // namespace
} // namespace Alarms
