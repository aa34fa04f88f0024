#include "Foundation/URL.h"

#include <boost/url/parse.hpp>
#include <boost/url/url_view.hpp>

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

std::optional<URLPlace> URLPlace::of(URL const& url) {
    auto const parsed = boost::urls::parse_uri(url.absoluteString);
    if (!parsed) return std::nullopt;
    std::string scheme(parsed->scheme());
    for (char& letter : scheme)
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    return URLPlace{.scheme = std::move(scheme),
                    .host = std::string(parsed->encoded_host()),
                    .hasUserInfo = parsed->has_userinfo(),
                    .hasQueryOrFragment = parsed->has_query() || parsed->has_fragment()};
}

} // namespace Foundation
