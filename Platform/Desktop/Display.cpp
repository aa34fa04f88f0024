#include "Platform/Desktop/Display.h"

#include <gtk/gtk.h>
#include <wayland-client.h>

#include <cstring>
#include <memory>
#include <string_view>

namespace Platform {

namespace {

void sawGlobal(void* found, wl_registry*, std::uint32_t, char const* interface, std::uint32_t) {
    if (std::string_view(interface) == "zwlr_layer_shell_v1") {
        *static_cast<bool*>(found) = true;
    }
}

void lostGlobal(void*, wl_registry*, std::uint32_t) {}

/// Whether the compositor keeps windows on the desktop. Asked on a connection of its own: the toolkit has to
/// be told which kind of display to open before it opens one.
bool compositorHasLayers() {
    std::unique_ptr<wl_display, decltype(&wl_display_disconnect)> const display(wl_display_connect(nullptr),
                                                                                wl_display_disconnect);
    if (!display) {
        return false;
    }
    bool found = false;
    wl_registry_listener const listener{.global = sawGlobal, .global_remove = lostGlobal};
    wl_registry* const registry = wl_display_get_registry(display.get());
    wl_registry_add_listener(registry, &listener, &found);
    wl_display_roundtrip(display.get());
    wl_registry_destroy(registry);
    return found;
}

} // namespace

bool openDisplay(Foundation::Environment const& environment, WindowPlacement placement) {
    bool const hasBothKinds = environment.value("WAYLAND_DISPLAY") && environment.value("DISPLAY");
    if (placement == WindowPlacement::desktop && hasBothKinds && !environment.value("GDK_BACKEND") &&
        !compositorHasLayers()) {
        // Such a compositor leaves no window on the desktop, but it does so for X11 windows that ask.
        gdk_set_allowed_backends("x11");
    }
    // The toolkit would set the process's locale; numbers are written and read without one here.
    gtk_disable_setlocale();
    return gtk_init_check(nullptr, nullptr) != FALSE;
}

} // namespace Platform
