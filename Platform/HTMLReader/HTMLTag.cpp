#include "Platform/HTMLReader/HTMLTag.h"

#include <algorithm>
#include <charconv>

namespace Platform {

namespace {

constexpr std::size_t longestName = 32;

bool isBlank(char character) {
    return character == ' ' || character == '\t' || character == '\n' || character == '\r' ||
           character == '\f';
}

char lowercased(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

bool equalsIgnoringCase(std::string_view text, std::string_view lowercase) {
    return std::ranges::equal(text, lowercase, {}, lowercased);
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

// The last declaration of "display" counts, as in a browser.
bool displaysNothing(std::string_view style) {
    bool nothing = false;
    while (!style.empty()) {
        auto const end = std::min(style.find(';'), style.size());
        auto const declaration = style.substr(0, end);
        style.remove_prefix(std::min(end + 1, style.size()));
        auto const colon = declaration.find(':');
        if (colon == std::string_view::npos) continue;
        if (!equalsIgnoringCase(trimmed(declaration.substr(0, colon)), "display")) continue;
        auto value = declaration.substr(colon + 1);
        value = trimmed(value.substr(0, value.find('!')));
        nothing = equalsIgnoringCase(value, "none");
    }
    return nothing;
}

std::optional<std::int32_t> wholeNumber(std::string_view text) {
    text = trimmed(text);
    std::int32_t number = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end == text.data()) return std::nullopt;
    return number;
}

struct Attribute {
    std::string_view name;
    std::string_view value;
};

class TagScanner {
public:
    TagScanner(std::string_view text, std::size_t position) : text(text), position(position) {}

    std::string name() {
        auto const begin = position;
        skipUntil([](char character) { return isBlank(character) || character == '/' || character == '>'; });
        std::string name(text.substr(begin, std::min(position - begin, longestName)));
        std::ranges::transform(name, name.begin(), lowercased);
        return name;
    }

    // Absent at the tag's end, which is then the next character, or at the text's.
    std::optional<Attribute> attribute() {
        skipUntil([](char character) { return !isBlank(character) && character != '/'; });
        if (position == text.size() || text[position] == '>') return std::nullopt;
        auto const begin = position++;
        skipUntil([](char character) {
            return isBlank(character) || character == '/' || character == '>' || character == '=';
        });
        auto const name = text.substr(begin, position - begin);
        skipUntil([](char character) { return !isBlank(character); });
        if (position == text.size() || text[position] != '=') return Attribute{.name = name, .value = {}};
        ++position;
        skipUntil([](char character) { return !isBlank(character); });
        return Attribute{.name = name, .value = value()};
    }

    // Past the ">"; absent when there is none.
    [[nodiscard]] std::optional<std::size_t> end() const {
        if (position >= text.size()) return std::nullopt;
        return position + 1;
    }

private:
    template <typename Predicate>
    void skipUntil(Predicate const& predicate) {
        while (position < text.size() && !predicate(text[position]))
            ++position;
    }

    std::string_view value() {
        if (position == text.size()) return {};
        char const quote = text[position];
        auto begin = position;
        if (quote != '"' && quote != '\'') {
            skipUntil([](char character) { return isBlank(character) || character == '>'; });
            return text.substr(begin, position - begin);
        }
        position = std::min(text.find(quote, ++begin), text.size());
        auto const found = text.substr(begin, position - begin);
        if (position < text.size()) ++position;
        return found;
    }

    std::string_view text;
    std::size_t position;
};

} // namespace

std::optional<HTMLTag> tagAt(std::string_view text) {
    bool const isEnd = text.size() > 1 && text[1] == '/';
    TagScanner scanner(text, isEnd ? 2 : 1);
    HTMLTag tag{.name = scanner.name(), .isEnd = isEnd, .number = std::nullopt};
    bool hasStyle = false;
    while (auto const attribute = scanner.attribute()) {
        if (equalsIgnoringCase(attribute->name, "hidden")) {
            tag.isHidden = true;
        } else if (!hasStyle && equalsIgnoringCase(attribute->name, "style")) {
            // Of an attribute that stands there twice the first counts.
            hasStyle = true;
            tag.isHidden = tag.isHidden || displaysNothing(attribute->value);
        } else if (!tag.number && (equalsIgnoringCase(attribute->name, "start") ||
                                   equalsIgnoringCase(attribute->name, "value"))) {
            tag.number = wholeNumber(attribute->value);
        }
    }
    auto const end = scanner.end();
    if (!end) return std::nullopt;
    tag.length = *end;
    tag.isSelfClosing = text[*end - 2] == '/';
    return tag;
}

} // namespace Platform
