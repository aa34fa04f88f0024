#pragma once

#include <bit>
#include <cstdint>
#include <vector>

/// Small sets of numbers as bits: bit n stands for the number n.
namespace Platform::ICalendar {

constexpr std::uint32_t lowBits(std::int64_t count) {
    return static_cast<std::uint32_t>((std::uint64_t(1) << count) - 1);
}

constexpr bool hasBit(std::uint64_t bits, std::int64_t bit) {
    return (bits >> bit & 1) != 0;
}

constexpr std::int64_t lowestBit(std::uint64_t bits) {
    return std::countr_zero(bits);
}

constexpr std::int64_t bitCount(std::uint64_t bits) {
    return std::popcount(bits);
}

/// The number that has `position` others of the set below it.
constexpr std::int64_t bitAt(std::uint64_t bits, std::int64_t position) {
    for (; position > 0; --position)
        bits &= bits - 1;
    return lowestBit(bits);
}

constexpr void setBit(std::uint64_t& bits, std::int32_t bit) {
    bits |= std::uint64_t(1) << bit;
}

constexpr std::uint64_t bitsOf(std::vector<std::int32_t> const& values) {
    std::uint64_t bits = 0;
    for (auto const value : values)
        setBit(bits, value);
    return bits;
}

} // namespace Platform::ICalendar
