#include "Platform/EventStore/ICalendar/Delimiter.h"

#include "Platform/EventStore/ICalendar/ContentLine.h"

#include <cstddef>

namespace Platform::ICalendar {

bool Delimiter::begins(std::string_view upper) const {
    return kind == Kind::begin && equalsIgnoringCase(component, upper);
}

bool Delimiter::ends(std::string_view upper) const {
    return kind == Kind::end && equalsIgnoringCase(component, upper);
}

Delimiter delimiterIn(std::string_view line) {
    // No delimiter is so long; what is folded beyond belongs to a property.
    constexpr std::size_t longest = 128;
    char const first = static_cast<char>(line.front() | 0x20);
    if (line.size() > longest || (first != 'b' && first != 'e')) return {};
    auto const unfolded = unfold(line);
    auto const text = std::string_view(unfolded);
    if (text.size() > 6 && equalsIgnoringCase(text.substr(0, 6), "BEGIN:"))
        return {.kind = Delimiter::Kind::begin, .component = std::string(trimmed(text.substr(6)))};
    if (text.size() > 4 && equalsIgnoringCase(text.substr(0, 4), "END:"))
        return {.kind = Delimiter::Kind::end, .component = std::string(trimmed(text.substr(4)))};
    return {};
}

} // namespace Platform::ICalendar
