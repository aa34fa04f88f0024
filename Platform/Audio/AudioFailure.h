#pragma once

#include <cstdint>

namespace Platform {

/// Why nothing could be heard.
enum class AudioFailure : std::uint8_t {
    unavailable, ///< No program that could do it is installed.
    refused,     ///< What is installed did not do it, or not in time.
};

} // namespace Platform
