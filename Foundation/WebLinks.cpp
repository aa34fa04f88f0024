#include "Foundation/WebLinks.h"

#include <algorithm>
#include <cstddef>

namespace Foundation {
namespace {

constexpr std::string_view schemes[] = {"https://", "http://"};

bool matchesLetter(char left, char right) {
    return (left >= 'A' && left <= 'Z' ? left + ('a' - 'A') : left) == right;
}

bool beginsWithScheme(std::string_view text) {
    return std::ranges::any_of(schemes, [text](std::string_view scheme) {
        return text.size() > scheme.size() &&
               std::ranges::equal(text.substr(0, scheme.size()), scheme, matchesLetter);
    });
}

bool endsLink(char character) {
    auto const byte = static_cast<unsigned char>(character);
    return byte <= 0x20 || byte == 0x7F || std::string_view("\"<>[]{}|\\^`").contains(character);
}

std::string_view withoutPunctuationOfTheSentence(std::string_view link) {
    // A closing parenthesis is the sentence's unless the link opened it.
    auto surplus = std::ranges::count(link, ')') - std::ranges::count(link, '(');
    while (!link.empty()) {
        bool const isParenthesis = link.back() == ')' && surplus > 0;
        if (!isParenthesis && !std::string_view(".,;:!?'").contains(link.back())) break;
        if (isParenthesis) --surplus;
        link.remove_suffix(1);
    }
    return link;
}

std::string_view linkAtStartOf(std::string_view text) {
    auto const length = static_cast<std::size_t>(std::ranges::find_if(text, endsLink) - text.begin());
    return withoutPunctuationOfTheSentence(text.substr(0, length));
}

} // namespace

bool isWebLink(URL const& link) {
    auto const place = URLPlace::of(link);
    return place && (place->scheme == "https" || place->scheme == "http") && !place->host.empty();
}

std::vector<URL> webLinksIn(std::string_view text) {
    std::vector<URL> links;
    for (std::size_t position = 0; position < text.size(); ++position) {
        if (!beginsWithScheme(text.substr(position))) continue;
        auto const written = linkAtStartOf(text.substr(position));
        if (auto link = URL::fromText(written); link && isWebLink(*link)) links.push_back(*std::move(link));
        // Nor is there a second link in what is none: a text is walked through once.
        position += written.size();
    }
    return links;
}

} // namespace Foundation
