#include "WidgetExtension/LocalizedFormat.h"

#include <array>

namespace WidgetExtension {
namespace {

// Length of the integer placeholder that `text` begins with; 0 when it begins with none.
std::size_t placeholderLength(std::string_view text) {
    constexpr std::array<std::string_view, 3> conversions = {"d", "ld", "lld"};
    constexpr std::array<std::string_view, 2> introducers = {"%1$", "%"};
    for (auto const introducer : introducers) {
        if (!text.starts_with(introducer)) continue;
        auto const rest = text.substr(introducer.size());
        for (auto const conversion : conversions) {
            if (rest.starts_with(conversion)) return introducer.size() + conversion.size();
        }
    }
    return 0;
}

} // namespace

std::string localizedFormat(std::string_view format, std::int64_t value) {
    std::string result;
    bool isReplaced = false;
    while (!format.empty()) {
        if (format.starts_with("%%")) {
            result.push_back('%');
            format.remove_prefix(2);
            continue;
        }
        auto const length = isReplaced ? 0 : placeholderLength(format);
        if (length == 0) {
            result.push_back(format.front());
            format.remove_prefix(1);
            continue;
        }
        result += std::to_string(value);
        format.remove_prefix(length);
        isReplaced = true;
    }
    return result;
}

} // namespace WidgetExtension
