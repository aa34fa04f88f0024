#include "LoopDriver.h"

#include "Platform/Clock/SystemClock.h"
#include "Platform/WidgetHost/GLibMainLoop.h"
#include "Platform/WidgetHost/TaskThread.h"
#include "Platform/WidgetHost/TimerfdWallClockTimer.h"

#include <gtest/gtest.h>

#include <fcntl.h>

#include <csignal>
#include <limits>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using Foundation::Date;
using Platform::WallClockTimer;

TEST(GLibMainLoopTests, workFromAnotherThreadWaitsForTheLoopEvenBeforeItRuns) {
    Platform::GLibMainLoop loop;
    std::thread::id ranOn;
    std::thread([&] { loop.invoke([&] { ranOn = std::this_thread::get_id(); }); }).join();
    EXPECT_EQ(ranOn, std::thread::id());
    EXPECT_TRUE(LoopDriver::runUntil([&] { return ranOn != std::thread::id(); }));
    EXPECT_EQ(ranOn, std::this_thread::get_id());
}

TEST(GLibMainLoopTests, workRunsInItsOrderAndNeverWithinTheCall) {
    Platform::GLibMainLoop loop;
    std::vector<int> order;
    loop.invoke([&] {
        loop.invoke([&] { order.push_back(3); });
        order.push_back(1);
    });
    loop.invoke([&] { order.push_back(2); });
    EXPECT_TRUE(order.empty());
    EXPECT_TRUE(LoopDriver::runUntil([&] { return order.size() == 3; }));
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TEST(GLibMainLoopTests, workMayBeMoveOnly) {
    Platform::GLibMainLoop loop;
    int seen = 0;
    loop.invoke([&seen, value = std::make_unique<int>(7)] { seen = *value; });
    EXPECT_TRUE(LoopDriver::runUntil([&] { return seen != 0; }));
    EXPECT_EQ(seen, 7);
}

TEST(GLibMainLoopTests, quitEndsTheRun) {
    Platform::GLibMainLoop loop;
    std::vector<char const*> order;
    auto const late = Platform::GLibSource::afterDelay(10'000, [&] {
        order.push_back("gave up");
        loop.quit();
    });
    loop.invoke([&] {
        order.push_back("quits");
        loop.quit();
    });
    loop.run();
    order.push_back("has ended");
    EXPECT_EQ(order, (std::vector{"quits", "has ended"}));
}

TEST(GLibMainLoopDeathTests, exceptionEndsTheProcessAtTheEdge) {
    Platform::GLibMainLoop loop;
    EXPECT_DEATH(
        {
            loop.invoke([] { throw std::runtime_error("work failed"); });
            LoopDriver::runPending();
        },
        "");
}

TEST(GLibSourceTests, handlerIsNotCalledAfterTheSourceHasGone) {
    int calls = 0;
    {
        auto const source = Platform::GLibSource::afterDelay(0, [&] { ++calls; });
    }
    LoopDriver::runPending();
    EXPECT_EQ(calls, 0);
}

TEST(GLibSourceTests, movedSourceStillCalls) {
    int calls = 0;
    auto source = Platform::GLibSource::afterDelay(0, [&] { ++calls; });
    auto const moved = std::move(source);
    EXPECT_TRUE(LoopDriver::runUntil([&] { return calls == 1; }));
}

TEST(GLibSourceTests, assignmentEndsTheSourceThatStoodThere) {
    int first = 0;
    int second = 0;
    auto source = Platform::GLibSource::afterDelay(0, [&] { ++first; });
    source = Platform::GLibSource::afterDelay(0, [&] { ++second; });
    EXPECT_TRUE(LoopDriver::runUntil([&] { return second == 1; }));
    EXPECT_EQ(first, 0);
}

TEST(GLibSourceDeathTests, exceptionEndsTheProcessAtTheEdge) {
    auto const fail = [] { throw std::runtime_error("handler failed"); };
    EXPECT_DEATH(
        {
            auto const source = Platform::GLibSource::afterDelay(0, fail);
            LoopDriver::runUntil([] { return false; });
        },
        "");
    EXPECT_DEATH(
        {
            // Ready at once; a signal would need the library's own thread, which a forked child lacks.
            int const readable = open("/dev/null", O_RDONLY | O_CLOEXEC);
            auto const source = Platform::GLibSource::watchingDescriptor(readable, fail);
            LoopDriver::runUntil([] { return false; });
        },
        "");
}

TEST(GLibSourceTests, signalIsHeardOnTheLoopsThread) {
    int calls = 0;
    auto const source = Platform::GLibSource::onSignal(SIGTERM, [&] { ++calls; });
    raise(SIGTERM);
    EXPECT_TRUE(LoopDriver::runUntil([&] { return calls == 1; }));
}

class TimerfdWallClockTimerTests : public testing::Test {
protected:
    TimerfdWallClockTimerTests() {
        timer.onWake([this](WallClockTimer::Wake wake) {
            wakes.push_back(wake);
            wokenAt.push_back(clock.now());
        });
    }

    Platform::SystemClock clock;
    Platform::TimerfdWallClockTimer timer;
    std::vector<WallClockTimer::Wake> wakes;
    std::vector<Date> wokenAt;
};

TEST_F(TimerfdWallClockTimerTests, wakesOnceAndNeverBeforeTheDeadline) {
    auto const deadline = clock.now().addingTimeInterval(0.05);
    timer.schedule(deadline);
    ASSERT_TRUE(LoopDriver::runUntil([&] { return !wakes.empty(); }));
    EXPECT_EQ(wakes, std::vector{WallClockTimer::Wake::deadline});
    EXPECT_GE(wokenAt.front(), deadline);
}

TEST_F(TimerfdWallClockTimerTests, instantThatHasPassedWakesAtOnce) {
    for (double const seconds : {1'000'000'000.0, 0.5, 0.0, -5.0, -std::numeric_limits<double>::infinity()}) {
        SCOPED_TRACE(seconds);
        wakes.clear();
        timer.schedule(Date{.secondsSince1970 = seconds});
        EXPECT_TRUE(wakes.empty());
        EXPECT_TRUE(LoopDriver::runUntil([&] { return !wakes.empty(); }));
    }
}

TEST_F(TimerfdWallClockTimerTests, newDeadlineReplacesTheOldOne) {
    timer.schedule(clock.now().addingTimeInterval(-1));
    timer.schedule(clock.now().addingTimeInterval(3600));
    LoopDriver::runPending();
    EXPECT_TRUE(wakes.empty());
}

TEST_F(TimerfdWallClockTimerTests, nothingScheduledAndFarDeadlinesDoNotWake) {
    for (auto const deadline :
         {std::optional<Date>(), std::optional(Date{.secondsSince1970 = 1e300}),
          std::optional(Date{.secondsSince1970 = std::numeric_limits<double>::quiet_NaN()})}) {
        timer.schedule(clock.now().addingTimeInterval(-1));
        timer.schedule(deadline);
        LoopDriver::runPending();
        EXPECT_TRUE(wakes.empty());
    }
}

TEST_F(TimerfdWallClockTimerTests, handlerMayScheduleAgain) {
    int count = 0;
    timer.onWake([&](WallClockTimer::Wake) {
        if (++count < 3) {
            timer.schedule(clock.now());
        }
    });
    timer.schedule(clock.now());
    EXPECT_TRUE(LoopDriver::runUntil([&] { return count == 3; }));
}

Foundation::Task<void> noteWhereItRuns(std::shared_ptr<std::promise<std::thread::id>> ranOn) {
    ranOn->set_value(std::this_thread::get_id());
    co_return;
}

TEST(TaskThreadTests, taskRunsElsewhereAndItsStepIsAwaitedAtTheEnd) {
    auto const ranOn = std::make_shared<std::promise<std::thread::id>>();
    auto runner = ranOn->get_future();
    std::thread::id thread;
    {
        Platform::TaskThread tasks;
        tasks.executor().start(noteWhereItRuns(ranOn));
        thread = runner.get();
    }
    EXPECT_NE(thread, std::thread::id());
    EXPECT_NE(thread, std::this_thread::get_id());
    // The step has ended with its thread: nobody else holds what it was given.
    EXPECT_EQ(ranOn.use_count(), 1);
}

} // namespace
