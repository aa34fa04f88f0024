#include "Platform/Clock/FixedClock.h"
#include "Platform/WidgetHost/ManualWallClockTimer.h"
#include "Platform/WidgetHost/QueuedMainLoop.h"
#include "Platform/WidgetHost/ResidentHost.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Foundation::Date;
using Platform::EntryKind;
using Platform::Timeline;
using Platform::TimelineProviderContext;
using Platform::TimelineReloadPolicy;
using Platform::WallClockTimer;
using Platform::WidgetFamily;

constexpr Date tenOClock{.secondsSince1970 = 1'700'000'000};

/// A provider that answers when the test says so.
class ScriptedProvider final : public Platform::TimelineProvider<std::string> {
public:
    std::string placeholder(TimelineProviderContext const&) override { return "placeholder"; }

    void getSnapshot(TimelineProviderContext const&, std::function<void(std::string)> completion) override {
        completion("snapshot");
    }

    void getTimeline(TimelineProviderContext const& context,
                     std::function<void(Timeline<std::string>)> completion) override {
        families.push_back(context.family);
        waiting.push_back(std::move(completion));
    }

    /// Answers the request that has waited longest.
    void answer(Timeline<std::string> timeline) {
        auto const completion = std::move(waiting.front());
        waiting.erase(waiting.begin());
        completion(std::move(timeline));
    }

    [[nodiscard]] std::size_t requestCount() const { return families.size(); }

    std::vector<WidgetFamily> families;
    std::vector<std::function<void(Timeline<std::string>)>> waiting;
};

class ResidentHostTests : public testing::Test {
protected:
    using Host = Platform::ResidentHost<std::string>;

    void start() { host->start(); }

    void answer(std::string entry, TimelineReloadPolicy policy) {
        provider.answer({.entries = {std::move(entry)}, .policy = policy});
        mainLoop.runPending();
    }

    void startAndAnswer(std::string entry, TimelineReloadPolicy policy) {
        start();
        answer(std::move(entry), policy);
    }

    static TimelineReloadPolicy afterMinutes(double minutes) {
        return TimelineReloadPolicy::after(tenOClock.addingTimeInterval(minutes * 60));
    }

    ScriptedProvider provider;
    Platform::FixedClock clock{tenOClock};
    Platform::ManualWallClockTimer timer;
    Platform::QueuedMainLoop mainLoop;
    std::vector<std::string> shown;
    std::vector<EntryKind> kinds;
    std::optional<Date> nextChange;
    std::unique_ptr<Host> host = std::make_unique<Host>(
        provider, clock, timer, mainLoop, TimelineProviderContext{.family = WidgetFamily::systemLarge},
        Platform::ResidentHostView<std::string>{
            .show =
                [this](std::string const& entry, EntryKind kind) {
                    shown.push_back(entry);
                    kinds.push_back(kind);
                },
            .nextChange = [this](std::string const&, Date) { return nextChange; },
        });
};

TEST_F(ResidentHostTests, startShowsThePlaceholderAndAsksOnce) {
    start();
    EXPECT_EQ(shown, std::vector<std::string>{"placeholder"});
    EXPECT_EQ(kinds, std::vector{EntryKind::placeholder});
    EXPECT_EQ(provider.requestCount(), 1U);
    EXPECT_EQ(timer.scheduled(), std::nullopt);
}

TEST_F(ResidentHostTests, answerReplacesThePlaceholderAndSleepsUntilItsPolicy) {
    startAndAnswer("Wednesday", afterMinutes(15));
    EXPECT_EQ(shown, (std::vector<std::string>{"placeholder", "Wednesday"}));
    EXPECT_EQ(kinds.back(), EntryKind::loaded);
    EXPECT_EQ(timer.scheduled(), tenOClock.addingTimeInterval(900));
    EXPECT_EQ(provider.requestCount(), 1U);
}

TEST_F(ResidentHostTests, onlyTheFirstEntryIsShown) {
    start();
    provider.answer({.entries = {"first", "second"}, .policy = afterMinutes(15)});
    mainLoop.runPending();
    EXPECT_EQ(shown, (std::vector<std::string>{"placeholder", "first"}));
}

TEST_F(ResidentHostTests, emptyTimelineKeepsWhatIsShownAndItsPolicyCounts) {
    startAndAnswer("Wednesday", afterMinutes(15));
    host->reload();
    provider.answer({.entries = {}, .policy = afterMinutes(20)});
    mainLoop.runPending();
    EXPECT_EQ(shown.size(), 2U);
    EXPECT_EQ(timer.scheduled(), tenOClock.addingTimeInterval(1200));
}

TEST_F(ResidentHostTests, deadlineAsksAgain) {
    startAndAnswer("Wednesday", afterMinutes(15));
    clock.set(tenOClock.addingTimeInterval(900));
    timer.wake(WallClockTimer::Wake::deadline);
    EXPECT_EQ(provider.requestCount(), 2U);
    answer("Wednesday, later", afterMinutes(30));
    EXPECT_EQ(shown.back(), "Wednesday, later");
    EXPECT_EQ(timer.scheduled(), tenOClock.addingTimeInterval(1800));
}

TEST_F(ResidentHostTests, wakeBeforeTheDeadlineOnlySleepsAgain) {
    startAndAnswer("Wednesday", afterMinutes(15));
    clock.set(tenOClock.addingTimeInterval(899));
    timer.wake(WallClockTimer::Wake::deadline);
    EXPECT_EQ(provider.requestCount(), 1U);
    EXPECT_EQ(timer.scheduled(), tenOClock.addingTimeInterval(900));
}

TEST_F(ResidentHostTests, absentPolicySleepsUntilItIsTold) {
    startAndAnswer("Wednesday", {.afterDate = std::nullopt});
    EXPECT_EQ(timer.scheduled(), std::nullopt);
    clock.set(tenOClock.addingTimeInterval(1e6));
    timer.wake(WallClockTimer::Wake::deadline);
    EXPECT_EQ(provider.requestCount(), 1U);
    host->reload();
    EXPECT_EQ(provider.requestCount(), 2U);
}

TEST_F(ResidentHostTests, policyThatIsNearPastOrNoNumberWaitsAMinute) {
    struct Row {
        char const* name;
        double seconds;
    };
    for (auto const& row : {
             Row{.name = "now", .seconds = 0},
             Row{.name = "a second ahead", .seconds = 1},
             Row{.name = "an hour ago", .seconds = -3600},
             Row{.name = "not a number", .seconds = std::numeric_limits<double>::quiet_NaN()},
             Row{.name = "minus infinity", .seconds = -std::numeric_limits<double>::infinity()},
         }) {
        SCOPED_TRACE(row.name);
        if (provider.requestCount() == 0) {
            start();
        } else {
            host->reload();
        }
        answer("Wednesday", TimelineReloadPolicy::after(tenOClock.addingTimeInterval(row.seconds)));
        EXPECT_EQ(timer.scheduled(), tenOClock.addingTimeInterval(60));
    }
}

TEST_F(ResidentHostTests, changeOfTheShownEntryComesBeforeThePolicy) {
    nextChange = tenOClock.addingTimeInterval(300);
    startAndAnswer("a meet until 10:05", afterMinutes(15));
    EXPECT_EQ(timer.scheduled(), tenOClock.addingTimeInterval(300));
    clock.set(tenOClock.addingTimeInterval(300));
    nextChange = std::nullopt;
    timer.wake(WallClockTimer::Wake::deadline);
    EXPECT_EQ(provider.requestCount(), 2U);
    answer("no meet", afterMinutes(20));
    EXPECT_EQ(timer.scheduled(), tenOClock.addingTimeInterval(1200));
}

TEST_F(ResidentHostTests, changeWithinTheNextMinuteIsNotPutOff) {
    nextChange = tenOClock.addingTimeInterval(2);
    startAndAnswer("a meet about to end", afterMinutes(15));
    EXPECT_EQ(timer.scheduled(), tenOClock.addingTimeInterval(2));
}

TEST_F(ResidentHostTests, changeAfterThePolicyWaitsForThePolicy) {
    nextChange = tenOClock.addingTimeInterval(1000);
    startAndAnswer("a long meet", afterMinutes(15));
    EXPECT_EQ(timer.scheduled(), tenOClock.addingTimeInterval(900));
}

TEST_F(ResidentHostTests, changeWithoutAPolicyCounts) {
    nextChange = tenOClock.addingTimeInterval(50'000);
    startAndAnswer("until midnight", {.afterDate = std::nullopt});
    EXPECT_EQ(timer.scheduled(), tenOClock.addingTimeInterval(50'000));
}

TEST_F(ResidentHostTests, changeThatHasPassedIsIgnored) {
    nextChange = tenOClock;
    startAndAnswer("a meet that ends now", afterMinutes(15));
    EXPECT_EQ(timer.scheduled(), tenOClock.addingTimeInterval(900));
}

TEST_F(ResidentHostTests, reloadAsksAtOnce) {
    startAndAnswer("Wednesday", afterMinutes(15));
    host->reload();
    EXPECT_EQ(provider.requestCount(), 2U);
    answer("Thursday", afterMinutes(15));
    EXPECT_EQ(shown.back(), "Thursday");
}

TEST_F(ResidentHostTests, reloadsDuringARequestCauseExactlyOneMore) {
    start();
    host->reload();
    host->reload();
    host->reload();
    EXPECT_EQ(provider.requestCount(), 1U);
    answer("Wednesday", afterMinutes(15));
    EXPECT_EQ(shown.back(), "Wednesday");
    EXPECT_EQ(provider.requestCount(), 2U);
    EXPECT_EQ(timer.scheduled(), std::nullopt);
    answer("Thursday", afterMinutes(15));
    EXPECT_EQ(shown.back(), "Thursday");
    EXPECT_EQ(provider.requestCount(), 2U);
    EXPECT_EQ(timer.scheduled(), tenOClock.addingTimeInterval(900));
}

TEST_F(ResidentHostTests, deadlineThatPassesDuringARequestDoesNotAskTwice) {
    startAndAnswer("Wednesday", afterMinutes(15));
    host->reload();
    EXPECT_EQ(timer.scheduled(), std::nullopt);
    clock.set(tenOClock.addingTimeInterval(1000));
    timer.wake(WallClockTimer::Wake::deadline);
    answer("Wednesday", afterMinutes(30));
    EXPECT_EQ(provider.requestCount(), 2U);
}

TEST_F(ResidentHostTests, clockThatIsSetBackAsksAgainAndForgetsTheOldDeadline) {
    startAndAnswer("Wednesday", afterMinutes(15));
    clock.set(tenOClock.addingTimeInterval(-86'400));
    timer.wake(WallClockTimer::Wake::clockSet);
    EXPECT_EQ(provider.requestCount(), 2U);
    answer("Tuesday", TimelineReloadPolicy::after(tenOClock.addingTimeInterval(-86'400 + 900)));
    EXPECT_EQ(shown.back(), "Tuesday");
    EXPECT_EQ(timer.scheduled(), tenOClock.addingTimeInterval(-86'400 + 900));
}

TEST_F(ResidentHostTests, clockThatIsSetDuringARequestCausesOneMore) {
    start();
    timer.wake(WallClockTimer::Wake::clockSet);
    EXPECT_EQ(provider.requestCount(), 1U);
    answer("Wednesday", afterMinutes(15));
    EXPECT_EQ(provider.requestCount(), 2U);
}

TEST_F(ResidentHostTests, familyShowsTheCurrentEntryAtOnceAndAsksForTheNewFamily) {
    startAndAnswer("Wednesday", afterMinutes(15));
    host->setFamily(WidgetFamily::systemSmall);
    EXPECT_EQ(host->family(), WidgetFamily::systemSmall);
    EXPECT_EQ(shown, (std::vector<std::string>{"placeholder", "Wednesday", "Wednesday"}));
    EXPECT_EQ(provider.families, (std::vector{WidgetFamily::systemLarge, WidgetFamily::systemSmall}));
}

TEST_F(ResidentHostTests, showAgainAsksForNothing) {
    startAndAnswer("Wednesday", afterMinutes(15));
    host->showAgain();
    EXPECT_EQ(shown, (std::vector<std::string>{"placeholder", "Wednesday", "Wednesday"}));
    EXPECT_EQ(kinds.back(), EntryKind::loaded);
    EXPECT_EQ(provider.requestCount(), 1U);
}

TEST_F(ResidentHostTests, answerWaitsForTheMainLoop) {
    start();
    std::thread([this] { provider.answer({.entries = {"Wednesday"}, .policy = afterMinutes(15)}); }).join();
    EXPECT_EQ(shown, std::vector<std::string>{"placeholder"});
    mainLoop.runPending();
    EXPECT_EQ(shown.back(), "Wednesday");
}

TEST_F(ResidentHostTests, answerAfterTheEndIsDropped) {
    start();
    host.reset();
    provider.answer({.entries = {"too late"}, .policy = afterMinutes(15)});
    mainLoop.runPending();
    EXPECT_EQ(shown, std::vector<std::string>{"placeholder"});
}

TEST_F(ResidentHostTests, answerThatIsQueuedWhenTheHostEndsIsDropped) {
    start();
    provider.answer({.entries = {"too late"}, .policy = afterMinutes(15)});
    host.reset();
    EXPECT_EQ(mainLoop.runPending(), 1U);
    EXPECT_EQ(shown, std::vector<std::string>{"placeholder"});
}

TEST_F(ResidentHostTests, endLetsGoOfTheTimer) {
    startAndAnswer("Wednesday", afterMinutes(15));
    host.reset();
    EXPECT_FALSE(timer.hasHandler());
    EXPECT_EQ(timer.scheduled(), std::nullopt);
}

} // namespace
