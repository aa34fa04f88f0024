#include "Platform/WidgetHost/BoundedBusConnection.h"

#include <gio/gio.h>

namespace Platform {

namespace {

struct Unreference {
    void operator()(gpointer object) const { g_object_unref(object); }
};
using Result = std::unique_ptr<GAsyncResult, Unreference>;

void arrived(GObject*, GAsyncResult* result, gpointer slot) {
    *static_cast<GAsyncResult**>(slot) = G_ASYNC_RESULT(g_object_ref(result));
}

/// The result of an operation that `arrived` was given as the callback of, with `slot` as its data.
Result await(GMainContext* context, GAsyncResult*& slot) {
    while (slot == nullptr) {
        g_main_context_iteration(context, TRUE);
    }
    return Result(slot);
}

void cancelLater(GMainContext* context, GCancellable* cancellable, std::chrono::milliseconds delay) {
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

} // namespace

void BoundedBusConnection::Release::operator()(GDBusConnection* object) const {
    g_object_unref(object);
}

void BoundedBusConnection::Release::operator()(GCancellable* object) const {
    g_object_unref(object);
}

void BoundedBusConnection::Release::operator()(GMainContext* object) const {
    g_main_context_unref(object);
}

void BoundedBusConnection::Release::operator()(GVariant* value) const {
    g_variant_unref(value);
}

// A main context of its own, so that the exchange can be bounded on whichever thread it runs.
BoundedBusConnection::BoundedBusConnection(std::string const& address, std::chrono::milliseconds patience)
    : context(g_main_context_new()),
      cancellable(g_cancellable_new()) {
    g_main_context_push_thread_default(context.get());
    cancelLater(context.get(), cancellable.get(), patience);
    GAsyncResult* connected = nullptr;
    g_dbus_connection_new_for_address(
        address.c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, cancellable.get(), arrived, &connected);
    auto const result = await(context.get(), connected);
    connection.reset(g_dbus_connection_new_for_address_finish(result.get(), nullptr));
}

BoundedBusConnection::~BoundedBusConnection() {
    connection.reset();
    g_main_context_pop_thread_default(context.get());
}

void BoundedBusConnection::emitSignal(char const* objectPath, char const* interface,
                                      char const* signal) const {
    g_dbus_connection_emit_signal(connection.get(), nullptr, objectPath, interface, signal, nullptr, nullptr);
    GAsyncResult* flushed = nullptr;
    g_dbus_connection_flush(connection.get(), cancellable.get(), arrived, &flushed);
    auto const result = await(context.get(), flushed);
    g_dbus_connection_flush_finish(connection.get(), result.get(), nullptr);
}

std::optional<bool> BoundedBusConnection::hasOwner(char const* name) const {
    auto const answer = askBus("NameHasOwner", g_variant_new("(s)", name), "(b)");
    if (!answer) return std::nullopt;
    gboolean isOwned = FALSE;
    g_variant_get(answer.get(), "(b)", &isOwned);
    return isOwned != FALSE;
}

std::optional<bool> BoundedBusConnection::isStartable(char const* name) const {
    auto const answer = askBus("ListActivatableNames", nullptr, "(as)");
    if (!answer) return std::nullopt;
    gchar const** names = nullptr;
    g_variant_get(answer.get(), "(^a&s)", &names);
    bool const isListed = g_strv_contains(names, name) != FALSE;
    g_free(names);
    return isListed;
}

// Null when the bus did not answer. Takes a floating reference to `arguments`, as GLib's own calls do.
std::unique_ptr<GVariant, BoundedBusConnection::Release>
BoundedBusConnection::askBus(char const* method, GVariant* arguments, char const* answerType) const {
    GAsyncResult* answered = nullptr;
    g_dbus_connection_call(connection.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus",
                           "org.freedesktop.DBus", method, arguments, G_VARIANT_TYPE(answerType),
                           G_DBUS_CALL_FLAGS_NONE, -1, cancellable.get(), arrived, &answered);
    auto const result = await(context.get(), answered);
    return std::unique_ptr<GVariant, Release>(
        g_dbus_connection_call_finish(connection.get(), result.get(), nullptr));
}

} // namespace Platform
