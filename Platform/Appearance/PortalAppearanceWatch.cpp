#include "Platform/Appearance/PortalAppearanceWatch.h"

#include "Platform/Appearance/PortalSettings.h"

#include <gio/gio.h>

#include <array>

namespace Platform {

namespace {

struct Release {
    void operator()(gpointer object) const { g_object_unref(object); }
};

template <typename Object>
using Owned = std::unique_ptr<Object, Release>;

constexpr auto connectionFlags = static_cast<GDBusConnectionFlags>(
    G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);

} // namespace

class PortalAppearanceWatch::Subscription {
public:
    explicit Subscription(std::function<void()> changed)
        : changed(std::move(changed)),
          cancellable(g_cancellable_new()) {}

    Subscription(Subscription const&) = delete;
    Subscription& operator=(Subscription const&) = delete;

    ~Subscription() {
        g_cancellable_cancel(cancellable.get());
        for (auto const signal : signals) {
            if (signal != 0) g_dbus_connection_signal_unsubscribe(connection.get(), signal);
        }
    }

    static void open(std::shared_ptr<Subscription> const& self, std::string const& address) {
        g_dbus_connection_new_for_address(address.c_str(), connectionFlags, nullptr, self->cancellable.get(),
                                          connected, new Weak(self));
    }

private:
    /// What a callback holds: it may still be on its way when the watch has gone.
    using Weak = std::weak_ptr<Subscription>;

    static void connected(GObject*, GAsyncResult* result, gpointer data) {
        std::unique_ptr<Weak> const weak(static_cast<Weak*>(data));
        Owned<GDBusConnection> connection(g_dbus_connection_new_for_address_finish(result, nullptr));
        auto const self = weak->lock();
        if (!self || !connection) return;
        self->connection = std::move(connection);
        self->signals = {
            self->subscribe(PortalSettings::busName, PortalSettings::interfaceName, "SettingChanged",
                            PortalSettings::objectPath, PortalSettings::appearance, *weak),
            self->subscribe("org.freedesktop.DBus", "org.freedesktop.DBus", "NameOwnerChanged",
                            "/org/freedesktop/DBus", PortalSettings::busName, *weak),
        };
    }

    guint subscribe(char const* sender, char const* interface, char const* member, char const* path,
                    char const* firstArgument, Weak const& weak) const {
        return g_dbus_connection_signal_subscribe(
            connection.get(), sender, interface, member, path, firstArgument, G_DBUS_SIGNAL_FLAGS_NONE, heard,
            new Weak(weak), [](gpointer data) { delete static_cast<Weak*>(data); });
    }

    // An exception must not pass through the library's frames: it ends the process here.
    static void heard(GDBusConnection*, gchar const*, gchar const*, gchar const*, gchar const*, GVariant*,
                      gpointer data) noexcept {
        // The callback may destroy the watch: a copy keeps the function alive while it runs.
        auto const self = static_cast<Weak*>(data)->lock();
        if (self) self->changed();
    }

    std::function<void()> changed;
    Owned<GCancellable> cancellable;
    Owned<GDBusConnection> connection;
    std::array<guint, 2> signals{};
};

PortalAppearanceWatch::PortalAppearanceWatch(std::optional<std::string> const& busAddress,
                                             std::function<void()> changed)
    : subscription(std::make_shared<Subscription>(std::move(changed))) {
    if (busAddress) Subscription::open(subscription, *busAddress);
}

PortalAppearanceWatch::~PortalAppearanceWatch() = default;

} // namespace Platform
