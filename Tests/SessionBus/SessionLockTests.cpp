#include "Platform/SessionBus/SessionLock.h"
#include "Tests/SessionBus/BusAtAPath.h"
#include "Tests/SessionBus/StubLogin.h"

#include <gtest/gtest.h>

#include <poll.h>

#include <chrono>
#include <string>
#include <vector>

namespace {

using namespace std::chrono_literals;
using Platform::SessionLock;
using Clock = std::chrono::steady_clock;

class SessionLockTests : public testing::Test {
protected:
    auto keeping() {
        return [this](bool isLocked) { told.push_back(isLocked); };
    }

    /// Serves it as a loop does, until the condition holds; whether it came to that within half a minute.
    template <typename Condition>
    static bool serveUntil(SessionLock& lock, Condition const& condition) {
        auto const end = Clock::now() + 30s;
        while (!condition() && Clock::now() < end) {
            auto const wait = lock.wait();
            if (!wait) break;
            pollfd descriptor{.fd = wait->descriptor, .events = wait->events, .revents = 0};
            bool const isDue = wait->until && *wait->until <= Clock::now();
            poll(&descriptor, 1, isDue ? 0 : 20);
            lock.serve();
        }
        return condition();
    }
    bool hears(SessionLock& lock, std::vector<bool> const& expected) {
        return serveUntil(lock, [&] { return told.size() >= expected.size(); }) && told == expected;
    }

    BusAtAPath bus;
    std::vector<bool> told;
};

TEST_F(SessionLockTests, whatIsLockedFromTheStartIsTold) {
    StubLogin login(bus.address(), StubLogin::Sessions::one, true);
    SessionLock lock(bus.address(), keeping());
    EXPECT_TRUE(hears(lock, {true}));
    login.setLocked(false);
    EXPECT_TRUE(hears(lock, {true, false}));
}

TEST_F(SessionLockTests, eachChangeIsToldOnce) {
    StubLogin login(bus.address());
    SessionLock lock(bus.address(), keeping());
    // Whether or not the bus has taken the subscription yet: what is locked meanwhile is found by asking.
    login.setLocked(true);
    EXPECT_TRUE(hears(lock, {true}));
    login.becomeIdle();
    login.setLocked(true);
    login.setLocked(false);
    EXPECT_TRUE(hears(lock, {true, false}));
    login.setLocked(true);
    EXPECT_TRUE(hears(lock, {true, false, true}));
}

TEST_F(SessionLockTests, withoutASessionNobodyIsListenedTo) {
    StubLogin login(bus.address(), StubLogin::Sessions::none, true);
    SessionLock lock(bus.address(), keeping());
    EXPECT_TRUE(serveUntil(lock, [&] { return !lock.wait(); }));
    EXPECT_EQ(told, std::vector<bool>{});
}

TEST_F(SessionLockTests, withoutALoginServiceNobodyIsListenedTo) {
    SessionLock lock(bus.address(), keeping());
    EXPECT_TRUE(serveUntil(lock, [&] { return !lock.wait(); }));
    EXPECT_EQ(told, std::vector<bool>{});
}

TEST_F(SessionLockTests, theEndOfTheBusUnlocksNothing) {
    {
        StubLogin login(bus.address(), StubLogin::Sessions::one, true);
        SessionLock lock(bus.address(), keeping());
        EXPECT_TRUE(hears(lock, {true}));
        bus.end();
        EXPECT_TRUE(serveUntil(lock, [&] { return !lock.wait(); }));
    }
    EXPECT_EQ(told, std::vector<bool>{true});
}

TEST_F(SessionLockTests, addressesThatLeadNowhereAreNotWaitedFor) {
    for (char const* const address : {"", "no address at all", "unix:path=/nonexistent/bus"}) {
        SessionLock lock(address, keeping());
        EXPECT_TRUE(serveUntil(lock, [&] { return !lock.wait(); })) << address;
    }
    EXPECT_EQ(told, std::vector<bool>{});
}

TEST_F(SessionLockTests, theMachinesBusIsAtItsUsualPlaceUnlessSaidOtherwise) {
    using Foundation::Environment;
    EXPECT_EQ(Platform::systemBusAddress(Environment()), "unix:path=/run/dbus/system_bus_socket");
    EXPECT_EQ(Platform::systemBusAddress(Environment({{"DBUS_SYSTEM_BUS_ADDRESS", ""}})),
              "unix:path=/run/dbus/system_bus_socket");
    EXPECT_EQ(Platform::systemBusAddress(Environment({{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/b"}})),
              "unix:path=/b");
}

} // namespace
