#include "Foundation/Base64.h"

#include <glib.h>

#include <memory>

namespace Foundation {

std::string base64(std::string_view bytes) {
    auto const* const data = reinterpret_cast<guchar const*>(bytes.data()); // NOLINT: the library's bytes.
    std::unique_ptr<gchar, decltype(&g_free)> const text(g_base64_encode(data, bytes.size()), g_free);
    return text.get();
}

std::optional<std::string> bytesFromBase64(std::string const& text) {
    gsize length = 0;
    std::unique_ptr<guchar, decltype(&g_free)> const data(g_base64_decode(text.c_str(), &length), g_free);
    std::string bytes(data.get(), data.get() + length);
    // The library passes over what it does not understand.
    if (base64(bytes) != text) return std::nullopt;
    return bytes;
}

} // namespace Foundation
