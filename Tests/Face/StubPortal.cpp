#include "Tests/Face/StubPortal.h"

namespace {

constexpr char const* settings = R"(<node><interface name='org.freedesktop.portal.Settings'>
    <method name='Read'><arg type='s' direction='in'/><arg type='s' direction='in'/><arg type='v' direction='out'/></method>
    <signal name='SettingChanged'><arg type='s'/><arg type='s'/><arg type='v'/></signal>
</interface></node>)";

constexpr char const* path = "/org/freedesktop/portal/desktop";

} // namespace

StubPortal::StubPortal(std::string address, Manner manner)
    : manner(manner),
      context(g_main_context_new()),
      loop(g_main_loop_new(context, FALSE)),
      server([this, address = std::move(address)] { serve(address); }) {
    std::unique_lock lock(mutex);
    ready.wait(lock, [this] { return isReady; });
}

StubPortal::~StubPortal() {
    g_main_context_invoke(
        context,
        [](gpointer self) -> gboolean {
            g_main_loop_quit(static_cast<StubPortal*>(self)->loop);
            return G_SOURCE_REMOVE;
        },
        this);
    server.join();
    g_dbus_connection_close_sync(connection, nullptr, nullptr);
    g_object_unref(connection);
    g_main_loop_unref(loop);
    g_main_context_unref(context);
}

void StubPortal::set(std::string const& key, std::string const& value) {
    std::scoped_lock const lock(mutex);
    values[key] = value;
}

void StubPortal::announce(std::string const& space, std::string const& key) {
    g_dbus_connection_emit_signal(
        connection, nullptr, path, "org.freedesktop.portal.Settings", "SettingChanged",
        g_variant_new("(ssv)", space.c_str(), key.c_str(), g_variant_new_uint32(1)), nullptr);
    g_dbus_connection_flush_sync(connection, nullptr, nullptr);
}

void StubPortal::serve(std::string const& address) {
    g_main_context_push_thread_default(context);
    connection = g_dbus_connection_new_for_address_sync(
        address.c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr);
    auto* node = g_dbus_node_info_new_for_xml(settings, nullptr);
    GDBusInterfaceVTable const table{
        .method_call = called, .get_property = nullptr, .set_property = nullptr, .padding = {}};
    auto const object = g_dbus_connection_register_object(connection, path, node->interfaces[0], &table, this,
                                                          nullptr, nullptr);
    auto* owned = g_dbus_connection_call_sync(connection, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                              "org.freedesktop.DBus", "RequestName",
                                              g_variant_new("(su)", "org.freedesktop.portal.Desktop", 0U),
                                              nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    {
        std::scoped_lock const lock(mutex);
        isReady = owned != nullptr;
    }
    ready.notify_one();
    g_main_loop_run(loop);
    g_dbus_connection_unregister_object(connection, object);
    g_dbus_node_info_unref(node);
    g_variant_unref(owned);
    g_main_context_pop_thread_default(context);
}

void StubPortal::called(GDBusConnection*, gchar const*, gchar const*, gchar const*, gchar const*,
                        GVariant* arguments, GDBusMethodInvocation* invocation, gpointer data) {
    auto& self = *static_cast<StubPortal*>(data);
    ++self.readCount;
    if (self.manner == Manner::staysSilent) {
        g_object_unref(invocation);
        return;
    }
    char const* space = nullptr;
    char const* key = nullptr;
    g_variant_get(arguments, "(&s&s)", &space, &key);
    std::scoped_lock const lock(self.mutex);
    // Keys of the appearance's own namespace are given without it.
    bool const isAppearance = std::string_view(space) == "org.freedesktop.appearance";
    auto const value = self.values.find(isAppearance ? key : std::string(space) + " " + key);
    if (value == self.values.end()) {
        g_dbus_method_invocation_return_dbus_error(invocation, "org.freedesktop.portal.Error.NotFound",
                                                   "Requested setting not found");
        return;
    }
    auto* parsed = g_variant_parse(nullptr, value->second.c_str(), nullptr, nullptr, nullptr);
    g_dbus_method_invocation_return_value(invocation, g_variant_new("(v)", parsed));
    g_variant_unref(parsed);
}
