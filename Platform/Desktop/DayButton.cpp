#include "Platform/Desktop/DayButton.h"

namespace Platform {

namespace {

struct DayButton {
    GtkButton parent;
};

struct DayButtonClass {
    GtkButtonClass parent;
};

G_DEFINE_TYPE(DayButton, quillora_day_button, GTK_TYPE_BUTTON)

gboolean drawNothing(GtkWidget*, cairo_t*) {
    return FALSE;
}

void quillora_day_button_class_init(DayButtonClass* type) {
    auto* const widget = GTK_WIDGET_CLASS(type);
    widget->draw = drawNothing;
    // A name that no theme knows: a theme's button has a least size beyond the face's.
    gtk_widget_class_set_css_name(widget, "quillora-day-button");
}

void quillora_day_button_init(DayButton*) {}

} // namespace

GtkWidget* makeDayButton() {
    return GTK_WIDGET(g_object_new(quillora_day_button_get_type(), nullptr));
}

} // namespace Platform
