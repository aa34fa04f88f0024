#pragma once

#include "Platform/UserNotifications/UserNotificationCenter.h"

#include <memory>
#include <optional>

namespace Platform {

/// How a program is named beside its notifications.
struct NotifyingApplication {
    std::string name;
    std::string desktopEntry; ///< Of its .desktop file, which also names its icon.
};

/// The desktop's notification server on the session bus (Desktop Notifications 1.2), spoken to on GLib's
/// default main context. The bus is first contacted when there is something to show, and again after it went.
class SessionBusUserNotificationCenter final : public UserNotificationCenter {
public:
    /// The server's name on the bus.
    static constexpr char const* serverName = "org.freedesktop.Notifications";

    /// Without a bus address nothing can be shown.
    SessionBusUserNotificationCenter(std::optional<std::string> busAddress, NotifyingApplication application);
    SessionBusUserNotificationCenter(SessionBusUserNotificationCenter const&) = delete;
    SessionBusUserNotificationCenter& operator=(SessionBusUserNotificationCenter const&) = delete;
    ~SessionBusUserNotificationCenter() override;

    void onResponse(
        std::function<void(std::string const& notification, std::string const& action)> handler) override;
    void add(UserNotification notification,
             std::function<void(std::expected<void, std::string>)> done) override;

private:
    class Server;
    std::shared_ptr<Server> server;
};

} // namespace Platform
