#include "Platform/WidgetHost/ReloadListener.h"

#include "Platform/WidgetHost/WidgetBus.h"

#include <gio/gio.h>

#include <utility>

namespace Platform {

struct ReloadListener::State {
    explicit State(std::function<void()> onRequest) : onRequest(std::move(onRequest)) {
        g_bus_get(G_BUS_TYPE_SESSION, cancellable, connected, this);
    }
    State(State const&) = delete;
    State& operator=(State const&) = delete;

    ~State() {
        g_cancellable_cancel(cancellable);
        g_object_unref(cancellable);
        if (bus != nullptr) {
            g_dbus_connection_signal_unsubscribe(bus, subscription);
            g_object_unref(bus);
        }
    }

    static void connected(GObject*, GAsyncResult* result, gpointer data) {
        GError* error = nullptr;
        GDBusConnection* const bus = g_bus_get_finish(result, &error);
        if (bus == nullptr) {
            // Cancelled means that `data` has gone; any other failure means that there is no bus to hear.
            g_error_free(error);
            return;
        }
        // The connection is the whole process's; its end, as at the bus's, is not that of the process.
        g_dbus_connection_set_exit_on_close(bus, FALSE);
        auto* const state = static_cast<State*>(data);
        state->bus = bus;
        state->subscription = g_dbus_connection_signal_subscribe(
            bus, nullptr, WidgetBus::reloadInterface, WidgetBus::reloadSignal, WidgetBus::reloadObjectPath,
            nullptr, G_DBUS_SIGNAL_FLAGS_NONE,
            [](GDBusConnection*, gchar const*, gchar const*, gchar const*, gchar const*, GVariant*,
               gpointer self) noexcept { static_cast<State*>(self)->onRequest(); },
            state, nullptr);
    }

    std::function<void()> onRequest;
    GCancellable* cancellable = g_cancellable_new();
    GDBusConnection* bus = nullptr;
    guint subscription = 0;
};

ReloadListener::ReloadListener(std::optional<std::string> const& busAddress,
                               std::function<void()> onRequest) {
    // The library would start a bus of its own where there is none, and leave it behind.
    if (busAddress) {
        state = std::make_unique<State>(std::move(onRequest));
    }
}

ReloadListener::~ReloadListener() = default;

} // namespace Platform
