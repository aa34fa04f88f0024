#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>

namespace Platform {

/// One step of a hash that shows damage and tells names apart; it keeps no secrets. For a given word each
/// state has a successor of its own, and the other way round: whatever changes within one word shows at the
/// end.
constexpr std::uint64_t mixed(std::uint64_t state, std::uint64_t word) {
    state = (state ^ word) * 0x9E3779B97F4A7C15U;
    return state ^ (state >> 32U);
}

/// The hash of some bytes, other for each seed.
inline std::uint64_t hashOf(std::span<std::byte const> bytes, std::uint64_t seed = 0) {
    auto state = mixed(seed, bytes.size());
    std::uint64_t word = 0;
    for (; bytes.size() >= sizeof word; bytes = bytes.subspan(sizeof word)) {
        std::memcpy(&word, bytes.data(), sizeof word);
        state = mixed(state, word);
    }
    word = 0;
    if (!bytes.empty()) std::memcpy(&word, bytes.data(), bytes.size());
    state = mixed(state, word);
    return mixed(state, std::rotl(state, 17));
}

inline std::uint64_t hashOf(std::string_view text, std::uint64_t seed = 0) {
    return hashOf(std::as_bytes(std::span(text)), seed);
}

} // namespace Platform
