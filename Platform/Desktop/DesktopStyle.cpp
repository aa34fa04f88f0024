#include "Platform/Desktop/DesktopStyle.h"

#include <gtk/gtk.h>

#include <memory>
#include <string_view>

namespace Platform {

FaceStyle desktopStyle() {
    FaceStyle style;
    gchar* name = nullptr;
    g_object_get(gtk_settings_get_default(), "gtk-font-name", &name, nullptr);
    std::unique_ptr<gchar, decltype(&g_free)> const owner(name, g_free);
    if (name != nullptr) {
        std::unique_ptr<PangoFontDescription, decltype(&pango_font_description_free)> const font(
            pango_font_description_from_string(name), pango_font_description_free);
        char const* const family = pango_font_description_get_family(font.get());
        // "Sans" is the toolkit's own default: it says that the desktop has named none.
        if (family != nullptr && std::string_view(family) != "Sans") {
            style.fontFamily = family;
        }
    }
    if (PangoLanguage* const language = gtk_get_default_language()) {
        style.language = pango_language_to_string(language);
    }
    return style;
}

} // namespace Platform
