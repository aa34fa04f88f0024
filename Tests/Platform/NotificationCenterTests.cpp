#include "Platform/NotificationCenter/LocalNotificationCenter.h"
#include "Platform/NotificationCenter/RecordingNotificationCenter.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace Platform;

TEST(LocalNotificationCenterTests, everyObserverOfTheNameIsCalledBeforePostReturns) {
    LocalNotificationCenter center;
    std::vector<std::string> calls;
    auto const first = center.observe("changed", [&] { calls.emplace_back("first"); });
    auto const second = center.observe("changed", [&] { calls.emplace_back("second"); });
    auto const other = center.observe("other", [&] { calls.emplace_back("other"); });

    center.post("changed");
    EXPECT_EQ(calls, (std::vector<std::string>{"first", "second"}));
    center.post("nobody listens");
    EXPECT_EQ(calls.size(), 2U);
}

TEST(LocalNotificationCenterTests, anEndedObservationIsCalledNoMore) {
    LocalNotificationCenter center;
    int calls = 0;
    auto observation = center.observe("changed", [&] { ++calls; });
    center.post("changed");
    observation.reset();
    center.post("changed");
    EXPECT_EQ(calls, 1);
}

TEST(LocalNotificationCenterTests, anObserverMayEndItselfAndOthersAndPost) {
    LocalNotificationCenter center;
    int selfCalls = 0;
    int otherCalls = 0;
    int nestedCalls = 0;
    std::unique_ptr<NotificationCenter::Observation> self;
    std::unique_ptr<NotificationCenter::Observation> other;
    auto const nested = center.observe("nested", [&] { ++nestedCalls; });
    self = center.observe("changed", [&] {
        ++selfCalls;
        other.reset();
        self.reset();
        center.post("nested");
    });
    other = center.observe("changed", [&] { ++otherCalls; });

    center.post("changed");
    center.post("changed");
    EXPECT_EQ(selfCalls, 1);
    EXPECT_EQ(otherCalls, 0);
    EXPECT_EQ(nestedCalls, 1);
}

TEST(LocalNotificationCenterTests, anObservationMayOutliveTheCenter) {
    auto center = std::make_unique<LocalNotificationCenter>();
    auto const held = std::make_shared<int>(0);
    auto observation = center->observe("changed", [held] { ++*held; });
    center.reset();
    EXPECT_EQ(held.use_count(), 2);
    observation.reset();
    EXPECT_EQ(held.use_count(), 1);
}

TEST(LocalNotificationCenterTests, afterTheEndNoCallIsStillRunningElsewhere) {
    LocalNotificationCenter center;
    std::atomic<bool> stop = false;
    std::thread poster([&] {
        while (!stop)
            center.post("changed");
    });
    for (int round = 0; round < 200; ++round) {
        // Freed right after the observation: a late call would write to freed memory, which the sanitizers
        // see.
        auto counter = std::make_unique<std::atomic<int>>(0);
        auto observation = center.observe("changed", [pointer = counter.get()] { ++*pointer; });
        observation.reset();
        int const atEnd = *counter;
        std::this_thread::yield();
        EXPECT_EQ(*counter, atEnd);
    }
    stop = true;
    poster.join();
}

TEST(RecordingNotificationCenterTests, postedNamesAreKeptAndObserversCalled) {
    RecordingNotificationCenter center;
    int calls = 0;
    auto const observation = center.observe("changed", [&] { ++calls; });
    center.post("changed");
    center.post("other");
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(center.posted(), (std::vector<std::string>{"changed", "other"}));
}

} // namespace
