#include "Tests/SessionBus/StubLogin.h"

#include <gio/gio.h>

#include <future>
#include <string_view>
#include <thread>

namespace {

constexpr char const* managerPath = "/org/freedesktop/login1";
constexpr char const* sessionPath = "/org/freedesktop/login1/session/_31";
constexpr char const* sessionInterface = "org.freedesktop.login1.Session";

constexpr char const* description =
    "<node><interface name='org.freedesktop.login1.Manager'><method name='GetSession'>"
    "<arg type='s' direction='in'/><arg type='o' direction='out'/></method></interface>"
    "<interface name='org.freedesktop.login1.Session'>"
    "<property name='LockedHint' type='b' access='read'/>"
    "<property name='IdleHint' type='b' access='read'/></interface></node>";

} // namespace

struct StubLogin::Service {
    Service(std::string const& busAddress, Sessions sessions, bool isLockedFromTheStart)
        : sessions(sessions),
          isLocked(isLockedFromTheStart) {
        std::promise<void> isReady;
        thread = std::thread([this, busAddress, &isReady] { run(busAddress, isReady); });
        isReady.get_future().wait();
    }
    ~Service() {
        g_main_loop_quit(loop);
        thread.join();
        g_object_unref(connection);
        g_main_loop_unref(loop);
        g_main_context_unref(context);
    }
    Service(Service const&) = delete;
    Service& operator=(Service const&) = delete;

    void run(std::string const& busAddress, std::promise<void>& isReady) {
        g_main_context_push_thread_default(context);
        connection = g_dbus_connection_new_for_address_sync(
            busAddress.c_str(),
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, nullptr);
        auto* const node = g_dbus_node_info_new_for_xml(description, nullptr);
        static constexpr GDBusInterfaceVTable table{
            .method_call = called, .get_property = asked, .set_property = nullptr, .padding = {}};
        g_dbus_connection_register_object(connection, managerPath, node->interfaces[0], &table, this, nullptr,
                                          nullptr);
        g_dbus_connection_register_object(connection, sessionPath, node->interfaces[1], &table, this, nullptr,
                                          nullptr);
        g_dbus_node_info_unref(node);
        g_variant_unref(g_dbus_connection_call_sync(
            connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
            "RequestName", g_variant_new("(su)", "org.freedesktop.login1", 0U), nullptr,
            G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
        // From within the loop, so that it can be ended from here on.
        auto* const source = g_idle_source_new();
        g_source_set_callback(
            source,
            [](gpointer promise) -> gboolean {
                static_cast<std::promise<void>*>(promise)->set_value();
                return G_SOURCE_REMOVE;
            },
            &isReady, nullptr);
        g_source_attach(source, context);
        g_source_unref(source);
        g_main_loop_run(loop);
        g_dbus_connection_close_sync(connection, nullptr, nullptr);
        g_main_context_pop_thread_default(context);
    }

    static void called(GDBusConnection*, gchar const*, gchar const*, gchar const*, gchar const*,
                       GVariant* arguments, GDBusMethodInvocation* invocation, gpointer data) {
        auto const* const self = static_cast<Service*>(data);
        gchar const* name = nullptr;
        g_variant_get(arguments, "(&s)", &name);
        if (self->sessions == Sessions::none || std::string_view(name) != "auto") {
            g_dbus_method_invocation_return_dbus_error(invocation, "org.freedesktop.login1.NoSuchSession",
                                                       "No session");
            return;
        }
        g_dbus_method_invocation_return_value(invocation, g_variant_new("(o)", sessionPath));
    }

    static GVariant* asked(GDBusConnection*, gchar const*, gchar const*, gchar const*, gchar const* property,
                           GError**, gpointer data) {
        bool const isHint = std::string_view(property) == "LockedHint";
        return g_variant_new_boolean(isHint && static_cast<Service*>(data)->isLocked ? TRUE : FALSE);
    }

    void tell(char const* property, bool value) const {
        GVariantBuilder changed;
        g_variant_builder_init(&changed, G_VARIANT_TYPE("a{sv}"));
        g_variant_builder_add(&changed, "{sv}", property, g_variant_new_boolean(value ? TRUE : FALSE));
        g_dbus_connection_emit_signal(
            connection, nullptr, sessionPath, "org.freedesktop.DBus.Properties", "PropertiesChanged",
            g_variant_new("(sa{sv}as)", sessionInterface, &changed, nullptr), nullptr);
    }

    Sessions sessions;
    std::atomic<bool> isLocked;
    GMainContext* context = g_main_context_new();
    GMainLoop* loop = g_main_loop_new(context, FALSE);
    GDBusConnection* connection = nullptr;
    std::thread thread;
};

StubLogin::StubLogin(std::string const& busAddress, Sessions sessions, bool isLockedFromTheStart)
    : service(std::make_unique<Service>(busAddress, sessions, isLockedFromTheStart)) {}

StubLogin::~StubLogin() = default;

void StubLogin::setLocked(bool isLockedNow) {
    service->isLocked = isLockedNow;
    service->tell("LockedHint", isLockedNow);
}

void StubLogin::becomeIdle() {
    service->tell("IdleHint", true);
}
