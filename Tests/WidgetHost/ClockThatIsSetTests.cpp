#include "Platform/WidgetHost/TimerfdWallClockTimer.h"

#include "Tests/WidgetHost/LoopDriver.h"
#include "Tests/WidgetHost/MachineClock.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <vector>

// The kernel's timer while the machine's clock is set: this process lives by a clock that the test sets.
namespace {

using Platform::TimerfdWallClockTimer;
using Wake = Platform::WallClockTimer::Wake;
using Wakes = std::vector<Wake>;

constexpr double start = 1'773'222'000; // 2026-03-11 09:40 UTC
constexpr double hour = 3600;

class ClockThatIsSetTests : public testing::Test {
protected:
    ClockThatIsSetTests() {
        clock.set(start);
        ChildProcess::Environment variables;
        clock.addTo(variables);
        variables.erase("LD_PRELOAD"); // The library is linked to this program.
        for (auto const& [name, value] : variables)
            ::setenv(name.c_str(), value.c_str(), 1);
        timer.emplace();
        timer->onWake([this](Wake wake) { wakes.push_back(wake); });
    }

    // What the timer told by the time that a last deadline, a moment from now, has told.
    Wakes wakesSoFar() {
        auto const before = wakes.size();
        double const end = clock.now() + 0.05;
        timer->schedule(Foundation::Date{.secondsSince1970 = end});
        EXPECT_TRUE(LoopDriver::runUntil([&] { return wakes.size() > before && clock.now() >= end; }));
        return wakes;
    }

    static MachineClock& machineClock() {
        static MachineClock clock(start); // A process has one for its whole life.
        return clock;
    }

    MachineClock& clock = machineClock();
    std::optional<TimerfdWallClockTimer> timer;
    Wakes wakes;
};

TEST_F(ClockThatIsSetTests, itTellsThatTheClockWasSetForwardOrBack) {
    timer->schedule(Foundation::Date{.secondsSince1970 = start + 24 * hour});
    for (double const moved : {hour, -100 * hour}) {
        wakes.clear();
        clock.set(start + moved);
        EXPECT_TRUE(LoopDriver::runUntil([this] { return !wakes.empty(); }));
        EXPECT_EQ(wakes, Wakes{Wake::clockSet});
    }
}

TEST_F(ClockThatIsSetTests, withoutADeadlineItTellsTheSame) {
    clock.set(start + hour);
    EXPECT_TRUE(LoopDriver::runUntil([this] { return !wakes.empty(); }));
    EXPECT_EQ(wakes, Wakes{Wake::clockSet});
}

TEST_F(ClockThatIsSetTests, theDeadlineStandsOnTheNewClock) {
    timer->schedule(Foundation::Date{.secondsSince1970 = start + hour});
    clock.set(start + hour - 0.2);
    EXPECT_TRUE(LoopDriver::runUntil([this] { return wakes.size() == 2; }));
    EXPECT_EQ(wakes, (Wakes{Wake::clockSet, Wake::deadline}));
    EXPECT_GE(clock.now(), start + hour);
}

TEST_F(ClockThatIsSetTests, whatWasSetJustBeforeADeadlineIsScheduledIsToldAsWell) {
    clock.set(start + hour);
    timer->schedule(Foundation::Date{.secondsSince1970 = start + 24 * hour});
    EXPECT_TRUE(LoopDriver::runUntil([this] { return !wakes.empty(); }));
    EXPECT_EQ(wakesSoFar(), (Wakes{Wake::clockSet, Wake::deadline}));
}

} // namespace
