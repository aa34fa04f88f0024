#include "Platform/Desktop/Placing.h"

#include <gdk/gdkwayland.h>
#include <gtk-layer-shell.h>

#include <memory>
#include <numbers>
#include <utility>
#include <vector>

namespace Platform {

namespace {

/// From the screen's edge to a window that the compositor keeps in a corner, in points.
constexpr int edgeMargin = 24;

/// From this version of the protocol on a surface may take the keyboard only when it is clicked.
constexpr guint onDemandKeyboardVersion = 4;

bool isWayland(GtkWindow* window) {
    return GDK_IS_WAYLAND_DISPLAY(gtk_widget_get_display(GTK_WIDGET(window)));
}

void keepInLayer(GtkWindow* window) {
    gtk_layer_init_for_window(window);
    gtk_layer_set_namespace(window, "quillora");
    gtk_layer_set_layer(window, GTK_LAYER_SHELL_LAYER_BOTTOM);
    for (auto const edge : {GTK_LAYER_SHELL_EDGE_TOP, GTK_LAYER_SHELL_EDGE_RIGHT}) {
        gtk_layer_set_anchor(window, edge, TRUE);
        gtk_layer_set_margin(window, edge, edgeMargin);
    }
    gtk_layer_set_keyboard_mode(window, gtk_layer_get_protocol_version() >= onDemandKeyboardVersion
                                            ? GTK_LAYER_SHELL_KEYBOARD_MODE_ON_DEMAND
                                            : GTK_LAYER_SHELL_KEYBOARD_MODE_EXCLUSIVE);
}

void keepBelow(GtkWindow* window) {
    // Not the type of a desktop: that one lies under the icons of some desktops and gets no keys on others.
    gtk_window_set_type_hint(window, GDK_WINDOW_TYPE_HINT_UTILITY);
    gtk_window_set_keep_below(window, TRUE);
    gtk_window_stick(window);
    gtk_window_set_skip_taskbar_hint(window, TRUE);
    gtk_window_set_skip_pager_hint(window, TRUE);
}

std::vector<ScreenArea> screenAreas(GtkWindow* window, void (*area)(GdkMonitor*, GdkRectangle*)) {
    GdkDisplay* const display = gtk_widget_get_display(GTK_WIDGET(window));
    std::vector<ScreenArea> areas;
    for (int index = 0; index < gdk_display_get_n_monitors(display); ++index) {
        GdkRectangle found{};
        area(gdk_display_get_monitor(display, index), &found);
        areas.push_back({.x = found.x, .y = found.y, .width = found.width, .height = found.height});
    }
    return areas;
}

} // namespace

void placeWindow(GtkWindow* window, WindowPlacement placement) {
    gtk_window_set_decorated(window, FALSE);
    gtk_widget_set_app_paintable(GTK_WIDGET(window), TRUE);
    if (GdkVisual* const visual = gdk_screen_get_rgba_visual(gtk_widget_get_screen(GTK_WIDGET(window)))) {
        gtk_widget_set_visual(GTK_WIDGET(window), visual);
    }
    if (placement == WindowPlacement::window) {
        return;
    }
    if (!isWayland(window)) {
        keepBelow(window);
    } else if (gtk_layer_is_supported() != FALSE) {
        keepInLayer(window);
    }
}

bool canMove(GtkWindow* window) {
    return gtk_layer_is_layer_window(window) == FALSE;
}

bool canPlace(GtkWindow* window) {
    return !isWayland(window);
}

void moveOnScreen(GtkWindow* window, WindowPlace place, int width, int height) {
    auto const screens = screenAreas(window, gdk_monitor_get_geometry);
    if (broughtOnScreen(place, width, height, screens) != place) {
        // What was put beside a panel, or under it, stays there; what has to be moved keeps clear of them.
        place = broughtOnScreen(place, width, height, screenAreas(window, gdk_monitor_get_workarea));
    }
    gtk_window_move(window, place.x, place.y);
}

WindowPlace placeOf(GtkWindow* window) {
    WindowPlace place{.x = 0, .y = 0};
    gtk_window_get_position(window, &place.x, &place.y);
    return place;
}

void cutCorners(GtkWidget* window, int width, int height, double radius) {
    using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;
    using Context = std::unique_ptr<cairo_t, decltype(&cairo_destroy)>;
    using Region = std::unique_ptr<cairo_region_t, decltype(&cairo_region_destroy)>;
    constexpr double quarter = std::numbers::pi / 2;

    Surface const mask(cairo_image_surface_create(CAIRO_FORMAT_A1, width, height), cairo_surface_destroy);
    Context const context(cairo_create(mask.get()), cairo_destroy);
    cairo_arc(context.get(), width - radius, radius, radius, -quarter, 0);
    cairo_arc(context.get(), width - radius, height - radius, radius, 0, quarter);
    cairo_arc(context.get(), radius, height - radius, radius, quarter, 2 * quarter);
    cairo_arc(context.get(), radius, radius, radius, 2 * quarter, 3 * quarter);
    cairo_fill(context.get());
    Region const region(gdk_cairo_region_create_from_surface(mask.get()), cairo_region_destroy);
    gtk_widget_shape_combine_region(window, region.get());
}

} // namespace Platform
