#pragma once

#include <atomic>
#include <cstdint>

/// What a test and the programs that it starts share of a machine whose clock the test sets.
struct ClockPage {
    static constexpr char const* pathVariable = "QUILLORA_TEST_CLOCK";
    static constexpr char const* timerVariable = "QUILLORA_TEST_TIMER"; ///< A descriptor's number.

    std::atomic<std::int64_t> ahead; ///< Of the true clock, in nanoseconds.
    std::atomic<std::uint32_t> timesItWasSet;
};

static_assert(std::atomic<std::int64_t>::is_always_lock_free);
