#pragma once

#include "Platform/UserNotifications/UserNotificationCenter.h"

#include <optional>
#include <utility>

namespace Platform {

/// A desktop whose messages a test reads and answers. It tells at once what a real one tells later.
class RecordingUserNotificationCenter final : public UserNotificationCenter {
public:
    /// From now on nothing can be shown, for this reason.
    void failsWith(std::string reason) { failure = std::move(reason); }

    /// Chooses an action, as a person would; the notification goes.
    void choose(std::string const& notification, std::string const& action) {
        remove(notification);
        if (handler) handler(notification, action);
    }

    void onResponse(
        std::function<void(std::string const& notification, std::string const& action)> newHandler) override {
        handler = std::move(newHandler);
    }

    void add(UserNotification notification,
             std::function<void(std::expected<void, std::string>)> done) override {
        if (failure) {
            if (done) done(std::unexpected(*failure));
            return;
        }
        remove(notification.identifier);
        shown.push_back(notification);
        history.push_back(std::move(notification));
        if (done) done({});
    }

    /// What is on the screen, oldest first.
    std::vector<UserNotification> shown;
    /// What was ever shown, oldest first.
    std::vector<UserNotification> history;

private:
    void remove(std::string const& identifier) {
        std::erase_if(shown, [&](auto const& one) { return one.identifier == identifier; });
    }

    std::function<void(std::string const&, std::string const&)> handler;
    std::optional<std::string> failure;
};

} // namespace Platform
