#include "Tests/UserNotifications/StubNotificationServer.h"

#include <chrono>
#include <memory>
#include <utility>

namespace {

constexpr char const* interfaceName = "org.freedesktop.Notifications";
constexpr char const* path = "/org/freedesktop/Notifications";
constexpr char const* description = R"(<node><interface name='org.freedesktop.Notifications'>
    <method name='GetCapabilities'><arg type='as' direction='out'/></method>
    <method name='Notify'>
        <arg type='s' direction='in'/><arg type='u' direction='in'/><arg type='s' direction='in'/>
        <arg type='s' direction='in'/><arg type='s' direction='in'/><arg type='as' direction='in'/>
        <arg type='a{sv}' direction='in'/><arg type='i' direction='in'/><arg type='u' direction='out'/>
    </method>
    <method name='CloseNotification'><arg type='u' direction='in'/></method>
    <signal name='ActionInvoked'><arg type='u'/><arg type='s'/></signal>
    <signal name='NotificationClosed'><arg type='u'/><arg type='u'/></signal>
</interface></node>)";

std::map<std::string, std::string> hintsOf(GVariantIter* entries) {
    std::map<std::string, std::string> hints;
    char const* name = nullptr;
    GVariant* value = nullptr;
    while (g_variant_iter_next(entries, "{&sv}", &name, &value) != FALSE) {
        gchar* const text = g_variant_print(value, FALSE);
        hints[name] = text;
        g_free(text);
        g_variant_unref(value);
    }
    return hints;
}

std::vector<std::string> textsOf(GVariantIter* entries) {
    std::vector<std::string> texts;
    for (char const* text = nullptr; g_variant_iter_next(entries, "&s", &text) != FALSE;)
        texts.emplace_back(text);
    return texts;
}

} // namespace

StubNotificationServer::StubNotificationServer(std::string address, std::vector<std::string> capabilities)
    : capabilities(std::move(capabilities)),
      context(g_main_context_new()),
      loop(g_main_loop_new(context, FALSE)),
      server([this, address = std::move(address)] { serve(address); }) {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return isReady; });
}

StubNotificationServer::~StubNotificationServer() {
    g_main_context_invoke(
        context,
        [](gpointer self) -> gboolean {
            g_main_loop_quit(static_cast<StubNotificationServer*>(self)->loop);
            return G_SOURCE_REMOVE;
        },
        this);
    server.join();
    g_dbus_connection_close_sync(connection, nullptr, nullptr);
    g_object_unref(connection);
    g_main_loop_unref(loop);
    g_main_context_unref(context);
}

std::vector<StubNotificationServer::Notification> StubNotificationServer::shown() {
    std::scoped_lock const lock(mutex);
    return notifications;
}

bool StubNotificationServer::awaitShown(std::size_t count) {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, std::chrono::minutes(1), [&] { return notifications.size() >= count; });
}

void StubNotificationServer::choose(std::uint32_t number, std::string const& action) {
    emit("ActionInvoked", g_variant_new("(us)", number, action.c_str()));
    close(number);
}

void StubNotificationServer::close(std::uint32_t number) {
    constexpr std::uint32_t byThePerson = 2;
    emit("NotificationClosed", g_variant_new("(uu)", number, byThePerson));
}

void StubNotificationServer::refuse() {
    std::scoped_lock const lock(mutex);
    isRefusing = true;
}

void StubNotificationServer::emit(char const* signal, GVariant* arguments) {
    g_dbus_connection_emit_signal(connection, nullptr, path, interfaceName, signal, arguments, nullptr);
    g_dbus_connection_flush_sync(connection, nullptr, nullptr);
}

void StubNotificationServer::serve(std::string const& address) {
    g_main_context_push_thread_default(context);
    connection = g_dbus_connection_new_for_address_sync(
        address.c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr);
    auto* node = g_dbus_node_info_new_for_xml(description, nullptr);
    GDBusInterfaceVTable const table{
        .method_call = called, .get_property = nullptr, .set_property = nullptr, .padding = {}};
    auto const object = g_dbus_connection_register_object(connection, path, node->interfaces[0], &table, this,
                                                          nullptr, nullptr);
    auto* owned = g_dbus_connection_call_sync(
        connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
        g_variant_new("(su)", interfaceName, 0U), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    {
        std::scoped_lock const lock(mutex);
        isReady = owned != nullptr;
    }
    changed.notify_all();
    g_main_loop_run(loop);
    g_dbus_connection_unregister_object(connection, object);
    g_dbus_node_info_unref(node);
    g_variant_unref(owned);
    g_main_context_pop_thread_default(context);
}

void StubNotificationServer::show(GVariant* arguments, GDBusMethodInvocation* invocation) {
    char const* application = nullptr;
    char const* icon = nullptr;
    char const* title = nullptr;
    char const* body = nullptr;
    std::uint32_t replaces = 0;
    std::int32_t timeout = 0;
    GVariantIter* actions = nullptr;
    GVariantIter* hints = nullptr;
    g_variant_get(arguments, "(&su&s&s&sasa{sv}i)", &application, &replaces, &icon, &title, &body, &actions,
                  &hints, &timeout);
    std::chrono::duration<double> const now = std::chrono::system_clock::now().time_since_epoch();
    std::scoped_lock const lock(mutex);
    if (isRefusing) {
        g_dbus_method_invocation_return_dbus_error(invocation, "org.example.Error.Full",
                                                   "the screen is full");
    } else {
        auto const number = replaces != 0 ? replaces : static_cast<std::uint32_t>(notifications.size() + 1);
        notifications.push_back({.number = number,
                                 .replaces = replaces,
                                 .application = application,
                                 .icon = icon,
                                 .title = title,
                                 .body = body,
                                 .actions = textsOf(actions),
                                 .hints = hintsOf(hints),
                                 .timeout = timeout,
                                 .shownAt = now.count()});
        g_dbus_method_invocation_return_value(invocation, g_variant_new("(u)", number));
    }
    g_variant_iter_free(actions);
    g_variant_iter_free(hints);
    changed.notify_all();
}

void StubNotificationServer::called(GDBusConnection*, gchar const*, gchar const*, gchar const*,
                                    gchar const* method, GVariant* arguments,
                                    GDBusMethodInvocation* invocation, gpointer data) {
    auto& self = *static_cast<StubNotificationServer*>(data);
    std::string_view const name = method;
    if (name == "Notify") {
        self.show(arguments, invocation);
    } else if (name == "GetCapabilities") {
        GVariantBuilder texts;
        g_variant_builder_init(&texts, G_VARIANT_TYPE("as"));
        for (auto const& capability : self.capabilities)
            g_variant_builder_add(&texts, "s", capability.c_str());
        g_dbus_method_invocation_return_value(invocation, g_variant_new("(as)", &texts));
    } else {
        g_dbus_method_invocation_return_value(invocation, nullptr);
    }
}
