#pragma once

#include <gio/gio.h>

#include <string>

/// A session bus of the test's own. While it stands it is the process's session bus.
class PrivateBus {
public:
    /// The bus starts those that a folder's .service files name, if one is given.
    explicit PrivateBus(std::string const& services = {}) : bus(g_test_dbus_new(G_TEST_DBUS_NONE)) {
        if (!services.empty()) g_test_dbus_add_service_dir(bus, services.c_str());
        g_test_dbus_up(bus);
    }
    ~PrivateBus() {
        if (isUp) g_test_dbus_down(bus);
        g_object_unref(bus);
    }
    PrivateBus(PrivateBus const&) = delete;
    PrivateBus& operator=(PrivateBus const&) = delete;

    [[nodiscard]] std::string address() const { return g_test_dbus_get_bus_address(bus); }

    /// The bus goes, with every connection to it.
    void stop() {
        g_test_dbus_stop(bus);
        isUp = false;
    }

private:
    GTestDBus* bus;
    bool isUp = true;
};
