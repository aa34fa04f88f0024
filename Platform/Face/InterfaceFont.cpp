#include "Platform/Face/InterfaceFont.h"

#include <pango/pango.h>

#include <memory>
#include <string_view>

namespace Platform {

std::optional<std::string> familyOfInterfaceFont(std::string const& description) {
    std::unique_ptr<PangoFontDescription, decltype(&pango_font_description_free)> const font(
        pango_font_description_from_string(description.c_str()), pango_font_description_free);
    char const* const family = pango_font_description_get_family(font.get());
    if (family == nullptr || std::string_view(family).empty() || std::string_view(family) == "Sans") {
        return std::nullopt;
    }
    return family;
}

} // namespace Platform
