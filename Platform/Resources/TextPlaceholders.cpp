#include "Platform/Resources/TextPlaceholders.h"

#include <cstddef>

namespace Platform {

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

} // namespace Platform
