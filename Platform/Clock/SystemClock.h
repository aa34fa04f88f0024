#pragma once

#include "Platform/Clock/Clock.h"

namespace Platform {

/// The system's wall clock.
class SystemClock final : public Clock {
public:
    [[nodiscard]] Foundation::Date now() const override;
};

} // namespace Platform
