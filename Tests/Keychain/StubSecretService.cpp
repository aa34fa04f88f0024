#include "Tests/Keychain/StubSecretService.h"

#include <utility>

namespace {

constexpr char const* description = R"(<node><interface name='org.freedesktop.Secret.Service'>
    <method name='OpenSession'><arg type='s' direction='in'/><arg type='v' direction='in'/>
        <arg type='v' direction='out'/><arg type='o' direction='out'/></method>
    <method name='SearchItems'><arg type='a{ss}' direction='in'/>
        <arg type='ao' direction='out'/><arg type='ao' direction='out'/></method>
</interface></node>)";

} // namespace

StubSecretService::StubSecretService(std::string address, Manner manner)
    : manner(manner),
      context(g_main_context_new()),
      loop(g_main_loop_new(context, FALSE)),
      server([this, address = std::move(address)] { serve(address); }) {
    std::unique_lock lock(mutex);
    ready.wait(lock, [this] { return isReady; });
}

StubSecretService::~StubSecretService() {
    g_main_context_invoke(
        context,
        [](gpointer self) -> gboolean {
            g_main_loop_quit(static_cast<StubSecretService*>(self)->loop);
            return G_SOURCE_REMOVE;
        },
        this);
    server.join();
    g_dbus_connection_close_sync(connection, nullptr, nullptr);
    g_object_unref(connection);
    g_main_loop_unref(loop);
    g_main_context_unref(context);
}

void StubSecretService::serve(std::string const& address) {
    g_main_context_push_thread_default(context);
    connection = g_dbus_connection_new_for_address_sync(
        address.c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr);
    auto* node = g_dbus_node_info_new_for_xml(description, nullptr);
    GDBusInterfaceVTable const table{
        .method_call = called, .get_property = nullptr, .set_property = nullptr, .padding = {}};
    g_dbus_connection_register_object(connection, "/org/freedesktop/secrets", node->interfaces[0], &table,
                                      this, nullptr, nullptr);
    auto* owned = g_dbus_connection_call_sync(connection, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                              "org.freedesktop.DBus", "RequestName",
                                              g_variant_new("(su)", "org.freedesktop.secrets", 0U), nullptr,
                                              G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    g_variant_unref(owned);
    {
        std::scoped_lock const lock(mutex);
        isReady = true;
    }
    ready.notify_one();
    g_main_loop_run(loop);
    g_dbus_node_info_unref(node);
    g_main_context_pop_thread_default(context);
}

void StubSecretService::called(GDBusConnection* connection, gchar const*, gchar const*, gchar const*,
                               gchar const*, GVariant*, GDBusMethodInvocation* invocation, gpointer data) {
    switch (static_cast<StubSecretService*>(data)->manner) {
    case Manner::denies:
        g_dbus_method_invocation_return_error_literal(invocation, G_DBUS_ERROR, G_DBUS_ERROR_ACCESS_DENIED,
                                                      "not you");
        return;
    case Manner::failsOddly:
        g_dbus_method_invocation_return_dbus_error(invocation, "org.example.Broken", "out of order");
        return;
    case Manner::diesOnCall: g_dbus_connection_close_sync(connection, nullptr, nullptr); break;
    case Manner::staysSilent: break;
    }
    g_object_unref(invocation);
}
