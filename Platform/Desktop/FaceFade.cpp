#include "Platform/Desktop/FaceFade.h"

#include <utility>

namespace Platform {

namespace {

bool wantsAnimations(GtkWidget* widget) {
    gboolean isWanted = FALSE;
    g_object_get(gtk_widget_get_settings(widget), "gtk-enable-animations", &isWanted, nullptr);
    return isWanted != FALSE;
}

} // namespace

FaceFade::FaceFade(GtkWidget* canvas) : canvas(canvas) {}

FaceFade::~FaceFade() {
    end();
}

void FaceFade::begin(std::function<void(cairo_t*)> const& paint) {
    if (gtk_widget_get_mapped(canvas) == FALSE || !wantsAnimations(canvas)) {
        return;
    }
    GtkAllocation place;
    gtk_widget_get_allocation(canvas, &place);
    Surface picture(gdk_window_create_similar_surface(gtk_widget_get_window(canvas),
                                                      CAIRO_CONTENT_COLOR_ALPHA, place.width, place.height),
                    cairo_surface_destroy);
    std::unique_ptr<cairo_t, decltype(&cairo_destroy)> const context(cairo_create(picture.get()),
                                                                     cairo_destroy);
    paint(context.get()); // With what is left of the picture before, where one is still fading.
    end();
    kept = std::move(picture);
    start = 0;
    opacity = 1;
    ticks = gtk_widget_add_tick_callback(canvas, frameBegins, this, nullptr);
}

void FaceFade::paint(cairo_t* context) const {
    if (ticks != 0) {
        cairo_set_source_surface(context, kept.get(), 0, 0);
        cairo_paint_with_alpha(context, opacity);
    }
}

gboolean FaceFade::frameBegins(GtkWidget* canvas, GdkFrameClock* clock, gpointer fade) noexcept {
    gtk_widget_queue_draw(canvas);
    return static_cast<FaceFade*>(fade)->advance(gdk_frame_clock_get_frame_time(clock)) ? G_SOURCE_CONTINUE
                                                                                        : G_SOURCE_REMOVE;
}

/// Whether it goes on after the frame of this time.
bool FaceFade::advance(std::int64_t time) {
    if (start == 0) {
        start = time;
    }
    opacity = 1 - static_cast<double>(time - start) / duration;
    if (opacity > 0) {
        return true;
    }
    kept.reset();
    ticks = 0;
    return false;
}

void FaceFade::end() {
    if (ticks != 0) {
        gtk_widget_remove_tick_callback(canvas, std::exchange(ticks, 0));
    }
    kept.reset();
}

} // namespace Platform
