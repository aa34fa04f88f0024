#include "Platform/Desktop/FaceWindow.h"

#include "Platform/Desktop/DesktopStyle.h"
#include "Platform/Desktop/FaceFade.h"
#include "Platform/Desktop/FaceMenu.h"
#include "Platform/Desktop/FaceRows.h"
#include "Platform/Desktop/GObjectReference.h"
#include "Platform/Desktop/Placing.h"
#include "Platform/Desktop/Signal.h"
#include "Platform/Desktop/UndrawnButton.h"

#include <gdk/gdkkeysyms.h>
#include <gtk/gtk.h>

#include <cmath>
#include <utility>

namespace Platform {

class FaceWindow::Widgets {
public:
    Widgets(WindowPlacement placement, FaceWindowTexts const& texts, FaceWindowActions actions)
        : placement(placement),
          actions(std::move(actions)),
          menu(texts, this->actions),
          painter(desktopStyle()),
          window(gtk_window_new(GTK_WINDOW_TOPLEVEL)),
          container(gtk_fixed_new()),
          previous(makeUndrawnButton()),
          next(makeUndrawnButton()),
          rows(container, [this](std::size_t row) { this->actions.openRow(row); }),
          fade(container),
          drag(GTK_GESTURE(gtk_gesture_drag_new(window))) {
        gtk_window_set_title(GTK_WINDOW(window), texts.title.c_str());
        if (placement == WindowPlacement::window) {
            // Finding an icon reads the icon themes, which costs as much as drawing the face; on the desktop
            // no list of windows shows it.
            gtk_window_set_icon_name(GTK_WINDOW(window), iconName);
        }
        gtk_window_set_resizable(GTK_WINDOW(window), FALSE);
        placeWindow(GTK_WINDOW(window), placement);
        gtk_container_add(GTK_CONTAINER(container), previous);
        gtk_container_add(GTK_CONTAINER(container), next);
        gtk_container_add(GTK_CONTAINER(window), container);
        gtk_widget_set_has_tooltip(container, TRUE);
        connectButtons();
        connectWindow();
        gtk_widget_show_all(container);
    }
    Widgets(Widgets const&) = delete;
    Widgets& operator=(Widgets const&) = delete;

    ~Widgets() {
        fade.end();
        gtk_widget_destroy(window);
    }

    void show(FaceWindowContent newContent) {
        auto newGeometry = painter.place(newContent.layout);
        if (content && isAnotherDay(newContent.layout) && newGeometry.height == geometry.height) {
            fade.begin([this](cairo_t* context) { paint(context); });
        }
        content = std::move(newContent);
        geometry = std::move(newGeometry);
        auto const width = static_cast<int>(std::ceil(geometry.width));
        auto const height = static_cast<int>(std::ceil(geometry.height));
        gtk_widget_set_size_request(container, width, height);
        for (auto const& placed : geometry.buttons) {
            placeButton(placed);
        }
        rows.show(content->layout, geometry);
        updateCorners();
        gtk_widget_queue_draw(container);
    }

    void standAt(WindowPlace place) { firstPlace = place; }

    [[nodiscard]] std::optional<WindowPlace> place() const {
        return isOpen && canPlace(GTK_WINDOW(window)) ? std::optional(placeOf(GTK_WINDOW(window)))
                                                      : std::nullopt;
    }

    void present() {
        if (gtk_widget_get_visible(window) == FALSE) {
            if (firstPlace && canPlace(GTK_WINDOW(window))) {
                moveOnScreen(GTK_WINDOW(window), *firstPlace, static_cast<int>(std::ceil(geometry.width)),
                             static_cast<int>(std::ceil(geometry.height)));
            }
            gtk_widget_show(window);
        } else if (placement == WindowPlacement::window) {
            gtk_window_present(GTK_WINDOW(window));
        }
    }

    void setAccent(std::optional<SRGBColor> accent) {
        painter.setAccent(accent);
        gtk_widget_queue_draw(container);
    }

    void setNotice(std::string text) {
        if (notice == text) {
            return;
        }
        notice = std::move(text);
        menu.setNotice(notice);
        atk_object_set_description(gtk_widget_get_accessible(container), notice.c_str());
        gtk_widget_trigger_tooltip_query(container);
        gtk_widget_queue_draw(container);
    }

    void afterNextFrame(std::function<void()> painted) {
        paintedHandler = std::move(painted);
        gtk_widget_queue_draw(container);
    }

private:
    static constexpr char const* iconName = "com.zentorik.quillora.Widget";

    void connectButtons() {
        connectSignal<void()>(previous, "clicked", [this] { actions.previousDay(); });
        connectSignal<void()>(next, "clicked", [this] { actions.nextDay(); });
        for (GtkWidget* const button : {previous, next}) {
            connectSignal<void(GtkStateFlags)>(button, "state-flags-changed",
                                               [button](GtkStateFlags) { gtk_widget_queue_draw(button); });
        }
    }

    void connectWindow() {
        gtk_widget_add_events(window,
                              GDK_BUTTON_PRESS_MASK | GDK_BUTTON_RELEASE_MASK | GDK_BUTTON1_MOTION_MASK);
        // Before the buttons, which would keep what begins on them for themselves.
        gtk_event_controller_set_propagation_phase(GTK_EVENT_CONTROLLER(drag.get()), GTK_PHASE_CAPTURE);
        connectSignal<void(gdouble, gdouble)>(drag.get(), "drag-update", [this](gdouble x, gdouble y) {
            dragged(static_cast<int>(x), static_cast<int>(y));
        });
        connectSignal<gboolean(GdkEventButton*)>(window, "button-press-event", [this](GdkEventButton* event) {
            return pressed(*event) ? TRUE : FALSE;
        });
        connectSignal<gboolean(GdkEventKey*)>(window, "key-press-event", [this](GdkEventKey* event) {
            return pressedKey(*event) ? TRUE : FALSE;
        });
        connectSignal<gboolean()>(window, "popup-menu", [this] {
            popUpMenu(nullptr);
            return TRUE;
        });
        // Closed by the window manager: the person wants it gone, and the program is nothing without it.
        connectSignal<gboolean(GdkEvent*)>(window, "delete-event", [this](GdkEvent*) {
            actions.quit();
            return TRUE;
        });
        connectSignal<void()>(window, "realize", [this] { realized(); });
        connectSignal<gboolean(GdkEvent*)>(window, "map-event", [this](GdkEvent*) {
            opened();
            return FALSE;
        });
        connectSignal<gboolean(GdkEventConfigure*)>(window, "configure-event",
                                                    [this](GdkEventConfigure* event) {
                                                        configured({.x = event->x, .y = event->y});
                                                        return FALSE;
                                                    });
        connectSignal<void(GParamSpec*)>(window, "notify::focus-visible",
                                         [this](GParamSpec*) { gtk_widget_queue_draw(container); });
        connectSignal<void()>(window, "composited-changed", [this] { updateCorners(); });
        connectSignal<gboolean(cairo_t*)>(container, "draw", [this](cairo_t* context) {
            draw(context);
            return FALSE;
        });
        connectSignal<gboolean(gint, gint, gboolean, GtkTooltip*)>(
            container, "query-tooltip", [this](gint x, gint y, gboolean fromKeyboard, GtkTooltip* tooltip) {
                return fromKeyboard == FALSE && fillTooltip(x, y, tooltip) ? TRUE : FALSE;
            });
    }

    void placeButton(PlacedButton const& placed) {
        GtkWidget* const button = placed.action == FaceButton::Action::previousDay ? previous : next;
        gtk_fixed_move(GTK_FIXED(container), button, static_cast<int>(std::lround(placed.frame.x)),
                       static_cast<int>(std::lround(placed.frame.y)));
        gtk_widget_set_size_request(button, static_cast<int>(std::lround(placed.frame.width)),
                                    static_cast<int>(std::lround(placed.frame.height)));
        gtk_widget_set_tooltip_text(button, placed.accessibleName.c_str());
        atk_object_set_name(gtk_widget_get_accessible(button), placed.accessibleName.c_str());
    }

    void draw(cairo_t* context) {
        if (!content) {
            return;
        }
        paint(context);
        hasPainted = true;
    }

    void paint(cairo_t* context) const {
        painter.paint(context, content->layout, geometry,
                      {.previous = stateOf(previous),
                       .next = stateOf(next),
                       .rows = rows.states(),
                       .hasNotice = !notice.empty()});
        fade.paint(context);
    }

    /// As its header tells it. Another size of the same day is no other day.
    [[nodiscard]] bool isAnotherDay(FaceLayout const& layout) const {
        auto const& last = content->layout;
        return layout.family == last.family && !layout.rows.empty() && !last.rows.empty() &&
               layout.rows.front() != last.rows.front();
    }

    void realized() {
        connectSignal<void()>(gtk_widget_get_frame_clock(window), "after-paint", [this] {
            if (std::exchange(hasPainted, false) && paintedHandler) {
                std::exchange(paintedHandler, nullptr)();
            }
        });
        updateCorners();
    }

    /// Without a compositor nothing is transparent: there the window itself is cut to the face's outline.
    void updateCorners() {
        if (gtk_widget_get_realized(window) == FALSE || !content) {
            return;
        }
        bool const isComposited = gdk_screen_is_composited(gtk_widget_get_screen(window)) != FALSE;
        auto const wanted = isComposited ? std::pair(0, 0)
                                         : std::pair(static_cast<int>(std::ceil(geometry.width)),
                                                     static_cast<int>(std::ceil(geometry.height)));
        if (std::exchange(cutSize, wanted) == wanted) {
            return;
        }
        if (isComposited) {
            gtk_widget_shape_combine_region(window, nullptr);
        } else {
            cutCorners(window, wanted.first, wanted.second, geometry.cornerRadius);
        }
    }

    void opened() {
        isOpen = true;
        gdk_window_get_position(gtk_widget_get_window(window), &lastCorner.x, &lastCorner.y);
    }

    void configured(WindowPlace corner) {
        bool const isElsewhere = std::exchange(lastCorner, corner) != corner;
        // Until it is open it is being placed, by us and by the window manager.
        if (isElsewhere && isOpen && canPlace(GTK_WINDOW(window))) {
            actions.moved();
        }
    }

    bool fillTooltip(int x, int y, GtkTooltip* tooltip) const {
        if (!content) {
            return false;
        }
        auto const hit = hitTest(geometry, x, y);
        auto const* const index = std::get_if<std::size_t>(&hit);
        if (index == nullptr || *index >= content->tooltips.size() || content->tooltips[*index].empty()) {
            gtk_tooltip_set_text(tooltip, notice.c_str());
            return !notice.empty();
        }
        gtk_tooltip_set_text(tooltip, content->tooltips[*index].c_str());
        auto const& frame = geometry.rows[*index].frame;
        // While the pointer stays on this row the tooltip stays, too.
        GdkRectangle const area{
            .x = static_cast<int>(frame.x),
            .y = static_cast<int>(frame.y),
            .width = static_cast<int>(frame.width),
            .height = static_cast<int>(frame.height),
        };
        gtk_tooltip_set_tip_area(tooltip, &area);
        return true;
    }

    bool pressed(GdkEventButton const& event) {
        auto const* const anyEvent = reinterpret_cast<GdkEvent const*>(&event); // NOLINT
        if (gdk_event_triggers_context_menu(anyEvent) == FALSE) {
            return false;
        }
        popUpMenu(anyEvent);
        return true;
    }

    /// The window moves once the pointer has gone too far for a click; what was pressed is let go then.
    void dragged(int x, int y) {
        if (gtk_drag_check_threshold(window, 0, 0, x, y) == FALSE || !canMove(GTK_WINDOW(window))) {
            return;
        }
        auto* const sequence = gtk_gesture_single_get_current_sequence(GTK_GESTURE_SINGLE(drag.get()));
        GdkEvent const* const event = gtk_gesture_get_last_event(drag.get(), sequence);
        gdouble rootX = 0;
        gdouble rootY = 0;
        if (event == nullptr || gdk_event_get_root_coords(event, &rootX, &rootY) == FALSE) {
            return;
        }
        gtk_gesture_set_state(drag.get(), GTK_EVENT_SEQUENCE_CLAIMED);
        gtk_window_begin_move_drag(GTK_WINDOW(window), GDK_BUTTON_PRIMARY, static_cast<int>(rootX) - x,
                                   static_cast<int>(rootY) - y, gdk_event_get_time(event));
        gtk_event_controller_reset(GTK_EVENT_CONTROLLER(drag.get()));
    }

    bool pressedKey(GdkEventKey const& event) {
        auto const modifiers = event.state & gtk_accelerator_get_default_mod_mask();
        if (modifiers == GDK_CONTROL_MASK && gdk_keyval_to_lower(event.keyval) == GDK_KEY_q) {
            actions.quit();
            return true;
        }
        if (modifiers != 0) {
            return false;
        }
        bool const isMirrored = content && content->layout.isRightToLeft;
        switch (event.keyval) {
        case GDK_KEY_Left:
        case GDK_KEY_KP_Left: (isMirrored ? actions.nextDay : actions.previousDay)(); return true;
        case GDK_KEY_Right:
        case GDK_KEY_KP_Right: (isMirrored ? actions.previousDay : actions.nextDay)(); return true;
        case GDK_KEY_Page_Up:
        case GDK_KEY_KP_Page_Up: actions.previousDay(); return true;
        case GDK_KEY_Page_Down:
        case GDK_KEY_KP_Page_Down: actions.nextDay(); return true;
        case GDK_KEY_Home:
        case GDK_KEY_KP_Home: actions.today(); return true;
        default: return false;
        }
    }

    void popUpMenu(GdkEvent const* event) {
        if (content) {
            preferScheme(content->layout.colorScheme);
            menu.popUp(container, event, content->layout.family);
        }
    }

    WindowPlacement placement;
    FaceWindowActions actions;
    FaceMenu menu;
    FacePainter painter;
    std::optional<FaceWindowContent> content;
    std::string notice;
    FaceGeometry geometry{.width = 0, .height = 0, .cornerRadius = 0, .rows = {}, .buttons = {}};
    std::function<void()> paintedHandler;
    bool hasPainted = false;
    std::pair<int, int> cutSize{0, 0}; // Nothing while the window is not cut.
    std::optional<WindowPlace> firstPlace;
    WindowPlace lastCorner{.x = 0, .y = 0}; // Without a frame that a window manager may have given it.
    bool isOpen = false;

    GtkWidget* window; // Owned by the toolkit until it is destroyed; the others live with it.
    GtkWidget* container;
    GtkWidget* previous;
    GtkWidget* next;
    FaceRows rows;
    FaceFade fade;
    GObjectReference<GtkGesture> drag;
};

FaceWindow::FaceWindow(WindowPlacement placement, FaceWindowTexts const& texts, FaceWindowActions actions)
    : widgets(std::make_unique<Widgets>(placement, texts, std::move(actions))) {}

FaceWindow::~FaceWindow() = default;

void FaceWindow::show(FaceWindowContent content) {
    widgets->show(std::move(content));
}

void FaceWindow::standAt(WindowPlace place) {
    widgets->standAt(place);
}

std::optional<WindowPlace> FaceWindow::place() const {
    return widgets->place();
}

void FaceWindow::present() {
    widgets->present();
}

void FaceWindow::setAccent(std::optional<SRGBColor> accent) {
    widgets->setAccent(accent);
}

void FaceWindow::setNotice(std::string text) {
    widgets->setNotice(std::move(text));
}

void FaceWindow::afterNextFrame(std::function<void()> painted) {
    widgets->afterNextFrame(std::move(painted));
}

} // namespace Platform
