#include "Platform/Desktop/UndrawnButton.h"

namespace Platform {

namespace {

struct UndrawnButton {
    GtkButton parent;
};

struct UndrawnButtonClass {
    GtkButtonClass parent;
};

G_DEFINE_TYPE(UndrawnButton, quillora_undrawn_button, GTK_TYPE_BUTTON)

gboolean drawNothing(GtkWidget*, cairo_t*) {
    return FALSE;
}

void quillora_undrawn_button_class_init(UndrawnButtonClass* type) {
    auto* const widget = GTK_WIDGET_CLASS(type);
    widget->draw = drawNothing;
    // A name that no theme knows: a theme's button has a least size beyond the face's.
    gtk_widget_class_set_css_name(widget, "quillora-undrawn-button");
}

void quillora_undrawn_button_init(UndrawnButton*) {}

} // namespace

GtkWidget* makeUndrawnButton() {
    return GTK_WIDGET(g_object_new(quillora_undrawn_button_get_type(), nullptr));
}

FaceButtonState stateOf(GtkWidget* button) {
    auto const flags = gtk_widget_get_state_flags(button);
    return {
        .isHovered = (flags & GTK_STATE_FLAG_PRELIGHT) != 0,
        .isPressed = (flags & GTK_STATE_FLAG_ACTIVE) != 0,
        .isFocused = gtk_widget_has_visible_focus(button) != FALSE,
    };
}

} // namespace Platform
