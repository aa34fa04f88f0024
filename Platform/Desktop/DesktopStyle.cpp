#include "Platform/Desktop/DesktopStyle.h"

#include "Platform/Face/InterfaceFont.h"

#include <gtk/gtk.h>

#include <memory>

namespace Platform {

FaceStyle desktopStyle() {
    FaceStyle style;
    gchar* name = nullptr;
    g_object_get(gtk_settings_get_default(), "gtk-font-name", &name, nullptr);
    std::unique_ptr<gchar, decltype(&g_free)> const owner(name, g_free);
    if (name != nullptr) {
        style.fontFamily = familyOfInterfaceFont(name).value_or(style.fontFamily);
    }
    if (PangoLanguage* const language = gtk_get_default_language()) {
        style.language = pango_language_to_string(language);
    }
    return style;
}

void preferScheme(ColorScheme scheme) {
    g_object_set(gtk_settings_get_default(), "gtk-application-prefer-dark-theme",
                 scheme == ColorScheme::dark ? TRUE : FALSE, nullptr);
}

} // namespace Platform
