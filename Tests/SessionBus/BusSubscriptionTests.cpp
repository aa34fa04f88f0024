#include "Platform/SessionBus/BusSubscription.h"
#include "Tests/SessionBus/BusAtAPath.h"

#include <gtest/gtest.h>

#include <poll.h>

#include <algorithm>
#include <chrono>

namespace {

using namespace std::chrono_literals;
using Platform::BusConnection;
using Platform::BusSignal;
using Platform::BusSubscription;
using Clock = std::chrono::steady_clock;

constexpr BusSignal rang{.objectPath = "/bell", .interface = "org.example.Bell", .name = "Rang"};

// What a loop does once: waits for what the subscription waits for, and serves it.
void waitAndServe(BusSubscription& subscription, std::chrono::milliseconds atMost) {
    auto const wait = subscription.wait();
    if (!wait) return;
    auto patience = atMost;
    if (wait->until)
        patience = std::clamp(std::chrono::ceil<std::chrono::milliseconds>(*wait->until - Clock::now()), 0ms,
                              atMost);
    pollfd descriptor{.fd = wait->descriptor, .events = wait->events, .revents = 0};
    poll(&descriptor, 1, static_cast<int>(patience.count()));
    subscription.serve();
}

// Whether it came to that within half a minute.
template <typename Condition>
bool serveUntil(BusSubscription& subscription, Condition const& condition) {
    auto const end = Clock::now() + 30s;
    while (!condition() && Clock::now() < end)
        waitAndServe(subscription, 20ms);
    return condition();
}

void ring(std::string const& address, BusSignal const& signal = rang) {
    auto sender = BusConnection::open(address, Clock::now() + 30s);
    ASSERT_TRUE(sender.has_value());
    sender->emit(signal, Clock::now() + 30s);
}

// A subscription hears nothing before the bus has taken it.
void ringUntilHeard(std::string const& address, BusSubscription& subscription, int const& heard) {
    int const before = heard;
    ASSERT_TRUE(serveUntil(subscription, [&] {
        ring(address);
        waitAndServe(subscription, 20ms);
        return heard > before;
    }));
}

TEST(BusSubscriptionTests, everySignalIsHeardOnce) {
    BusAtAPath const bus;
    int heard = 0;
    BusSubscription subscription(bus.address(), rang, [&] { ++heard; });
    ringUntilHeard(bus.address(), subscription, heard);
    // Those that are still on their way arrive before what is sent now.
    int const before = heard;
    for (int count = 0; count < 3; ++count)
        ring(bus.address());
    ASSERT_TRUE(serveUntil(subscription, [&] { return heard >= before + 3; }));
}

TEST(BusSubscriptionTests, otherSignalsAreNotHeard) {
    BusAtAPath const bus;
    int heard = 0;
    BusSubscription subscription(bus.address(), rang, [&] { ++heard; });
    ringUntilHeard(bus.address(), subscription, heard);
    serveUntil(subscription, [end = Clock::now() + 200ms] { return Clock::now() > end; });
    int const before = heard;
    ring(bus.address(), {.objectPath = "/other", .interface = rang.interface, .name = rang.name});
    ring(bus.address(), {.objectPath = rang.objectPath, .interface = "org.example.Other", .name = rang.name});
    ring(bus.address(), {.objectPath = rang.objectPath, .interface = rang.interface, .name = "Fell"});
    ring(bus.address());
    ASSERT_TRUE(serveUntil(subscription, [&] { return heard > before; }));
    EXPECT_EQ(heard, before + 1);
}

TEST(BusSubscriptionTests, afterTheEndOfTheBusThereIsNothingToWaitFor) {
    BusAtAPath bus;
    int heard = 0;
    BusSubscription subscription(bus.address(), rang, [&] { ++heard; });
    ringUntilHeard(bus.address(), subscription, heard);
    bus.end();
    EXPECT_TRUE(serveUntil(subscription, [&] { return !subscription.wait(); }));
}

TEST(BusSubscriptionTests, addressesThatLeadNowhereAreNotWaitedFor) {
    for (char const* address : {"", "no address at all", "unix:path=/nonexistent/bus"}) {
        BusSubscription subscription(address, rang, [] { FAIL(); });
        EXPECT_TRUE(serveUntil(subscription, [&] { return !subscription.wait(); })) << address;
    }
}

} // namespace
