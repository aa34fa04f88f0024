#include "Platform/Desktop/SingleInstance.h"

#include "Platform/Desktop/GObjectReference.h"
#include "Platform/Desktop/Signal.h"
#include "Platform/SessionBus/BusConnection.h"
#include "Platform/SessionBus/SessionBusAddress.h"
#include "Platform/WidgetHost/WidgetBus.h"

#include <gio/gio.h>

#include <chrono>
#include <string>
#include <utility>

namespace Platform {

namespace {

void addAction(GApplication* application, char const* name, std::function<void()> const& action) {
    GObjectReference<GSimpleAction> const added(g_simple_action_new(name, nullptr));
    connectSignal<void(GVariant*)>(added.get(), "activate", [action](GVariant*) { action(); });
    g_action_map_add_action(G_ACTION_MAP(application), G_ACTION(added.get()));
}

} // namespace

SingleInstance::SingleInstance(Foundation::Environment const& environment) {
    // The library would wait without a bound for a bus that takes connections and says nothing.
    constexpr std::chrono::milliseconds patience{1000};
    auto const address = sessionBusAddress(environment);
    if (!address || !BusConnection::open(*address, std::chrono::steady_clock::now() + patience)) {
        return;
    }
    application = g_application_new(WidgetBus::applicationIdentifier, G_APPLICATION_DEFAULT_FLAGS);
    // On an error, too, this instance goes on alone.
    g_application_register(application, nullptr, nullptr);
    if (auto* const bus = g_application_get_dbus_connection(application)) {
        // A window outlives the bus that it was announced on.
        g_dbus_connection_set_exit_on_close(bus, FALSE);
    }
}

SingleInstance::~SingleInstance() {
    if (application == nullptr) {
        return;
    }
    if (auto* const bus = g_application_get_dbus_connection(application)) {
        // Who asked this instance to quit waits for the answer, which another thread is about to send.
        g_dbus_connection_flush_sync(bus, nullptr, nullptr);
    }
    g_object_unref(application);
}

bool SingleInstance::isFirst() const {
    return application == nullptr || g_application_get_is_registered(application) == FALSE ||
           g_application_get_is_remote(application) == FALSE;
}

void SingleInstance::handOver(std::optional<WidgetFamily> family) const {
    if (family) {
        std::string const name(Foundation::rawValue(*family));
        g_action_group_activate_action(G_ACTION_GROUP(application), "size",
                                       g_variant_new_string(name.c_str()));
    }
    g_application_activate(application);
    g_dbus_connection_flush_sync(g_application_get_dbus_connection(application), nullptr, nullptr);
}

void SingleInstance::serve(InstanceCommands newCommands) {
    commands = std::move(newCommands);
    if (application == nullptr) {
        return;
    }
    connectSignal<void()>(application, "activate", [this] { commands.activate(); });
    addAction(application, "previous", [this] { commands.previousDay(); });
    addAction(application, "next", [this] { commands.nextDay(); });
    addAction(application, "today", [this] { commands.today(); });
    addAction(application, "reload", [this] { commands.reload(); });
    addAction(application, "quit", [this] { commands.quit(); });

    GObjectReference<GSimpleAction> const size(g_simple_action_new("size", G_VARIANT_TYPE_STRING));
    connectSignal<void(GVariant*)>(size.get(), "activate", [this](GVariant* name) {
        auto const family = Foundation::fromRawValue<WidgetFamily>(g_variant_get_string(name, nullptr));
        // Not every family that there is can be shown here.
        if (family && *family != WidgetFamily::systemExtraLarge) {
            commands.chooseFamily(*family);
        }
    });
    g_action_map_add_action(G_ACTION_MAP(application), G_ACTION(size.get()));
}

} // namespace Platform
