#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace Foundation {

/// The table of an enumeration's text values. Specialised beside each such enumeration as
/// `template <> inline constexpr auto rawValues<E> = std::to_array<std::pair<E, std::string_view>>({...});`
template <typename E>
inline constexpr std::array<std::pair<E, std::string_view>, 0> rawValues{};

/// The text of an enumerator.
template <typename E>
constexpr std::string_view rawValue(E enumerator) {
    auto const* entry = std::ranges::find(rawValues<E>, enumerator, &std::pair<E, std::string_view>::first);
    return entry->second;
}

/// The enumerator of a text, matched byte for byte; absent for any other text.
template <typename E>
constexpr std::optional<E> fromRawValue(std::string_view text) {
    auto const* entry = std::ranges::find(rawValues<E>, text, &std::pair<E, std::string_view>::second);
    if (entry == rawValues<E>.end()) return std::nullopt;
    return entry->first;
}

} // namespace Foundation
