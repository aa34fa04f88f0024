#include "Networking/TokenRedaction.h"

#include <algorithm>
#include <vector>

namespace Networking {
namespace {

constexpr std::string_view mark = "[token]";
constexpr std::string_view scheme = "Bearer ";
constexpr std::size_t shortestSecret = 8;

void replaceAll(std::string& text, std::string_view from, std::string_view to) {
    if (text.find(from) == std::string::npos) return;
    std::string replaced;
    std::size_t start = 0;
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, start)) {
        replaced.append(text, start, at - start).append(to);
        start = at + from.size();
    }
    replaced.append(text, start);
    text = std::move(replaced);
}

// With a backslash before each of these characters, as a JSON text may have it.
std::string escaped(std::string_view text, std::string_view characters) {
    std::string result;
    for (char const character : text) {
        if (characters.contains(character)) result += '\\';
        result += character;
    }
    return result;
}

// With "%XX" for all but the letters, digits and marks that every URL leaves alone (RFC 3986, 2.3).
std::string percentEncoded(std::string_view text) {
    constexpr std::string_view plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string result;
    for (char const character : text) {
        auto const byte = static_cast<unsigned char>(character);
        if (plain.contains(character)) {
            result += character;
        } else {
            result += '%';
            result += digits[byte >> 4];
            result += digits[byte & 0x0F];
        }
    }
    return result;
}

// The longest first, so that none leaves a part of another.
std::vector<std::string> spellings(std::string_view token) {
    std::vector<std::string> found = {std::string(token), escaped(token, "\"\\"), escaped(token, "\"\\/"),
                                      percentEncoded(token)};
    std::ranges::sort(found, std::ranges::greater(), [](auto const& text) { return text.size(); });
    return found;
}

} // namespace

std::string withoutToken(std::string_view text, std::string_view token) {
    std::string result(text);
    if (token.empty()) return result;
    bool const isTelling = token.size() >= shortestSecret;
    for (auto const& spelling : spellings(token)) {
        if (isTelling) {
            replaceAll(result, spelling, mark);
        } else {
            replaceAll(result, std::string(scheme) + spelling, std::string(scheme) + std::string(mark));
        }
    }
    return result;
}

} // namespace Networking
