#include "Platform/Resources/TextPlaceholders.h"

#include <cstddef>

namespace Platform {

namespace {

// The next place in `text`; npos when there is none.
std::size_t placeIn(std::string_view text) {
    for (auto at = text.find('%'); at != std::string_view::npos; at = text.find('%', at + 1)) {
        auto const place = text.substr(at, 4);
        if (place.size() == 4 && place[1] >= '1' && place[1] <= '9' && place.ends_with("$@")) return at;
    }
    return std::string_view::npos;
}

} // namespace

std::string withValues(std::string_view text, std::vector<std::string> const& values) {
    std::string result;
    while (!text.empty()) {
        if (text.starts_with("%%")) {
            result += '%';
            text.remove_prefix(2);
            continue;
        }
        bool const isPlace = text.size() >= 4 && text[0] == '%' && text[1] >= '1' && text[1] <= '9' &&
                             text.substr(2).starts_with("$@");
        auto const place = isPlace ? static_cast<std::size_t>(text[1] - '1') : values.size();
        if (place < values.size()) {
            result += values[place];
            text.remove_prefix(4);
            continue;
        }
        result += text.front();
        text.remove_prefix(1);
    }
    return result;
}

std::optional<std::vector<std::string>> valuesIn(std::string_view text, std::string_view filled) {
    std::vector<std::string> values;
    auto place = placeIn(text);
    if (place == std::string_view::npos) return text == filled ? std::optional(values) : std::nullopt;
    if (!filled.starts_with(text.substr(0, place))) return std::nullopt;
    filled.remove_prefix(place);
    text.remove_prefix(place);
    // Each round stands at a place: its value reaches to the words that follow it, the last one to the end.
    while (true) {
        text.remove_prefix(4);
        place = placeIn(text);
        auto const words = text.substr(0, place);
        bool const isLast = place == std::string_view::npos;
        if (isLast && !filled.ends_with(words)) return std::nullopt;
        auto const end = isLast ? filled.size() - words.size() : filled.find(words);
        if (end == std::string_view::npos) return std::nullopt;
        values.emplace_back(filled.substr(0, end));
        if (isLast) return values;
        filled.remove_prefix(end + words.size());
        text.remove_prefix(words.size());
    }
}

} // namespace Platform
