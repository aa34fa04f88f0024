#include "Platform/UserNotifications/SessionBusUserNotificationCenter.h"

#include "Foundation/Text.h"

#include <gio/gio.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>

namespace Platform {

namespace {

constexpr char const* serverPath = "/org/freedesktop/Notifications";
constexpr int answerPatience = 10'000;         // Milliseconds.
constexpr char const* pressAction = "default"; // Stands for a press on the notification itself.

struct Unreference {
    void operator()(gpointer object) const { g_object_unref(object); }
    void operator()(GVariant* value) const { g_variant_unref(value); }
    void operator()(GError* error) const { g_error_free(error); }
};
using Error = std::unique_ptr<GError, Unreference>;
using Variant = std::unique_ptr<GVariant, Unreference>;

std::string harmlessLine(std::string_view text) {
    return Foundation::Text::neutralized(Foundation::Text::sanitizedUTF8(text));
}

std::string harmlessLines(std::string_view text) {
    std::string lines;
    while (!text.empty()) {
        auto const end = text.find('\n');
        lines += harmlessLine(text.substr(0, end));
        if (end == std::string_view::npos) break;
        lines += '\n';
        text.remove_prefix(end + 1);
    }
    return lines;
}

std::string escaped(std::string const& text) {
    std::unique_ptr<gchar, decltype(&g_free)> const markup(
        g_markup_escape_text(text.c_str(), static_cast<gssize>(text.size())), g_free);
    return markup.get();
}

// What the server can do, as it says itself.
struct Capabilities {
    bool hasActions = false;
    bool readsMarkup = false;

    explicit Capabilities(GVariant* answer) {
        GVariantIter* names = nullptr;
        g_variant_get(answer, "(as)", &names);
        for (char const* name = nullptr; g_variant_iter_next(names, "&s", &name) != FALSE;) {
            hasActions |= std::string_view(name) == "actions";
            readsMarkup |= std::string_view(name) == "body-markup";
        }
        g_variant_iter_free(names);
    }
};

} // namespace

// The connection and what is shown through it. Calls that are under way hold no claim on it: what arrives
// after its end finds it gone.
class SessionBusUserNotificationCenter::Server final : public std::enable_shared_from_this<Server> {
public:
    using Done = std::function<void(std::expected<void, std::string>)>;

    Server(std::optional<std::string> busAddress, NotifyingApplication application)
        : busAddress(std::move(busAddress)),
          application(std::move(application)) {}
    Server(Server const&) = delete;
    Server& operator=(Server const&) = delete;
    ~Server() {
        g_cancellable_cancel(cancellable.get());
        disconnect();
    }

    void add(UserNotification notification, Done done) {
        auto showing = std::make_unique<Showing>(weak_from_this(), std::move(notification), std::move(done));
        if (!busAddress) {
            later(std::move(showing), "there is no session bus");
            return;
        }
        if (bus && g_dbus_connection_is_closed(bus.get()) != FALSE) disconnect();
        if (bus) {
            askCapabilities(std::move(showing));
            return;
        }
        waiting.push_back(std::move(showing));
        if (waiting.size() == 1) connect();
    }

    std::function<void(std::string const&, std::string const&)> onResponse;

private:
    // One notification on its way.
    struct Showing {
        Showing(std::weak_ptr<Server> server, UserNotification notification, Done done)
            : server(std::move(server)),
              notification(std::move(notification)),
              done(std::move(done)) {}

        void end(std::expected<void, std::string> const& outcome) const {
            if (done && !server.expired()) done(outcome);
        }

        std::weak_ptr<Server> server;
        UserNotification notification;
        Done done;
        std::string failure;
    };
    using ShowingPointer = std::unique_ptr<Showing>;

    static void later(ShowingPointer showing, std::string reason) {
        showing->failure = std::move(reason);
        g_idle_add(
            [](gpointer data) noexcept -> gboolean {
                ShowingPointer const failed(static_cast<Showing*>(data));
                failed->end(std::unexpected(failed->failure));
                return G_SOURCE_REMOVE;
            },
            showing.release());
    }

    void connect() {
        g_dbus_connection_new_for_address(
            busAddress->c_str(),
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, cancellable.get(), connected, new std::weak_ptr(weak_from_this()));
    }

    static void connected(GObject*, GAsyncResult* result, gpointer data) noexcept {
        std::unique_ptr<std::weak_ptr<Server>> const weak(static_cast<std::weak_ptr<Server>*>(data));
        GError* raw = nullptr;
        Connection connection(g_dbus_connection_new_for_address_finish(result, &raw));
        Error const error(raw);
        auto const server = weak->lock();
        if (!server) return;
        auto pending = std::exchange(server->waiting, {});
        if (!connection) {
            for (auto const& showing : pending)
                showing->end(std::unexpected(std::string(error->message)));
            return;
        }
        server->bus = std::move(connection);
        server->subscribe();
        for (auto& showing : pending)
            server->askCapabilities(std::move(showing));
    }

    void subscribe() {
        for (auto const& [signal, handler] :
             {std::pair("ActionInvoked", &actionInvoked), std::pair("NotificationClosed", &closed)}) {
            subscriptions.push_back(g_dbus_connection_signal_subscribe(
                bus.get(), serverName, serverName, signal, serverPath, nullptr, G_DBUS_SIGNAL_FLAGS_NONE,
                handler, new std::weak_ptr(weak_from_this()), releaseWeak));
        }
        // A new server gives the numbers of a former one to other programs' notifications.
        subscriptions.push_back(g_dbus_connection_signal_subscribe(
            bus.get(), "org.freedesktop.DBus", "org.freedesktop.DBus", "NameOwnerChanged",
            "/org/freedesktop/DBus", serverName, G_DBUS_SIGNAL_FLAGS_NONE, serverChanged,
            new std::weak_ptr(weak_from_this()), releaseWeak));
    }

    static void releaseWeak(gpointer weak) noexcept { delete static_cast<std::weak_ptr<Server>*>(weak); }

    static void serverChanged(GDBusConnection*, gchar const*, gchar const*, gchar const*, gchar const*,
                              GVariant*, gpointer data) noexcept {
        if (auto const server = static_cast<std::weak_ptr<Server>*>(data)->lock()) server->shown.clear();
    }

    void disconnect() {
        if (!bus) return;
        for (auto const subscription : subscriptions)
            g_dbus_connection_signal_unsubscribe(bus.get(), subscription);
        subscriptions.clear();
        shown.clear();
        bus.reset();
    }

    // Asked each time: the server may be another one by now.
    void askCapabilities(ShowingPointer showing) {
        g_dbus_connection_call(bus.get(), serverName, serverPath, serverName, "GetCapabilities", nullptr,
                               G_VARIANT_TYPE("(as)"), G_DBUS_CALL_FLAGS_NONE, answerPatience,
                               cancellable.get(), capabilitiesKnown, showing.release());
    }

    static void capabilitiesKnown(GObject* source, GAsyncResult* result, gpointer data) noexcept {
        ShowingPointer showing(static_cast<Showing*>(data));
        GError* raw = nullptr;
        Variant const answer(g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &raw));
        Error const error(raw);
        auto const server = showing->server.lock();
        if (!server) return;
        if (!answer || !server->bus) {
            showing->end(std::unexpected(error ? std::string(error->message) : "the session bus has gone"));
            return;
        }
        server->notify(std::move(showing), Capabilities(answer.get()));
    }

    void notify(ShowingPointer showing, Capabilities const& capabilities) {
        auto const& notification = showing->notification;
        auto const former = shown.find(notification.identifier);
        auto const body = harmlessLines(notification.body);
        GVariantBuilder actions;
        g_variant_builder_init(&actions, G_VARIANT_TYPE("as"));
        if (capabilities.hasActions && !notification.actions.empty()) {
            addAction(actions, {.identifier = pressAction, .title = notification.actions.front().title});
            for (auto const& action : notification.actions)
                addAction(actions, action);
        }
        GVariantBuilder hints;
        g_variant_builder_init(&hints, G_VARIANT_TYPE("a{sv}"));
        constexpr std::uint8_t critical = 2; // It stays, also on a busy screen.
        g_variant_builder_add(&hints, "{sv}", "urgency", g_variant_new_byte(critical));
        g_variant_builder_add(&hints, "{sv}", "desktop-entry",
                              g_variant_new_string(application.desktopEntry.c_str()));
        // Whoever shows a notification here makes the sound that belongs to it, too.
        g_variant_builder_add(&hints, "{sv}", "suppress-sound", g_variant_new_boolean(TRUE));
        constexpr std::int32_t forGood = 0;
        auto* const arguments = g_variant_new(
            "(susssasa{sv}i)", application.name.c_str(), former == shown.end() ? 0U : former->second.number,
            application.desktopEntry.c_str(), harmlessLine(notification.title).c_str(),
            (capabilities.readsMarkup ? escaped(body) : body).c_str(), &actions, &hints, forGood);
        g_dbus_connection_call(bus.get(), serverName, serverPath, serverName, "Notify", arguments,
                               G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, answerPatience,
                               cancellable.get(), notified, showing.release());
    }

    static void addAction(GVariantBuilder& actions, UserNotificationAction const& action) {
        g_variant_builder_add(&actions, "s", action.identifier.c_str());
        g_variant_builder_add(&actions, "s", harmlessLine(action.title).c_str());
    }

    static void notified(GObject* source, GAsyncResult* result, gpointer data) noexcept {
        ShowingPointer const showing(static_cast<Showing*>(data));
        GError* raw = nullptr;
        Variant const answer(g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &raw));
        Error const error(raw);
        auto const server = showing->server.lock();
        if (!server) return;
        if (!answer) {
            showing->end(std::unexpected(std::string(error->message)));
            return;
        }
        std::uint32_t number = 0;
        g_variant_get(answer.get(), "(u)", &number);
        auto const& [identifier, title, body, actions] = showing->notification;
        server->shown[identifier] = {.number = number,
                                     .pressAction = actions.empty() ? "" : actions.front().identifier};
        showing->end({});
    }

    static void actionInvoked(GDBusConnection* bus, gchar const* sender, gchar const*, gchar const*,
                              gchar const*, GVariant* arguments, gpointer data) noexcept {
        auto const server = static_cast<std::weak_ptr<Server>*>(data)->lock();
        if (!server || g_variant_is_of_type(arguments, G_VARIANT_TYPE("(us)")) == FALSE) return;
        std::uint32_t number = 0;
        char const* action = nullptr;
        g_variant_get(arguments, "(u&s)", &number, &action);
        auto const answered = server->take(number);
        if (answered.empty()) return;
        // Most servers take away what was answered by themselves; not all do, nor in all their ways to
        // answer.
        g_dbus_connection_call(bus, sender, serverPath, serverName, "CloseNotification",
                               g_variant_new("(u)", number), nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START,
                               answerPatience, nullptr, nullptr, nullptr);
        auto const handler = server->onResponse;
        if (!handler) return;
        bool const isPress = std::string_view(action) == pressAction;
        handler(answered.key(), isPress ? answered.mapped().pressAction : action);
    }

    static void closed(GDBusConnection*, gchar const*, gchar const*, gchar const*, gchar const*,
                       GVariant* arguments, gpointer data) noexcept {
        auto const server = static_cast<std::weak_ptr<Server>*>(data)->lock();
        if (!server || g_variant_is_of_type(arguments, G_VARIANT_TYPE("(uu)")) == FALSE) return;
        std::uint32_t number = 0;
        std::uint32_t reason = 0;
        g_variant_get(arguments, "(uu)", &number, &reason);
        server->take(number);
    }

    struct Shown {
        std::uint32_t number;    ///< The server's.
        std::string pressAction; ///< What a press on the notification itself chooses.
    };

    // The notification of that number, which is then no longer known; nothing for those of other programs.
    std::map<std::string, Shown>::node_type take(std::uint32_t number) {
        auto const found =
            std::ranges::find_if(shown, [&](auto const& one) { return one.second.number == number; });
        if (found == shown.end()) return {};
        return shown.extract(found);
    }

    using Connection = std::unique_ptr<GDBusConnection, Unreference>;

    std::optional<std::string> busAddress;
    NotifyingApplication application;
    std::unique_ptr<GCancellable, Unreference> cancellable{g_cancellable_new()};
    Connection bus;
    std::vector<guint> subscriptions;
    std::vector<ShowingPointer> waiting; // For the connection.
    std::map<std::string, Shown> shown;  // By the notification's identifier.
};

SessionBusUserNotificationCenter::SessionBusUserNotificationCenter(std::optional<std::string> busAddress,
                                                                   NotifyingApplication application)
    : server(std::make_shared<Server>(std::move(busAddress), std::move(application))) {}

SessionBusUserNotificationCenter::~SessionBusUserNotificationCenter() = default;

void SessionBusUserNotificationCenter::onResponse(
    std::function<void(std::string const& notification, std::string const& action)> handler) {
    server->onResponse = std::move(handler);
}

void SessionBusUserNotificationCenter::add(UserNotification notification,
                                           std::function<void(std::expected<void, std::string>)> done) {
    server->add(std::move(notification), std::move(done));
}

} // namespace Platform
