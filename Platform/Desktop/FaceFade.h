#pragma once

#include <cairo.h>
#include <gtk/gtk.h>

#include <cstdint>
#include <functional>
#include <memory>

namespace Platform {

/// Lets the picture of one day go over into that of the next. It draws frames while it lasts and none
/// afterwards.
class FaceFade final {
public:
    static constexpr std::int64_t duration = 100'000; ///< Microseconds.

    /// `canvas` is what the pictures are drawn on; while it fades it must not be destroyed.
    explicit FaceFade(GtkWidget* canvas);
    FaceFade(FaceFade const&) = delete;
    FaceFade& operator=(FaceFade const&) = delete;
    ~FaceFade();

    /// Keeps the picture that `paint` draws, to fade from it. Does nothing while the canvas is not on the
    /// screen, nor where the desktop wants no animations.
    void begin(std::function<void(cairo_t*)> const& paint);

    /// Forgets the kept picture at once.
    void end();

    /// Draws what is left of the kept picture over the new one.
    void paint(cairo_t* context) const;

private:
    static gboolean frameBegins(GtkWidget* canvas, GdkFrameClock* clock, gpointer fade) noexcept;
    bool advance(std::int64_t time);

    using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;
    GtkWidget* canvas;
    Surface kept{nullptr, cairo_surface_destroy};
    std::int64_t start = 0; // Of the first frame; 0 before it.
    double opacity = 0;
    guint ticks = 0; // 0 while nothing fades.
};

} // namespace Platform
