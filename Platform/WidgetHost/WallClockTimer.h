#pragma once

#include "Foundation/Date.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace Platform {

/// Wakes its owner at one instant of the wall clock, also across suspend, and whenever that clock is set.
class WallClockTimer {
public:
    enum class Wake : std::uint8_t {
        deadline, ///< The scheduled instant has come.
        clockSet, ///< The clock was set or the machine slept; what was scheduled still stands.
    };

    virtual ~WallClockTimer() = default;

    /// Who is told; on the main loop's thread, never from within another call here.
    virtual void onWake(std::function<void(Wake)> handler) = 0;

    /// Replaces what was scheduled; an instant that has passed wakes at once. Absent: only a clock that is
    /// set wakes.
    virtual void schedule(std::optional<Foundation::Date> deadline) = 0;
};

} // namespace Platform
