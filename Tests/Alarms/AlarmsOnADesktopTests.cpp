#include "Foundation/DateFormatting.h"
#include "Tests/Alarms/AlarmHome.h"
#include "Tests/Platform/PrivateBus.h"
#include "Tests/Platform/Waiting.h"
#include "Tests/UserNotifications/DesktopNotificationServer.h"
#include "Tests/WidgetHost/MachineClock.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// The program itself with a notification server that desktops use, on a machine whose clock the test sets.
// What was rung, and when, is what that server remembers.
namespace {

using Texts = std::vector<std::string>;

// By the clock of the machine: on a Wednesday, where no day is said.
double moment(std::string const& time) {
    auto const text = time.contains('T') ? time : "2026-03-11T" + time;
    return Foundation::dateFromISO8601(text + "Z").value().secondsSince1970;
}

std::string meet(std::string const& name, std::string const& time, std::string const& more = {}) {
    auto digits = time.contains('T') ? time : "20260311T" + time;
    std::erase_if(digits, [](char sign) { return sign == ':' || sign == '-'; });
    return "BEGIN:VEVENT\r\nUID:" + name + "\r\nSUMMARY:" + name +
           "\r\nDTSTAMP:20260101T000000Z\r\nDTSTART:" + digits + "Z\r\nDURATION:PT30M\r\n" + more +
           "END:VEVENT\r\n";
}

class AlarmsOnADesktopTests : public testing::Test {
protected:
    AlarmsOnADesktopTests() {
        home.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
        clock.addTo(home.environment);
    }
    // A window of time in which something is to reach the screen; microseconds since the machine's start.
    struct Window {
        std::int64_t opens;
        std::int64_t closes;
    };

    // Starts the program, and waits until it sleeps until that moment.
    void start(std::string const& armedFor) {
        clock.disarm();
        program = home.started();
        ASSERT_TRUE(waitUntil([&] { return isArmedFor(moment(armedFor)); })) << program->errorText();
    }
    [[nodiscard]] bool isArmedFor(double wanted) const {
        auto const armed = clock.armedFor();
        return armed && std::abs(*armed - wanted) < 0.1;
    }
    void crash() { program.reset(); }
    void end() {
        program->signal(SIGTERM);
        EXPECT_EQ(program->wait(), 0) << program->errorText();
    }

    // The machine sleeps, and wakes at that moment: meanwhile nothing runs, and then the clock tells another
    // time.
    Window sleepUntil(std::string const& wake) {
        program->signal(SIGSTOP);
        clock.set(moment(wake));
        program->signal(SIGCONT);
        return windowFrom(moment(wake));
    }
    Window setClock(std::string const& time) {
        clock.set(moment(time));
        return windowFrom(moment(time));
    }
    // The clock is set to a second before, and goes on by itself.
    Window runInto(double due) {
        clock.set(due - 1);
        clock.sleepUntil(due);
        return windowFrom(due);
    }
    Window runInto(std::string const& due) { return runInto(moment(due)); }

    // An alarm may come a second late, and not early. On a machine that has much else to do everything comes
    // late: twice what the same errand takes this test at the same moment is granted as well, since the two
    // are in each other's way. It is waking up, remembering safely in three files, joining the bus, and
    // asking the server twice; mostly some hundredths of a second.
    Window windowFrom(double due) {
        for (int step = 0; step < 3; ++step)
            writeSafely();
        server.askAsANewcomer();
        double const errand = clock.now() - due;
        longestErrand = std::max(longestErrand, errand);
        auto const opens = clock.sinceStart(due);
        return {.opens = opens, .closes = opens + 1'000'000 + std::llround(2 * errand * 1e6)};
    }
    void writeSafely() const {
        auto const folder = home.folder.path() / "run";
        int const file = ::open((folder / "new").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        EXPECT_EQ(::write(file, "errand", 6), 6);
        ::fsync(file);
        ::close(file);
        std::filesystem::rename(folder / "new", folder / "errand");
        int const names = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ::fsync(names);
        ::close(names);
    }

    struct Ring {
        std::string name;
        Window window;
    };
    // These and no others were rung, each once, in its time.
    void expectRings(std::vector<Ring> const& rings) {
        auto const shown = server.clearedAndRemembered();
        Texts names;
        Texts expected;
        for (auto const& one : shown)
            names.push_back(one.title);
        for (auto const& ring : rings)
            expected.push_back(ring.name);
        ASSERT_EQ(names, expected);
        std::int64_t latest = 0;
        for (std::size_t index = 0; index < rings.size(); ++index) {
            auto const& window = rings[index].window;
            EXPECT_GE(shown[index].shownAt, window.opens) << names[index];
            EXPECT_LE(shown[index].shownAt, window.closes) << names[index];
            latest = std::max(latest, shown[index].shownAt - window.opens);
        }
        RecordProperty("microseconds late at most", static_cast<int>(latest));
        RecordProperty("microseconds of the longest errand", static_cast<int>(longestErrand * 1e6));
        // A second ring of the same meet would take the place of the first on the screen, but be heard.
        EXPECT_TRUE(waitUntil([&] { return countOfSounds() >= rings.size(); }));
        EXPECT_EQ(countOfSounds(), rings.size());
    }
    [[nodiscard]] std::size_t countOfSounds() const {
        return static_cast<std::size_t>(std::ranges::count(home.sounds(), '\n'));
    }

    PrivateBus bus;
    DesktopNotificationServer server{bus.address()};
    MachineClock clock{moment("09:00:00")};
    AlarmHome home;
    double longestErrand = 0; // Seconds.
    std::unique_ptr<ChildProcess> program;
};

TEST_F(AlarmsOnADesktopTests, eachMeetRingsOnceAndOnTime) {
    home.placeEvents(meet("Stand-up", "10:00:00") + meet("Review", "10:00:01") + meet("Tea", "10:00:02"));
    start("10:00:00");
    auto const standUp = runInto("10:00:00");
    clock.sleepUntil(moment("10:00:01"));
    auto const review = windowFrom(moment("10:00:01"));
    clock.sleepUntil(moment("10:00:02"));
    auto const tea = windowFrom(moment("10:00:02"));
    EXPECT_TRUE(server.awaitOnScreen(3)) << program->errorText();
    expectRings({{"Stand-up", standUp}, {"Review", review}, {"Tea", tea}});
}

TEST_F(AlarmsOnADesktopTests, afterASleepWhatIsNotOldRingsAtOnceAndTheNextOnTime) {
    home.placeEvents(meet("Early", "09:30:00") + meet("Stand-up", "10:00:00") + meet("Review", "10:04:00"));
    start("09:30:00");
    auto const standUp = sleepUntil("10:03:00");
    EXPECT_TRUE(server.awaitOnScreen(1)) << program->errorText();
    auto const review = runInto("10:04:00");
    EXPECT_TRUE(server.awaitOnScreen(2)) << program->errorText();
    expectRings({{"Stand-up", standUp}, {"Review", review}});
}

TEST_F(AlarmsOnADesktopTests, aClockThatIsSetRingsNothingTwiceAndLosesNothing) {
    home.placeEvents(meet("Stand-up", "10:00:00") + meet("Review", "10:03:00"));
    start("10:00:00");
    auto const standUp = setClock("10:01:00");
    EXPECT_TRUE(server.awaitOnScreen(1)) << program->errorText();
    EXPECT_TRUE(waitUntil([&] { return isArmedFor(moment("10:03:00")); }));
    static_cast<void>(runInto("10:00:00")); // Once more, and nothing rings.
    auto const review = runInto("10:03:00");
    EXPECT_TRUE(server.awaitOnScreen(2)) << program->errorText();
    expectRings({{"Stand-up", standUp}, {"Review", review}});
}

TEST_F(AlarmsOnADesktopTests, aClockThatIsSetToAnotherDayRingsThatDaysMeets) {
    home.placeEvents(meet("Stand-up", "10:00:00") + meet("Former", "2026-03-02T12:00:00") +
                     meet("Later", "2026-04-02T12:00:00"));
    start("10:00:00");
    std::vector<Ring> rings;
    for (auto const& [name, time] :
         {std::pair("Former", "2026-03-02T12:00:00"), std::pair("Later", "2026-04-02T12:00:00")}) {
        clock.set(moment(time) - 3600);
        EXPECT_TRUE(waitUntil([&] { return isArmedFor(moment(time)); })) << name;
        rings.push_back({name, runInto(time)});
        EXPECT_TRUE(server.awaitOnScreen(rings.size())) << program->errorText();
    }
    expectRings(rings);
}

TEST_F(AlarmsOnADesktopTests, aRestartRingsNothingTwiceAndLosesNothing) {
    home.placeEvents(meet("Stand-up", "10:00:00") + meet("Review", "10:01:00") + meet("Tea", "10:02:00"));
    start("10:00:00");
    auto const standUp = runInto("10:00:00");
    EXPECT_TRUE(server.awaitOnScreen(1)) << program->errorText();
    crash();
    clock.set(moment("09:59:58"));
    start("10:01:00"); // Also before the time of what has rung.
    static_cast<void>(runInto("10:00:00"));
    end();
    static_cast<void>(setClock("10:01:30"));
    auto const before = clock.now();
    start("10:02:00");
    // However long the program took to start.
    EXPECT_TRUE(server.awaitOnScreen(2)) << program->errorText();
    auto const review = windowFrom(before);
    crash();
    start("10:02:00");
    auto const tea = runInto("10:02:00");
    EXPECT_TRUE(server.awaitOnScreen(3)) << program->errorText();
    expectRings({{"Stand-up", standUp}, {"Review", review}, {"Tea", tea}});
}

TEST_F(AlarmsOnADesktopTests, aSnoozedMeetRingsOnceMoreFiveMinutesLaterAlsoAcrossARestart) {
    home.placeEvents(meet("Stand-up", "10:00:00") + meet("Tea", "10:30:00"));
    start("10:00:00");
    auto const first = runInto("10:00:00");
    ASSERT_TRUE(server.awaitOnScreen(1)) << program->errorText();
    auto const answered = clock.now();
    server.choose("Stand-up", "snooze");
    EXPECT_TRUE(server.awaitOnScreen(0));
    // The timer runs out five minutes after the answer.
    ASSERT_TRUE(waitUntil([&] { return clock.armedFor().value_or(0) < moment("10:20:00"); }));
    double const due = clock.armedFor().value_or(0);
    EXPECT_GE(due, answered + 300);
    EXPECT_LE(due, clock.now() + 300);
    crash();
    clock.disarm();
    program = home.started();
    ASSERT_TRUE(waitUntil([&] { return isArmedFor(due); })) << program->errorText();
    auto const second = runInto(due);
    ASSERT_TRUE(server.awaitOnScreen(1)) << program->errorText();
    server.choose("Stand-up", "dismiss");
    EXPECT_TRUE(server.awaitOnScreen(0));
    EXPECT_TRUE(waitUntil([&] { return isArmedFor(moment("10:30:00")); }));
    auto const tea = runInto("10:30:00");
    EXPECT_TRUE(server.awaitOnScreen(1)) << program->errorText();
    expectRings({{"Stand-up", first}, {"Stand-up", second}, {"Tea", tea}});
}

TEST_F(AlarmsOnADesktopTests, openAndAPressFollowTheMeetsLink) {
    placeStandIn(home.programs, "browser");
    home.folder.place("data/applications/browser.desktop",
                      "[Desktop Entry]\nType=Application\nName=Browser\nExec=" +
                          (home.programs.path() / "browser").string() +
                          " %u\nMimeType=x-scheme-handler/https;\n");
    home.folder.place("config/mimeapps.list",
                      "[Default Applications]\nx-scheme-handler/https=browser.desktop\n");
    home.environment["XDG_DATA_DIRS"] = home.folder.path() / "none";
    home.placeEvents(meet("Stand-up", "10:00:00", "URL:https://example.com/1\r\n") +
                     meet("Review", "10:01:00", "URL:https://example.com/2\r\n"));
    start("10:00:00");
    static_cast<void>(setClock("10:00:00"));
    ASSERT_TRUE(server.awaitOnScreen(1)) << program->errorText();
    server.choose("Stand-up", "open");
    EXPECT_TRUE(server.awaitOnScreen(0));
    std::string links = "<https://example.com/1>\n";
    EXPECT_TRUE(waitUntil([&] { return wordsGivenTo(home.programs, "browser") == links; }));
    static_cast<void>(setClock("10:01:00"));
    ASSERT_TRUE(server.awaitOnScreen(1)) << program->errorText();
    server.press();
    EXPECT_TRUE(server.awaitOnScreen(0));
    links += "<https://example.com/2>\n";
    EXPECT_TRUE(waitUntil([&] { return wordsGivenTo(home.programs, "browser") == links; }));
}

TEST_F(AlarmsOnADesktopTests, aServerThatWasStartedAnewShowsTheNext) {
    home.placeEvents(meet("Stand-up", "10:00:00") + meet("Review", "10:01:00"));
    start("10:00:00");
    static_cast<void>(setClock("10:00:00"));
    ASSERT_TRUE(server.awaitOnScreen(1)) << program->errorText();
    server.kill();
    server.start();
    auto const review = runInto("10:01:00");
    EXPECT_TRUE(server.awaitOnScreen(1)) << program->errorText();
    auto const shown = server.clearedAndRemembered();
    ASSERT_EQ(shown.size(), 1U);
    EXPECT_EQ(shown[0].title, "Review");
    EXPECT_GE(shown[0].shownAt, review.opens);
    EXPECT_LE(shown[0].shownAt, review.closes);
}

} // namespace
