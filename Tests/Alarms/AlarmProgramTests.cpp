#include "Foundation/JSON.h"
#include "Tests/Alarms/AlarmHome.h"
#include "Tests/Platform/PrivateBus.h"
#include "Tests/Platform/Waiting.h"
#include "Tests/UserNotifications/StubNotificationServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <set>
#include <string>
#include <vector>

// The program itself, in a home of its own, on the real clock.
namespace {

using testing::HasSubstr;

std::string utcText(std::time_t moment) {
    std::tm fields{};
    ::gmtime_r(&moment, &fields);
    char text[32];
    std::strftime(text, sizeof text, "%Y%m%dT%H%M%SZ", &fields);
    return text;
}

class AlarmProgramTests : public testing::Test {
protected:
    // A calendar with a meet every other second, from the next one on, named by its start. However slow the
    // program starts, one lies ahead of it then.
    void addMeets() const {
        std::string text;
        auto const now = std::time(nullptr);
        for (std::time_t start = now + 2; start < now + 240; start += 2)
            text += "BEGIN:VEVENT\r\nUID:" + std::to_string(start) + "\r\nSUMMARY:" + std::to_string(start) +
                    "\r\nDTSTAMP:20260101T000000Z\r\nDTSTART:" + utcText(start) +
                    "\r\nDURATION:PT30M\r\nEND:VEVENT\r\n";
        home.placeEvents(text);
    }

    AlarmHome home;
    ChildProcess::Environment& environment = home.environment;
};

TEST_F(AlarmProgramTests, eachMeetRingsOnceFromItsStartOnAlsoAcrossARestart) {
    PrivateBus const bus;
    StubNotificationServer server(bus.address(), {"actions", "body"});
    environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
    auto program = home.started();
    addMeets(); // The program is running, or starting, and follows its calendars.
    ASSERT_TRUE(server.awaitShown(2)) << program->errorText();
    program->signal(SIGTERM);
    EXPECT_EQ(program->wait(), 0) << program->errorText();

    auto const before = server.shown().size();
    program = home.started();
    ASSERT_TRUE(server.awaitShown(before + 2)) << program->errorText();
    std::set<std::string> titles;
    double latest = 0;
    for (auto const& one : server.shown()) {
        EXPECT_TRUE(titles.insert(one.title).second) << one.title << " rang twice";
        double const lateness = one.shownAt - std::stod(one.title);
        EXPECT_GE(lateness, 0) << one.title;
        latest = std::max(latest, lateness);
        EXPECT_EQ(one.actions.size(), 8U);
    }
    RecordProperty("milliseconds late at most", static_cast<int>(latest * 1000));
    EXPECT_THAT(home.sounds(), HasSubstr("/share/quillora/sounds/hero.wav>\n"));
}

TEST_F(AlarmProgramTests, aSnoozeIsStored) {
    PrivateBus const bus;
    StubNotificationServer server(bus.address(), {"actions"});
    environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
    auto const program = home.started();
    addMeets();
    ASSERT_TRUE(server.awaitShown(1)) << program->errorText();
    server.choose(server.shown().front().number, "snooze");
    EXPECT_TRUE(waitUntil([&] { return home.settings().contains("\"snoozedAlarms\":[\""); }))
        << home.settings();
}

TEST_F(AlarmProgramTests, withoutABusASoundIsStillPlayed) {
    auto const program = home.started();
    addMeets();
    EXPECT_TRUE(waitUntil([this] { return !home.sounds().empty(); })) << program->errorText();
}

TEST_F(AlarmProgramTests, aSecondInstanceSaysSoAndEnds) {
    auto const first = home.started();
    addMeets();
    ASSERT_TRUE(waitUntil([this] { return !home.sounds().empty(); })) << first->errorText();
    auto const second = home.started();
    EXPECT_EQ(second->wait(), 0);
    EXPECT_EQ(second->errorText(), "quillora-alarms: quillora-alarms runs already; one is enough.\n");
}

TEST_F(AlarmProgramTests, itExplainsItselfAndRefusesWhatItDoesNotKnow) {
    auto const help = home.started({"--help"});
    EXPECT_EQ(help->readLine(), "Usage: quillora-alarms [--help | --version]");
    EXPECT_EQ(help->wait(), 0);
    auto const version = home.started({"--version"});
    EXPECT_THAT(version->readLine().value_or(""), testing::StartsWith("quillora-alarms "));
    auto const unknown = home.started({"--loud"});
    EXPECT_EQ(unknown->wait(), 2);
    EXPECT_EQ(unknown->errorText(),
              "quillora-alarms: \"--loud\" is no option; quillora-alarms --help lists them.\n");
    environment["LANG"] = "es_ES.UTF-8";
    EXPECT_EQ(home.started({"--help"})->readLine(), "Uso: quillora-alarms [--help | --version]");
}

TEST_F(AlarmProgramTests, withoutAHomeOrAFolderToLockItSaysSo) {
    home.folder.place("blocked", "a file");
    environment["XDG_CONFIG_HOME"] = home.folder.path() / "blocked";
    auto const blocked = home.started();
    EXPECT_EQ(blocked->wait(), 1);
    EXPECT_THAT(blocked->errorText(), HasSubstr("could not be locked"));
    environment = {{"LANG", "C.UTF-8"}};
    auto const homeless = home.started();
    EXPECT_EQ(homeless->wait(), 1);
    EXPECT_THAT(homeless->errorText(), HasSubstr("set HOME to your home folder"));
}

} // namespace
