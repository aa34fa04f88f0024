#pragma once

#include "Foundation/Date.h"

namespace Platform {

/// Tells the present moment.
class Clock {
public:
    virtual ~Clock() = default;

    /// The present moment; two calls may yield the same one, and a set clock may go back.
    [[nodiscard]] virtual Foundation::Date now() const = 0;
};

} // namespace Platform
