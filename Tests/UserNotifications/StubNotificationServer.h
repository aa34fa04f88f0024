#pragma once

#include "Tests/Platform/ObjectOnBus.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

/// A desktop's notification server (Desktop Notifications 1.2) on a bus of the test's own, and the person in
/// front of it.
class StubNotificationServer {
public:
    struct Notification {
        std::uint32_t number;   ///< Given by the server.
        std::uint32_t replaces; ///< 0 for none.
        std::string application;
        std::string icon;
        std::string title;
        std::string body;
        std::vector<std::string> actions;         ///< Identifiers and titles in turn.
        std::map<std::string, std::string> hints; ///< Values as GVariant prints them.
        std::int32_t timeout;
        double shownAt; ///< By the system's clock: seconds since 1970.
    };

    /// Owns the server's name once constructed. `capabilities` as the standard names them.
    StubNotificationServer(std::string const& address, std::vector<std::string> capabilities);

    /// Everything that was ever shown, in order.
    [[nodiscard]] std::vector<Notification> shown();

    /// Waits until so many were shown in all; yields whether they were within a minute.
    bool awaitShown(std::size_t count);

    /// A person chooses an action: the program is told, and the notification is gone.
    void choose(std::uint32_t number, std::string const& action);
    /// A person does away with a notification without choosing.
    void close(std::uint32_t number);

    /// From now on every notification is refused with an error.
    void refuse();

private:
    void answer(std::string_view method, GVariant* arguments, GDBusMethodInvocation* invocation);
    void show(GVariant* arguments, GDBusMethodInvocation* invocation);

    std::vector<std::string> capabilities;
    std::mutex mutex;
    std::condition_variable changed;
    bool isRefusing = false;
    std::vector<Notification> notifications;
    ObjectOnBus object;
};
