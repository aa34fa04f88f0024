#include "Platform/WidgetHost/SessionBusWidgetCenter.h"

#include "Platform/WidgetHost/BoundedBusConnection.h"
#include "Platform/WidgetHost/WidgetBus.h"

#include <gio/gio.h>

#include <filesystem>
#include <memory>

namespace Platform {

std::optional<std::string> sessionBusAddress(Foundation::Environment const& environment) {
    auto const address = environment.value("DBUS_SESSION_BUS_ADDRESS");
    if (address && !address->empty()) {
        return address;
    }
    auto const runtimeFolder = environment.value("XDG_RUNTIME_DIR");
    if (!runtimeFolder || !runtimeFolder->starts_with('/')) {
        return std::nullopt;
    }
    auto const socket = *runtimeFolder + "/bus";
    std::error_code error;
    if (!std::filesystem::is_socket(socket, error)) {
        return std::nullopt;
    }
    std::unique_ptr<gchar, decltype(&g_free)> const escaped(g_dbus_address_escape_value(socket.c_str()),
                                                            g_free);
    return std::string("unix:path=") + escaped.get();
}

void SessionBusWidgetCenter::reloadAllTimelines() {
    if (!address) {
        return;
    }
    BoundedBusConnection const bus(*address, patience);
    if (!bus.isOpen()) {
        return;
    }
    bus.emitSignal(WidgetBus::reloadObjectPath, WidgetBus::reloadInterface, WidgetBus::reloadSignal);
}

} // namespace Platform
