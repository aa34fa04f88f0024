#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace Platform {

/// Unpredictable bytes.
class RandomSource {
public:
    virtual ~RandomSource() = default;

    /// Fills the whole buffer. Yields 0; any other number is a failure, which may leave a part filled.
    virtual std::int32_t copyBytes(std::span<std::byte> buffer) = 0;
};

} // namespace Platform
