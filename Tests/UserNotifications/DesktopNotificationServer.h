#pragma once

#include "Tests/Platform/TemporaryFolder.h"
#include "Tests/WidgetHost/ChildProcess.h"
#include "Tests/WidgetHost/DisplayServer.h"

#include <gio/gio.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// A notification server that people's desktops run (dunst, as Debian sets it up), on a bus of the test's own
/// and a display without a screen, and the person in front of it. Every failure to reach it throws.
class DesktopNotificationServer {
public:
    struct Notification {
        std::uint32_t number; ///< Given by the server.
        std::string application;
        std::string title;
        std::string body;
        std::string drawn;    ///< Title and body in the markup that the server draws.
        std::int64_t shownAt; ///< When it reached the server; microseconds since the machine's start.
        std::int64_t millisecondsLeft; ///< Until it goes by itself; 0 for never.
    };

    /// Started, and owner of the server's name.
    explicit DesktopNotificationServer(std::string busAddress);
    DesktopNotificationServer(DesktopNotificationServer const&) = delete;
    DesktopNotificationServer& operator=(DesktopNotificationServer const&) = delete;
    ~DesktopNotificationServer();

    /// Another one, which knows nothing of what a former one showed.
    void start();
    /// It crashes: its name is free when this returns.
    void kill();

    /// How many notifications are on the screen.
    [[nodiscard]] std::size_t countOnScreen();
    /// Waits until so many are on the screen; yields whether they were within a minute.
    bool awaitOnScreen(std::size_t count);

    /// The person calls the server's menu and chooses an action there, which the notification may outlive.
    void choose(std::string const& title, std::string const& action);
    /// The person presses the topmost notification, which chooses its first action.
    void press();
    /// Another program shows something without actions; yields its number.
    std::uint32_t showForAnother(std::string const& title);

    /// Takes everything from the screen. What the server then remembers of all that it ever showed, oldest
    /// first; one that was replaced by another is not among them.
    [[nodiscard]] std::vector<Notification> clearedAndRemembered();
    /// The same, as titles.
    [[nodiscard]] std::vector<std::string> titlesClearedAndRemembered();

    /// Joins the bus anew, asks the server two things and waits for the answers: a program's whole way to it.
    void askAsANewcomer();

private:
    struct Unreference {
        void operator()(gpointer object) const { g_object_unref(object); }
        void operator()(GVariant* value) const { g_variant_unref(value); }
    };
    using Variant = std::unique_ptr<GVariant, Unreference>;
    using Connection = std::unique_ptr<GDBusConnection, Unreference>;

    [[nodiscard]] Connection connection() const;
    Variant call(char const* interfaceName, char const* method, GVariant* arguments);
    Variant property(char const* name);
    bool isServing();

    std::string busAddress;
    TemporaryFolder home;
    DisplayServer display;
    std::unique_ptr<ChildProcess> server;
    Connection bus;
};
