#pragma once

#include <expected>
#include <functional>
#include <string>
#include <vector>

namespace Platform {

/// Something that the person can choose on a notification.
struct UserNotificationAction {
    std::string identifier;
    std::string title;

    bool operator==(UserNotificationAction const&) const = default;
};

/// One message to the person, plain text throughout.
struct UserNotification {
    std::string identifier; ///< A later one of the same identifier takes the place of an earlier one.
    std::string title;
    std::string body; ///< Several lines, if there is more to say; may be empty.
    /// The first one is also chosen by a press on the notification itself.
    std::vector<UserNotificationAction> actions;

    bool operator==(UserNotification const&) const = default;
};

/// The place where a desktop shows messages of programs; a message stays until the person does away with it.
/// For one thread, the main loop's: whoever is told, is told there, and never from within a call here.
class UserNotificationCenter {
public:
    virtual ~UserNotificationCenter() = default;

    /// Who is told which action of which notification the person chose. What is chosen is gone by then.
    virtual void
    onResponse(std::function<void(std::string const& notification, std::string const& action)> handler) = 0;

    /// Shows a notification. `done` is told when it is there, or why it cannot be; it may be empty. After the
    /// centre's end nothing is told.
    virtual void add(UserNotification notification,
                     std::function<void(std::expected<void, std::string>)> done) = 0;
};

} // namespace Platform
