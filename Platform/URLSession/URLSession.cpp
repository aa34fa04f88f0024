#include "Platform/URLSession/URLSession.h"

#include <algorithm>

namespace Platform {
namespace {

char lowerASCII(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

bool isSameHeader(std::string_view left, std::string_view right) {
    return std::ranges::equal(left, right, {}, lowerASCII, lowerASCII);
}

char const* text(URLError::Case errorCase) {
    switch (errorCase) {
    case URLError::Case::cancelled: return "cancelled";
    case URLError::Case::badURL: return "The URL is not valid.";
    case URLError::Case::unsupportedURL: return "The URL's scheme is not supported.";
    case URLError::Case::badRequestHeader: return "A request header holds a character that is not allowed.";
    case URLError::Case::cannotFindHost: return "A server with the specified hostname could not be found.";
    case URLError::Case::cannotConnectToHost: return "Could not connect to the server.";
    case URLError::Case::timedOut: return "The request timed out.";
    case URLError::Case::networkConnectionLost: return "The network connection was lost.";
    case URLError::Case::secureConnectionFailed:
        return "A secure connection to the server could not be made.";
    case URLError::Case::cannotDecodeContent: return "The server's response could not be decoded.";
    case URLError::Case::dataLengthExceedsMaximum: return "The server's response is too large.";
    case URLError::Case::badServerResponse: return "The server's response is not valid.";
    case URLError::Case::unknown: return "The exchange with the server failed.";
    }
    return "";
}

} // namespace

void URLRequest::setValue(std::string value, std::string_view header) {
    auto const found =
        std::ranges::find_if(headers, [&](auto const& entry) { return isSameHeader(entry.first, header); });
    if (found != headers.end()) {
        found->second = std::move(value);
        return;
    }
    headers.emplace_back(std::string(header), std::move(value));
}

std::optional<std::string> URLRequest::value(std::string_view header) const {
    auto const found =
        std::ranges::find_if(headers, [&](auto const& entry) { return isSameHeader(entry.first, header); });
    return found == headers.end() ? std::nullopt : std::optional(found->second);
}

URLError::URLError(Case errorCase) : std::runtime_error(text(errorCase)), kind(errorCase) {}

} // namespace Platform
