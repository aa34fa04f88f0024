#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace Samples {

/// A small generator of repeatable numbers (SplitMix64): the same seed gives the same numbers with every
/// compiler and library, which the standard distributions do not promise.
class SampleRandom {
public:
    explicit SampleRandom(std::uint64_t seed) : state(seed) {}

    std::uint64_t next() {
        state += 0x9E3779B97F4A7C15U;
        auto mixed = state;
        mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBU;
        return mixed ^ (mixed >> 31U);
    }

    /// 0 … `bound` − 1; `bound` is positive.
    std::int64_t below(std::int64_t bound) {
        return static_cast<std::int64_t>(next() % static_cast<std::uint64_t>(bound));
    }

    /// True in `percent` of a hundred cases.
    bool chance(std::int64_t percent) { return below(100) < percent; }

    template <typename T, std::size_t Extent>
    T const& pick(std::span<T, Extent> choices) {
        return choices[static_cast<std::size_t>(below(static_cast<std::int64_t>(choices.size())))];
    }

private:
    std::uint64_t state;
};

} // namespace Samples
