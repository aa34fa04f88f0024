#include "Foundation/URLBuilding.h"

#include <boost/url/parse.hpp>
#include <boost/url/url_view.hpp>

namespace Foundation {
namespace {

bool isUnreserved(char character) {
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
           (character >= '0' && character <= '9') ||
           std::string_view("-._~").find(character) != std::string_view::npos;
}

std::string escaped(std::string_view text, std::string_view alsoAllowed) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string result;
    result.reserve(text.size());
    for (char const character : text) {
        if (isUnreserved(character) || alsoAllowed.find(character) != std::string_view::npos) {
            result += character;
            continue;
        }
        auto const byte = static_cast<unsigned char>(character);
        result += {'%', digits[byte >> 4], digits[byte & 0x0F]};
    }
    return result;
}

// A semicolon is legal in a path, yet some servers cut parameters off there: it is escaped on purpose.
std::string escapedPath(std::string_view path) {
    return escaped(path, "!$&'()*+,:@=/");
}

std::string escapedQueryPart(std::string_view part) {
    return escaped(part, "!$'()*+,:@/?");
}

std::string queryText(std::vector<URLQueryItem> const& query) {
    std::string text;
    for (auto const& item : query) {
        if (!text.empty()) text += '&';
        text += escapedQueryPart(item.name);
        if (item.value) text += "=" + escapedQueryPart(*item.value);
    }
    return text;
}

} // namespace

std::optional<BaseURL> BaseURL::of(URL const& base) {
    auto const parsed = boost::urls::parse_uri(base.absoluteString);
    if (!parsed) return std::nullopt;
    auto const& parts = *parsed;

    BaseURL read;
    read.beforePath = std::string(parts.scheme()) + ":";
    if (parts.has_authority()) read.beforePath += "//" + std::string(parts.encoded_authority());
    std::string path(parts.encoded_path());
    while (path.ends_with('/'))
        path.pop_back();
    read.beforePath += path;
    if (parts.has_query()) read.query = "?" + std::string(parts.encoded_query());
    if (parts.has_fragment()) read.fragment = "#" + std::string(parts.encoded_fragment());
    return read;
}

URL BaseURL::appending(std::string_view path, std::vector<URLQueryItem> const& items) const {
    while (path.starts_with('/'))
        path.remove_prefix(1);
    return {.absoluteString = beforePath + "/" + escapedPath(path) +
                              (items.empty() ? query : "?" + queryText(items)) + fragment};
}

} // namespace Foundation
