#include "LoopDriver.h"

#include "Platform/WidgetHost/ReloadListener.h"
#include "Platform/WidgetHost/SessionBusWidgetCenter.h"
#include "Platform/WidgetHost/WidgetBus.h"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

namespace {

using Foundation::Environment;

/// A session bus of the test's own.
class PrivateBus {
public:
    PrivateBus() : bus(g_test_dbus_new(G_TEST_DBUS_NONE)) { g_test_dbus_up(bus); }
    PrivateBus(PrivateBus const&) = delete;
    PrivateBus& operator=(PrivateBus const&) = delete;
    ~PrivateBus() {
        g_test_dbus_down(bus);
        g_object_unref(bus);
    }

    [[nodiscard]] std::string address() const { return g_test_dbus_get_bus_address(bus); }
    [[nodiscard]] Environment environment() const {
        return Environment().setting("DBUS_SESSION_BUS_ADDRESS", address());
    }

private:
    GTestDBus* bus;
};

/// Waits until the listener has connected: it hears only what is sent afterwards.
void sendUntilHeard(Platform::WidgetCenter& center, int const& heard) {
    ASSERT_TRUE(LoopDriver::runUntil([&] {
        center.reloadAllTimelines();
        return heard > 0;
    }));
    LoopDriver::runPending();
}

TEST(SessionBusWidgetCenterTests, requestReachesEveryListener) {
    PrivateBus const bus;
    Platform::SessionBusWidgetCenter center(bus.environment());
    int first = 0;
    int second = 0;
    Platform::ReloadListener const firstListener(bus.address(), [&] { ++first; });
    Platform::ReloadListener const secondListener(bus.address(), [&] { ++second; });
    sendUntilHeard(center, first);
    ASSERT_TRUE(LoopDriver::runUntil([&] { return second > 0; }));

    int const before = first;
    std::thread([&] { center.reloadAllTimelines(); }).join();
    EXPECT_TRUE(LoopDriver::runUntil([&] { return first > before; }));
}

TEST(SessionBusWidgetCenterTests, listenerThatHasGoneHearsNothing) {
    PrivateBus const bus;
    Platform::SessionBusWidgetCenter center(bus.environment());
    int gone = 0;
    int stays = 0;
    auto listener = std::make_unique<Platform::ReloadListener>(bus.address(), [&] { ++gone; });
    sendUntilHeard(center, gone);
    listener.reset();
    int const before = gone;
    Platform::ReloadListener const other(bus.address(), [&] { ++stays; });
    sendUntilHeard(center, stays);
    EXPECT_EQ(gone, before);
}

TEST(SessionBusWidgetCenterTests, listenerMayGoBeforeItHasConnected) {
    PrivateBus const bus;
    int heard = 0;
    {
        Platform::ReloadListener const listener(bus.address(), [&] { ++heard; });
    }
    Platform::SessionBusWidgetCenter center(bus.environment());
    center.reloadAllTimelines();
    LoopDriver::runPending();
    EXPECT_EQ(heard, 0);
}

/// Counts the requests on a bus from its making on, unlike a listener, which connects in the background.
class RequestCounter {
public:
    explicit RequestCounter(std::string const& address)
        : connection(g_dbus_connection_new_for_address_sync(
              address.c_str(),
              static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
              nullptr, nullptr, nullptr)) {
        subscription = g_dbus_connection_signal_subscribe(
            connection, nullptr, Platform::WidgetBus::reloadSignal.interface,
            Platform::WidgetBus::reloadSignal.name, Platform::WidgetBus::reloadSignal.objectPath, nullptr,
            G_DBUS_SIGNAL_FLAGS_NONE,
            [](GDBusConnection*, gchar const*, gchar const*, gchar const*, gchar const*, GVariant*,
               gpointer self) { ++static_cast<RequestCounter*>(self)->requests; },
            this, nullptr);
        // The answer comes after the bus has taken the subscription.
        GVariant* const answer = g_dbus_connection_call_sync(
            connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId",
            nullptr, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
        g_variant_unref(answer);
    }
    RequestCounter(RequestCounter const&) = delete;
    RequestCounter& operator=(RequestCounter const&) = delete;
    ~RequestCounter() {
        g_dbus_connection_signal_unsubscribe(connection, subscription);
        g_dbus_connection_close_sync(connection, nullptr, nullptr);
        g_object_unref(connection);
    }

    int requests = 0;

private:
    GDBusConnection* connection;
    guint subscription = 0;
};

TEST(SessionBusWidgetCenterTests, withoutABusOfItsOwnNobodyIsTold) {
    PrivateBus const bus;
    RequestCounter const counter(bus.address());
    Platform::SessionBusWidgetCenter nowhere{Environment()};
    nowhere.reloadAllTimelines();
    Platform::SessionBusWidgetCenter wrong{
        Environment().setting("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus")};
    wrong.reloadAllTimelines();
    Platform::SessionBusWidgetCenter unreadable{
        Environment().setting("DBUS_SESSION_BUS_ADDRESS", "no address at all")};
    unreadable.reloadAllTimelines();
    // The first that arrives on the process's own bus is the first that was sent there.
    Platform::SessionBusWidgetCenter somewhere(bus.environment());
    somewhere.reloadAllTimelines();
    EXPECT_TRUE(LoopDriver::runUntil([&] { return counter.requests > 0; }));
    LoopDriver::runPending();
    EXPECT_EQ(counter.requests, 1);
}

TEST(SessionBusWidgetCenterTests, busThatNeverAnswersIsGivenUp) {
    std::string pattern = testing::TempDir() + "silent-bus-XXXXXX";
    std::filesystem::path const folder = mkdtemp(pattern.data());
    auto const path = folder / "bus";
    int const listening = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.native().size(), sizeof address.sun_path);
    path.native().copy(static_cast<char*>(address.sun_path), path.native().size());
    ASSERT_EQ(bind(listening, reinterpret_cast<sockaddr*>(&address), sizeof address), 0); // NOLINT
    ASSERT_EQ(listen(listening, 1), 0);

    Platform::SessionBusWidgetCenter center(Environment().setting("XDG_RUNTIME_DIR", folder.native()));
    auto const start = std::chrono::steady_clock::now();
    center.reloadAllTimelines();
    auto const taken = std::chrono::steady_clock::now() - start;
    EXPECT_GE(taken, std::chrono::milliseconds(200));
    EXPECT_LT(taken, std::chrono::seconds(3));
    close(listening);
    std::filesystem::remove_all(folder);
}

} // namespace
