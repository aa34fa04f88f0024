#include "Tests/UserNotifications/DesktopNotificationServer.h"

#include "Tests/Platform/Waiting.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <utility>

namespace {

constexpr char const* serverName = "org.freedesktop.Notifications";
constexpr char const* serverPath = "/org/freedesktop/Notifications";
constexpr char const* standardInterface = "org.freedesktop.Notifications";
constexpr char const* ownInterface = "org.dunstproject.cmd0";

std::string textOf(GVariant* entry, char const* key) {
    char const* text = nullptr;
    return g_variant_lookup(entry, key, "&s", &text) != FALSE ? text : "";
}

DesktopNotificationServer::Notification notificationOf(GVariant* entry) {
    std::int32_t number = 0;
    gint64 shownAt = 0;
    gint64 timeout = 0;
    g_variant_lookup(entry, "id", "i", &number);
    g_variant_lookup(entry, "timestamp", "x", &shownAt);
    g_variant_lookup(entry, "timeout", "x", &timeout);
    return {.number = static_cast<std::uint32_t>(number),
            .application = textOf(entry, "appname"),
            .title = textOf(entry, "summary"),
            .body = textOf(entry, "body"),
            .drawn = textOf(entry, "message"),
            .shownAt = shownAt,
            .millisecondsLeft = timeout / 1000};
}

} // namespace

DesktopNotificationServer::DesktopNotificationServer(std::string address) : busAddress(std::move(address)) {
    // The menu program is the person: it is given all actions and names the one that is wanted.
    auto const menu = home.place("menu", "#!/bin/sh\ncd '" + home.path().string() +
                                             "'\ngrep -F -f title | grep -F -m 1 -f action\n");
    std::filesystem::permissions(menu, std::filesystem::perms::owner_all);
    // As Debian sets it, but for the menu, a record of everything, and a screen that holds everything.
    home.place("dunst/dunstrc.d/test.conf",
               "[global]\ndmenu = " + menu.string() + "\nhistory_length = 0\nheight = 780\n");
    std::filesystem::create_symlink("/etc/xdg/dunst/dunstrc", home.path() / "dunst/dunstrc");
    bus = connection();
    start();
}

DesktopNotificationServer::~DesktopNotificationServer() = default;

void DesktopNotificationServer::start() {
    if (!std::filesystem::exists("/usr/bin/dunst")) throw std::runtime_error("the package dunst is missing");
    server =
        std::make_unique<ChildProcess>(std::vector<std::string>{"/usr/bin/dunst"},
                                       ChildProcess::Environment{{"PATH", "/usr/bin:/bin"},
                                                                 {"HOME", home.path()},
                                                                 {"XDG_CONFIG_HOME", home.path()},
                                                                 {"DISPLAY", display.name()},
                                                                 {"DBUS_SESSION_BUS_ADDRESS", busAddress},
                                                                 {"LANG", "C.UTF-8"}});
    if (!waitUntil([this] { return isServing(); }))
        throw std::runtime_error("dunst does not serve: " + server->errorText());
}

void DesktopNotificationServer::kill() {
    server->signal(SIGKILL);
    server.reset();
    if (!waitUntil([this] { return !isServing(); }))
        throw std::runtime_error("the notification server does not end");
}

bool DesktopNotificationServer::isServing() {
    Variant const answer(
        g_dbus_connection_call_sync(bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                    "org.freedesktop.DBus", "NameHasOwner", g_variant_new("(s)", serverName),
                                    G_VARIANT_TYPE("(b)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
    gboolean isOwned = FALSE;
    if (answer) g_variant_get(answer.get(), "(b)", &isOwned);
    return isOwned != FALSE;
}

std::size_t DesktopNotificationServer::countOnScreen() {
    guint32 const displayed = g_variant_get_uint32(property("displayedLength").get());
    guint32 const waiting = g_variant_get_uint32(property("waitingLength").get());
    if (waiting != 0) return 0; // It is about to lay them out.
    return displayed;
}

bool DesktopNotificationServer::awaitOnScreen(std::size_t count) {
    return waitUntil([&] { return countOnScreen() == count; });
}

void DesktopNotificationServer::choose(std::string const& title, std::string const& action) {
    // A row of the menu: "#Snooze (Stand-up) [12,snooze]".
    home.place("title", " (" + title + ") [\n");
    home.place("action", "," + action + "]\n");
    call(ownInterface, "ContextMenuCall", nullptr);
}

void DesktopNotificationServer::press() {
    call(ownInterface, "NotificationAction", g_variant_new("(u)", 0U));
}

std::uint32_t DesktopNotificationServer::showForAnother(std::string const& title) {
    auto const answer =
        call(standardInterface, "Notify",
             g_variant_new("(susssasa{sv}i)", "Another", 0U, "", title.c_str(), "", nullptr, nullptr, 0));
    std::uint32_t number = 0;
    g_variant_get(answer.get(), "(u)", &number);
    return number;
}

std::vector<DesktopNotificationServer::Notification> DesktopNotificationServer::clearedAndRemembered() {
    call(ownInterface, "NotificationCloseAll", nullptr);
    if (!awaitOnScreen(0)) throw std::runtime_error("the screen is not cleared");
    auto const answer = call(ownInterface, "NotificationListHistory", nullptr);
    std::vector<Notification> remembered;
    GVariantIter* entries = nullptr;
    g_variant_get(answer.get(), "(aa{sv})", &entries);
    for (GVariant* entry = nullptr; (entry = g_variant_iter_next_value(entries)) != nullptr;) {
        remembered.push_back(notificationOf(entry));
        g_variant_unref(entry);
    }
    g_variant_iter_free(entries);
    std::ranges::sort(remembered, {}, &Notification::shownAt);
    return remembered;
}

std::vector<std::string> DesktopNotificationServer::titlesClearedAndRemembered() {
    std::vector<std::string> titles;
    for (auto const& one : clearedAndRemembered())
        titles.push_back(one.title);
    return titles;
}

void DesktopNotificationServer::askAsANewcomer() {
    auto const former = std::exchange(bus, connection());
    call(standardInterface, "GetCapabilities", nullptr);
    call(standardInterface, "GetServerInformation", nullptr);
}

DesktopNotificationServer::Connection DesktopNotificationServer::connection() const {
    Connection made(g_dbus_connection_new_for_address_sync(
        busAddress.c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr));
    if (!made) throw std::runtime_error("no bus at " + busAddress);
    return made;
}

DesktopNotificationServer::Variant DesktopNotificationServer::call(char const* interfaceName,
                                                                   char const* method, GVariant* arguments) {
    constexpr int patience = 60'000; // Milliseconds.
    GError* error = nullptr;
    Variant answer(g_dbus_connection_call_sync(bus.get(), serverName, serverPath, interfaceName, method,
                                               arguments, nullptr, G_DBUS_CALL_FLAGS_NONE, patience, nullptr,
                                               &error));
    if (!answer) {
        std::string const reason = error->message;
        g_error_free(error);
        throw std::runtime_error(std::string(method) + ": " + reason);
    }
    return answer;
}

DesktopNotificationServer::Variant DesktopNotificationServer::property(char const* name) {
    auto const answer =
        call("org.freedesktop.DBus.Properties", "Get", g_variant_new("(ss)", ownInterface, name));
    GVariant* value = nullptr;
    g_variant_get(answer.get(), "(v)", &value);
    return Variant(value);
}
