#pragma once

#include "Platform/ObjectDatabase/SystemFailure.h"

#include <algorithm>
#include <chrono>
#include <expected>
#include <system_error>
#include <thread>

/// Waiting for what passes by itself.
namespace Platform::Patience {

inline std::error_code failureOf(std::error_code error) {
    return error;
}

template <typename Value>
std::error_code failureOf(std::expected<Value, std::error_code> const& outcome) {
    return outcome ? std::error_code() : outcome.error();
}

/// The attempt's outcome, once it has succeeded, failed for good, or failed for that long.
template <typename Attempt>
auto outcomeOf(std::chrono::milliseconds patience, Attempt attempt) {
    using namespace std::chrono_literals;
    auto const end = std::chrono::steady_clock::now() + patience;
    std::chrono::milliseconds pause = 1ms;
    while (true) {
        auto outcome = attempt();
        auto const failed = failureOf(outcome);
        if (!failed || !SystemFailure::mayPass(failed) || std::chrono::steady_clock::now() >= end)
            return outcome;
        std::this_thread::sleep_for(pause);
        // Never long: a lock that a busy writer releases is free only for a moment.
        pause = std::min<std::chrono::milliseconds>(pause * 2, 4ms);
    }
}

} // namespace Platform::Patience
