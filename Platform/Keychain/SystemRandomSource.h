#pragma once

#include "Platform/Keychain/RandomSource.h"

namespace Platform {

/// The kernel's cryptographically secure generator. Fails with the system's error number.
class SystemRandomSource final : public RandomSource {
public:
    std::int32_t copyBytes(std::span<std::byte> buffer) override;
};

} // namespace Platform
