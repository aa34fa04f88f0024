#pragma once

#include <chrono>
#include <thread>

/// Looks every few milliseconds until `condition` holds. False when it does not within a minute.
template <typename Condition>
bool waitUntil(Condition const& condition) {
    auto const end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}
