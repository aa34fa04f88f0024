#pragma once

#include <cstdlib>
#include <string_view>

/// How much of a fault test is run: a tenth, unless QUILLORA_FAULTS is "full".
namespace FaultScale {

inline bool isFull() {
    // Read before any thread of the test is started, and never set by one.
    auto const* chosen = std::getenv("QUILLORA_FAULTS");
    return chosen != nullptr && std::string_view(chosen) == "full";
}

/// `full`, or a tenth of it.
inline int of(int full) {
    return isFull() ? full : full / 10;
}

} // namespace FaultScale
