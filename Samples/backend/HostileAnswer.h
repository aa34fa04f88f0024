#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Backend {

/// The ways in which the service can misbehave, for trying out clients.
enum class Hostility : std::uint8_t {
    slowBytes,         ///< A good answer, a byte every 20 ms.
    silence,           ///< A head, then nothing.
    endlessHeaders,    ///< Header lines without end.
    gzipBomb,          ///< A small body that unpacks to gigabytes.
    endlessBody,       ///< A body without end.
    valueBomb,         ///< A list of a list of more than a million numbers: little to send, much to keep.
    resetAt,           ///< The connection is reset after so many bytes of a good answer.
    wrongContent,      ///< 200 with a page instead of JSON.
    redirect,          ///< 302 to the same place.
    noContent,         ///< 204 to everything.
    invalidUTF8,       ///< JSON whose texts are not UTF-8.
    tlsBadCertificate, ///< TLS with a certificate that nobody vouches for.
};

/// A hostility as it is chosen on the command line: "gzip-bomb", "reset-at:17".
struct HostileMode {
    Hostility hostility;
    std::size_t bytes; ///< Of `resetAt`.

    /// Absent for an unknown name.
    static std::optional<HostileMode> fromText(std::string_view text);

    /// All names, for a help text.
    static std::vector<std::string_view> names();
};

/// The document of `valueBomb`.
std::string valueBomb();

/// One piece of a gzip stream (RFC 1952) of zeros that never ends; the first piece bears the header.
std::string gzipBombPiece(bool isFirst);

} // namespace Backend
