#include "Platform/WidgetHost/SessionBusWidgetCenter.h"

#include "Platform/WidgetHost/WidgetBus.h"

#include <gio/gio.h>

#include <filesystem>
#include <memory>

namespace Platform {

namespace {

struct Unreference {
    void operator()(gpointer object) const { g_object_unref(object); }
};

/// A main context of our own, so that the exchange can be bounded on whichever thread it runs.
class PrivateContext {
public:
    PrivateContext() : context(g_main_context_new()) { g_main_context_push_thread_default(context); }
    PrivateContext(PrivateContext const&) = delete;
    PrivateContext& operator=(PrivateContext const&) = delete;
    ~PrivateContext() {
        g_main_context_pop_thread_default(context);
        g_main_context_unref(context);
    }

    /// Cancels `cancellable` after the given time.
    void cancelLater(GCancellable* cancellable, std::chrono::milliseconds delay) {
        GSource* const source = g_timeout_source_new(static_cast<guint>(delay.count()));
        g_source_set_callback(
            source,
            [](gpointer target) -> gboolean {
                g_cancellable_cancel(static_cast<GCancellable*>(target));
                return G_SOURCE_REMOVE;
            },
            g_object_ref(cancellable), g_object_unref);
        g_source_attach(source, context);
        g_source_unref(source);
    }

    /// Yields the result of an operation that `arrived` was given as the callback of.
    GAsyncResult* await(GAsyncResult*& result) {
        while (result == nullptr) {
            g_main_context_iteration(context, TRUE);
        }
        return result;
    }

private:
    GMainContext* context;
};

void arrived(GObject*, GAsyncResult* result, gpointer slot) {
    *static_cast<GAsyncResult**>(slot) = G_ASYNC_RESULT(g_object_ref(result));
}

} // namespace

std::optional<std::string> sessionBusAddress(Foundation::Environment const& environment) {
    auto const address = environment.value("DBUS_SESSION_BUS_ADDRESS");
    if (address && !address->empty()) {
        return address;
    }
    auto const runtimeFolder = environment.value("XDG_RUNTIME_DIR");
    if (!runtimeFolder || !runtimeFolder->starts_with('/')) {
        return std::nullopt;
    }
    auto const socket = *runtimeFolder + "/bus";
    std::error_code error;
    if (!std::filesystem::is_socket(socket, error)) {
        return std::nullopt;
    }
    std::unique_ptr<gchar, decltype(&g_free)> const escaped(g_dbus_address_escape_value(socket.c_str()),
                                                            g_free);
    return std::string("unix:path=") + escaped.get();
}

void SessionBusWidgetCenter::reloadAllTimelines() {
    if (!address) {
        return;
    }
    PrivateContext context;
    std::unique_ptr<GCancellable, Unreference> const cancellable(g_cancellable_new());
    context.cancelLater(cancellable.get(), patience);

    GAsyncResult* connected = nullptr;
    g_dbus_connection_new_for_address(
        address->c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, cancellable.get(), arrived, &connected);
    std::unique_ptr<GAsyncResult, Unreference> const connectedResult(context.await(connected));
    std::unique_ptr<GDBusConnection, Unreference> const bus(
        g_dbus_connection_new_for_address_finish(connectedResult.get(), nullptr));
    if (!bus) {
        return;
    }
    g_dbus_connection_emit_signal(bus.get(), nullptr, WidgetBus::reloadObjectPath, WidgetBus::reloadInterface,
                                  WidgetBus::reloadSignal, nullptr, nullptr);
    GAsyncResult* flushed = nullptr;
    g_dbus_connection_flush(bus.get(), cancellable.get(), arrived, &flushed);
    std::unique_ptr<GAsyncResult, Unreference> const flushedResult(context.await(flushed));
    g_dbus_connection_flush_finish(bus.get(), flushedResult.get(), nullptr);
}

} // namespace Platform
