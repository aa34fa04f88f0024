#pragma once

#include "Foundation/Date.h"

namespace Platform {

/// Tells the present moment.
class Clock {
public:
    virtual ~Clock() = default;
    [[nodiscard]] virtual Foundation::Date now() const = 0;
};

} // namespace Platform
