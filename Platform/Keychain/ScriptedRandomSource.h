#pragma once

#include "Platform/Keychain/RandomSource.h"

#include <vector>

namespace Platform {

/// Bytes that a test can foretell: counting up from the seed through all calls. It may be told to fail.
class ScriptedRandomSource final : public RandomSource {
public:
    explicit ScriptedRandomSource(std::uint8_t seed = 0) : next(seed) {}

    /// From now on every call fills half of the buffer and yields this status.
    void failsWith(std::int32_t status) { failure = status; }

    /// How many bytes each call asked for.
    [[nodiscard]] std::vector<std::size_t> const& requestedSizes() const { return sizes; }

    std::int32_t copyBytes(std::span<std::byte> buffer) override {
        sizes.push_back(buffer.size());
        if (failure != 0) buffer = buffer.first(buffer.size() / 2);
        for (auto& byte : buffer)
            byte = std::byte{next++};
        return failure;
    }

private:
    std::uint8_t next;
    std::int32_t failure = 0;
    std::vector<std::size_t> sizes;
};

} // namespace Platform
