#include "Foundation/JSON.h"
#include "Tests/Audio/StandInProgram.h"
#include "Tests/Platform/PrivateBus.h"
#include "Tests/UserNotifications/StubNotificationServer.h"
#include "Tests/WidgetHost/ChildProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <set>
#include <string>
#include <thread>
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
    AlarmProgramTests() {
        for (auto const* folder : {"cache", "run", "calendars/Work"})
            std::filesystem::create_directories(home.path() / folder);
        std::filesystem::permissions(home.path() / "run", std::filesystem::perms::owner_all);
        home.place("config/quillora/calendar-access.json", "3");
        home.place("data/group.quillora/enabledCalendarAccounts.json", R"(["eventKit"])");
        home.place("config/quillora/calendar-store.json",
                   R"({"version":1,"sources":[{"kind":"folder","id":"k3fa","path":")" +
                       (home.path() / "calendars").string() + R"(","title":"Test"}]})");
        home.place("config/quillora/defaults.json",
                   R"({"meetAlarmMode":"hero","alarmEnabledCalendarIdentifiers":["k3fa\/Work"]})");
        placeStandIn(programs, "pw-play");
        environment = {{"PATH", programs.path().string()},
                       {"HOME", home.path().string()},
                       {"XDG_CONFIG_HOME", home.path() / "config"},
                       {"XDG_DATA_HOME", home.path() / "data"},
                       {"XDG_CACHE_HOME", home.path() / "cache"},
                       {"XDG_RUNTIME_DIR", home.path() / "run"},
                       {"LANG", "C.UTF-8"},
                       {"TZ", "Europe/Berlin"}};
        // What a sanitizer is to pass over holds for the program as for its tests.
        for (char const* const name : {"ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS"})
            if (char const* const value = std::getenv(name)) environment[name] = value;
    }

    // A calendar with a meet every other second, from the next one on, named by its start. However slow the
    // program starts, one lies ahead of it then.
    void addMeets() {
        std::string text = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:test\r\n";
        auto const now = std::time(nullptr);
        for (std::time_t start = now + 2; start < now + 240; start += 2)
            text += "BEGIN:VEVENT\r\nUID:" + std::to_string(start) + "\r\nSUMMARY:" + std::to_string(start) +
                    "\r\nDTSTAMP:20260101T000000Z\r\nDTSTART:" + utcText(start) +
                    "\r\nDURATION:PT30M\r\nEND:VEVENT\r\n";
        home.place("calendars/Work/.meets.tmp", text + "END:VCALENDAR\r\n");
        std::filesystem::rename(home.path() / "calendars/Work/.meets.tmp",
                                home.path() / "calendars/Work/meets.ics");
    }

    [[nodiscard]] std::unique_ptr<ChildProcess> started(std::vector<std::string> options = {}) const {
        options.insert(options.begin(), QUILLORA_BUILD_DIR "/bin/quillora-alarms");
        return std::make_unique<ChildProcess>(options, environment);
    }

    template <typename Condition>
    static bool waitUntil(Condition const& condition) {
        auto const end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > end) return false;
            std::this_thread::yield();
        }
        return true;
    }

    TemporaryFolder home;
    TemporaryFolder programs;
    ChildProcess::Environment environment;
};

TEST_F(AlarmProgramTests, eachMeetRingsOnceFromItsStartOnAlsoAcrossARestart) {
    PrivateBus const bus;
    StubNotificationServer server(bus.address(), {"actions", "body"});
    environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
    auto program = started();
    addMeets(); // The program is running, or starting, and follows its calendars.
    ASSERT_TRUE(server.awaitShown(2)) << program->errorText();
    program->signal(SIGTERM);
    EXPECT_EQ(program->wait(), 0) << program->errorText();

    auto const before = server.shown().size();
    program = started();
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
    EXPECT_THAT(wordsGivenTo(programs, "pw-play"), HasSubstr("/share/quillora/sounds/hero.wav>\n"));
}

TEST_F(AlarmProgramTests, aSnoozeIsStored) {
    PrivateBus const bus;
    StubNotificationServer server(bus.address(), {"actions"});
    environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
    auto const program = started();
    addMeets();
    ASSERT_TRUE(server.awaitShown(1)) << program->errorText();
    server.choose(server.shown().front().number, "snooze");
    auto const settings = [this] {
        std::ifstream file(home.path() / "config/quillora/defaults.json");
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    EXPECT_TRUE(waitUntil([&] { return settings().contains("\"snoozedAlarms\":[\""); })) << settings();
}

TEST_F(AlarmProgramTests, withoutABusASoundIsStillPlayed) {
    auto const program = started();
    addMeets();
    EXPECT_TRUE(waitUntil([this] { return !wordsGivenTo(programs, "pw-play").empty(); }))
        << program->errorText();
}

TEST_F(AlarmProgramTests, aSecondInstanceSaysSoAndEnds) {
    auto const first = started();
    addMeets();
    ASSERT_TRUE(waitUntil([this] { return !wordsGivenTo(programs, "pw-play").empty(); }))
        << first->errorText();
    auto const second = started();
    EXPECT_EQ(second->wait(), 0);
    EXPECT_EQ(second->errorText(), "quillora-alarms: quillora-alarms runs already; one is enough.\n");
}

TEST_F(AlarmProgramTests, itExplainsItselfAndRefusesWhatItDoesNotKnow) {
    auto const help = started({"--help"});
    EXPECT_EQ(help->readLine(), "Usage: quillora-alarms [--help | --version]");
    EXPECT_EQ(help->wait(), 0);
    auto const version = started({"--version"});
    EXPECT_THAT(version->readLine().value_or(""), testing::StartsWith("quillora-alarms "));
    auto const unknown = started({"--loud"});
    EXPECT_EQ(unknown->wait(), 2);
    EXPECT_EQ(unknown->errorText(),
              "quillora-alarms: \"--loud\" is no option; quillora-alarms --help lists them.\n");
    environment["LANG"] = "es_ES.UTF-8";
    EXPECT_EQ(started({"--help"})->readLine(), "Uso: quillora-alarms [--help | --version]");
}

TEST_F(AlarmProgramTests, withoutAHomeOrAFolderToLockItSaysSo) {
    home.place("blocked", "a file");
    environment["XDG_CONFIG_HOME"] = home.path() / "blocked";
    auto const blocked = started();
    EXPECT_EQ(blocked->wait(), 1);
    EXPECT_THAT(blocked->errorText(), HasSubstr("could not be locked"));
    environment = {{"LANG", "C.UTF-8"}};
    auto const homeless = started();
    EXPECT_EQ(homeless->wait(), 1);
    EXPECT_THAT(homeless->errorText(), HasSubstr("set HOME to your home folder"));
}

} // namespace
