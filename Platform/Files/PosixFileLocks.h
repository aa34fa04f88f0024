#pragma once

#include "Platform/Files/FileLocks.h"

namespace Platform {

/// Locks of the kernel: a program that ends, however it does, lets go of its own.
class PosixFileLocks final : public FileLocks {
public:
    [[nodiscard]] std::expected<std::unique_ptr<Held>, std::error_code>
    take(std::filesystem::path const& lockFile, std::chrono::milliseconds patience) const override;
};

} // namespace Platform
