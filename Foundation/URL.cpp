#include "Foundation/URL.h"

#include <boost/url/parse.hpp>

namespace Foundation {
namespace {

constexpr std::string_view hexDigits = "0123456789ABCDEF";

// Characters that people write in links although RFC 3986 wants them escaped.
bool needsEscape(char character) {
    auto const byte = static_cast<unsigned char>(character);
    return byte >= 0x80 || std::string_view(" \"<>\\^`{|}").find(character) != std::string_view::npos;
}

} // namespace

std::optional<URL> URL::fromText(std::string_view text) {
    if (text.empty()) return std::nullopt;
    std::string escaped;
    for (char const character : text) {
        if (!needsEscape(character)) {
            escaped += character;
            continue;
        }
        auto const byte = static_cast<unsigned char>(character);
        escaped += {'%', hexDigits[byte >> 4], hexDigits[byte & 0x0F]};
    }
    if (!boost::urls::parse_uri_reference(escaped)) return std::nullopt;
    return URL{.absoluteString = std::move(escaped)};
}

} // namespace Foundation
