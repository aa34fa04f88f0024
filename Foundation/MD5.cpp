#include "Foundation/MD5.h"

#include "Foundation/FatalError.h"

#include <glib.h>

#include <memory>

namespace Foundation {

std::array<std::uint8_t, 16> md5(std::string_view bytes) {
    std::unique_ptr<GChecksum, decltype(&g_checksum_free)> const checksum(g_checksum_new(G_CHECKSUM_MD5),
                                                                          &g_checksum_free);
    if (!checksum) fatalError("MD5 is not available");
    g_checksum_update(checksum.get(), reinterpret_cast<guchar const*>(bytes.data()),
                      static_cast<gssize>(bytes.size()));

    std::array<std::uint8_t, 16> digest{};
    gsize length = digest.size();
    g_checksum_get_digest(checksum.get(), digest.data(), &length);
    return digest;
}

} // namespace Foundation
