#pragma once

#include <gio/gio.h>

#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

/// An object that owns a name on a bus and answers calls on a thread of its own: what the stand-ins of a
/// desktop's services have in common. Declare it as their last member, since calls come in while it stands.
class ObjectOnBus {
public:
    struct Description {
        char const* busName;
        char const* path;
        char const* interfaceName;
        char const* members; ///< Of the interface, in the bus's XML form.
    };
    /// Answers a call; the invocation is its own to use up.
    using Answer =
        std::function<void(std::string_view method, GVariant* arguments, GDBusMethodInvocation* invocation)>;

    /// Owns the name once constructed. Where the bus does not give it the process ends: no test goes on then.
    ObjectOnBus(std::string const& address, Description const& description, Answer answer)
        : description(description),
          answer(std::move(answer)),
          context(g_main_context_new()),
          loop(g_main_loop_new(context, FALSE)),
          bus(g_dbus_connection_new_for_address_sync(
              address.c_str(),
              static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
              nullptr, nullptr, nullptr)) {
        if (bus == nullptr) g_error("no bus at %s", address.c_str());
        registerObject();
        ownName();
        server = std::thread([this] { g_main_loop_run(loop); });
    }
    ~ObjectOnBus() {
        g_main_context_invoke(
            context,
            [](gpointer running) -> gboolean {
                g_main_loop_quit(static_cast<GMainLoop*>(running));
                return G_SOURCE_REMOVE;
            },
            loop);
        server.join();
        g_dbus_connection_unregister_object(bus, object);
        g_dbus_connection_close_sync(bus, nullptr, nullptr);
        g_object_unref(bus);
        g_main_loop_unref(loop);
        g_main_context_unref(context);
    }
    ObjectOnBus(ObjectOnBus const&) = delete;
    ObjectOnBus& operator=(ObjectOnBus const&) = delete;

    /// Sends a signal of the interface to everybody; it is on the bus when this returns.
    void emit(char const* signal, GVariant* arguments) const {
        g_dbus_connection_emit_signal(bus, nullptr, description.path, description.interfaceName, signal,
                                      arguments, nullptr);
        g_dbus_connection_flush_sync(bus, nullptr, nullptr);
    }

    /// Drops off the bus, as a service that has crashed does.
    void leave() const { g_dbus_connection_close_sync(bus, nullptr, nullptr); }

private:
    void registerObject() {
        auto const xml = std::string("<node><interface name='") + description.interfaceName + "'>" +
                         description.members + "</interface></node>";
        auto* const node = g_dbus_node_info_new_for_xml(xml.c_str(), nullptr);
        if (node == nullptr) g_error("%s is not described well", description.interfaceName);
        GDBusInterfaceVTable const table{
            .method_call = called, .get_property = nullptr, .set_property = nullptr, .padding = {}};
        // Calls are handed to the context that is the thread's own while the object is registered.
        g_main_context_push_thread_default(context);
        object = g_dbus_connection_register_object(bus, description.path, node->interfaces[0], &table, this,
                                                   nullptr, nullptr);
        g_main_context_pop_thread_default(context);
        g_dbus_node_info_unref(node);
    }

    void ownName() const {
        constexpr guint32 isOwner = 1;
        guint32 answered = 0;
        auto* const reply = g_dbus_connection_call_sync(
            bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
            g_variant_new("(su)", description.busName, 0U), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
            nullptr);
        if (reply != nullptr) {
            g_variant_get(reply, "(u)", &answered);
            g_variant_unref(reply);
        }
        if (answered != isOwner) g_error("%s is not to be had", description.busName);
    }

    static void called(GDBusConnection*, gchar const*, gchar const*, gchar const*, gchar const* method,
                       GVariant* arguments, GDBusMethodInvocation* invocation, gpointer self) {
        static_cast<ObjectOnBus*>(self)->answer(method, arguments, invocation);
    }

    Description description;
    Answer answer;
    GMainContext* context;
    GMainLoop* loop;
    GDBusConnection* bus;
    guint object = 0;
    std::thread server;
};
