#include "Platform/Workspace/GIOWorkspace.h"

#include "Tests/Audio/StandInProgram.h"
#include "Tests/Platform/PrivateBus.h"
#include "Tests/WidgetHost/LoopDriver.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>

namespace {

using Platform::GIOWorkspace;

// The outcome of one request, once it is told.
class Outcome {
public:
    GIOWorkspace::Done done() {
        return [this](std::string const& text) { told = text; };
    }
    std::string wait() {
        EXPECT_TRUE(LoopDriver::runUntil([this] { return told.has_value(); }));
        return told.value_or("never told");
    }

private:
    std::optional<std::string> told;
};

Foundation::URL link(char const* text) {
    return {.absoluteString = text};
}

TEST(GIOWorkspaceTests, linksAndKindsOfContentHaveTheProgramsThatThePersonChose) {
    TemporaryFolder home;
    placeStandIn(home, "browser");
    home.place("data/applications/browser.desktop",
               "[Desktop Entry]\nType=Application\nName=Browser\nExec=" + (home.path() / "browser").string() +
                   " %u\nMimeType=x-scheme-handler/https;\n");
    placeStandIn(home, "planner");
    home.place("data/applications/planner.desktop", "[Desktop Entry]\nType=Application\nName=Planner\nExec=" +
                                                        (home.path() / "planner").string() + " %U\n");
    placeStandIn(home, "editor");
    home.place("data/applications/editor.desktop",
               "[Desktop Entry]\nType=Application\nName=Editor\nExec=" + (home.path() / "editor").string() +
                   " %U\nMimeType=text/plain;\n");
    home.place("config/mimeapps.list", "[Default Applications]\nx-scheme-handler/https=browser.desktop\n"
                                       "text/calendar=planner.desktop\ntext/plain=editor.desktop\n");
    // The library finds programs by the process's own environment, and looks once.
    ::setenv("XDG_DATA_HOME", (home.path() / "data").c_str(), 1);
    ::setenv("XDG_DATA_DIRS", (home.path() / "none").c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", (home.path() / "config").c_str(), 1);
    GIOWorkspace workspace(std::nullopt);
    Outcome opened;
    workspace.open(link("https://example.com/a?b=c&d"), opened.done());
    EXPECT_EQ(opened.wait(), "");
    // The program runs beside the loop: nothing there tells of its words.
    auto const end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (wordsGivenTo(home, "browser").empty() && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
    EXPECT_EQ(wordsGivenTo(home, "browser"), "<https://example.com/a?b=c&d>\n");

    Outcome refused;
    workspace.open(link("unheard-of:x"), refused.done());
    EXPECT_NE(refused.wait(), "");

    // The program for a kind of content, in the same home.
    EXPECT_TRUE(workspace.hasProgram("text/calendar"));
    Outcome started;
    workspace.startProgram("text/calendar", started.done());
    EXPECT_EQ(started.wait(), "");
    auto const isRun = [&] { return std::filesystem::exists(home.path() / "planner.words"); };
    while (!isRun() && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
    EXPECT_TRUE(isRun());
    EXPECT_EQ(wordsGivenTo(home, "planner"), "") << "it is given nothing to open";

    EXPECT_TRUE(workspace.hasProgram("text/plain"));
    EXPECT_FALSE(workspace.hasProgram("text/unheard-of"))
        << "every text is plain text, but that is not meant";
    Outcome missing;
    workspace.startProgram("text/unheard-of", missing.done());
    EXPECT_EQ(missing.wait(), "there is no program for text/unheard-of");
}

// An application on the bus, whose activations are counted.
class StubApplication {
public:
    explicit StubApplication(PrivateBus const& bus) {
        connection = g_dbus_connection_new_for_address_sync(
            bus.address().c_str(),
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, nullptr);
        auto* const node = g_dbus_node_info_new_for_xml(
            "<node><interface name='org.freedesktop.Application'>"
            "<method name='Activate'><arg type='a{sv}' direction='in'/></method></interface></node>",
            nullptr);
        static constexpr GDBusInterfaceVTable table{
            .method_call =
                [](GDBusConnection*, gchar const*, gchar const*, gchar const*, gchar const*, GVariant*,
                   GDBusMethodInvocation* invocation, gpointer self) {
                    ++static_cast<StubApplication*>(self)->activations;
                    g_dbus_method_invocation_return_value(invocation, nullptr);
                },
            .get_property = nullptr,
            .set_property = nullptr,
            .padding = {}};
        g_dbus_connection_register_object(connection, "/com/example/My_App", node->interfaces[0], &table,
                                          this, nullptr, nullptr);
        g_dbus_node_info_unref(node);
        auto* const owned = g_dbus_connection_call_sync(
            connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
            "RequestName", g_variant_new("(su)", "com.example.My-App", 0U), nullptr, G_DBUS_CALL_FLAGS_NONE,
            -1, nullptr, nullptr);
        g_variant_unref(owned);
    }
    ~StubApplication() {
        g_dbus_connection_close_sync(connection, nullptr, nullptr);
        g_object_unref(connection);
    }
    StubApplication(StubApplication const&) = delete;
    StubApplication& operator=(StubApplication const&) = delete;

    int activations = 0;

private:
    GDBusConnection* connection;
};

TEST(GIOWorkspaceTests, anApplicationIsActivatedUnderThePathOfItsName) {
    PrivateBus const bus;
    StubApplication application(bus);
    GIOWorkspace workspace(bus.address());
    Outcome activated;
    workspace.activateApplication("com.example.My-App", activated.done());
    EXPECT_EQ(activated.wait(), "");
    EXPECT_EQ(application.activations, 1);
}

TEST(GIOWorkspaceTests, anApplicationThatIsNotThereIsTold) {
    PrivateBus const bus;
    Outcome unknown;
    GIOWorkspace(bus.address()).activateApplication("com.example.Missing", unknown.done());
    EXPECT_NE(unknown.wait(), "");
    Outcome busless;
    GIOWorkspace(std::nullopt).activateApplication("com.example.Missing", busless.done());
    EXPECT_EQ(busless.wait(), "there is no session bus");
    Outcome gone;
    GIOWorkspace("unix:path=/nonexistent").activateApplication("com.example.Missing", gone.done());
    EXPECT_NE(gone.wait(), "");
}

} // namespace
