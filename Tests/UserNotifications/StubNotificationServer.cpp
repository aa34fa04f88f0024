#include "Tests/UserNotifications/StubNotificationServer.h"

#include <chrono>
#include <utility>

namespace {

constexpr ObjectOnBus::Description server{.busName = "org.freedesktop.Notifications",
                                          .path = "/org/freedesktop/Notifications",
                                          .interfaceName = "org.freedesktop.Notifications",
                                          .members = R"(
    <method name='GetCapabilities'><arg type='as' direction='out'/></method>
    <method name='Notify'>
        <arg type='s' direction='in'/><arg type='u' direction='in'/><arg type='s' direction='in'/>
        <arg type='s' direction='in'/><arg type='s' direction='in'/><arg type='as' direction='in'/>
        <arg type='a{sv}' direction='in'/><arg type='i' direction='in'/><arg type='u' direction='out'/>
    </method>
    <method name='CloseNotification'><arg type='u' direction='in'/></method>
    <signal name='ActionInvoked'><arg type='u'/><arg type='s'/></signal>
    <signal name='NotificationClosed'><arg type='u'/><arg type='u'/></signal>)"};

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

StubNotificationServer::StubNotificationServer(std::string const& address,
                                               std::vector<std::string> capabilities)
    : capabilities(std::move(capabilities)),
      object(address, server,
             [this](std::string_view method, GVariant* arguments, GDBusMethodInvocation* invocation) {
                 answer(method, arguments, invocation);
             }) {}

std::vector<StubNotificationServer::Notification> StubNotificationServer::shown() {
    std::scoped_lock const lock(mutex);
    return notifications;
}

bool StubNotificationServer::awaitShown(std::size_t count) {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, std::chrono::minutes(1), [&] { return notifications.size() >= count; });
}

void StubNotificationServer::choose(std::uint32_t number, std::string const& action) {
    object.emit("ActionInvoked", g_variant_new("(us)", number, action.c_str()));
    close(number);
}

void StubNotificationServer::close(std::uint32_t number) {
    constexpr std::uint32_t byThePerson = 2;
    object.emit("NotificationClosed", g_variant_new("(uu)", number, byThePerson));
}

void StubNotificationServer::refuse() {
    std::scoped_lock const lock(mutex);
    isRefusing = true;
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

void StubNotificationServer::answer(std::string_view method, GVariant* arguments,
                                    GDBusMethodInvocation* invocation) {
    if (method == "Notify") {
        show(arguments, invocation);
    } else if (method == "GetCapabilities") {
        GVariantBuilder texts;
        g_variant_builder_init(&texts, G_VARIANT_TYPE("as"));
        for (auto const& capability : capabilities)
            g_variant_builder_add(&texts, "s", capability.c_str());
        g_dbus_method_invocation_return_value(invocation, g_variant_new("(as)", &texts));
    } else {
        g_dbus_method_invocation_return_value(invocation, nullptr);
    }
}
