#pragma once

#include "Platform/WidgetHost/GLibSource.h"
#include "Platform/WidgetHost/WallClockTimer.h"

namespace Platform {

/// A kernel timer on the wall clock, in GLib's default main context. The process does not wake before it.
class TimerfdWallClockTimer final : public WallClockTimer {
public:
    /// A system without such timers is a fatal error.
    TimerfdWallClockTimer();
    TimerfdWallClockTimer(TimerfdWallClockTimer const&) = delete;
    TimerfdWallClockTimer& operator=(TimerfdWallClockTimer const&) = delete;
    ~TimerfdWallClockTimer() override;

    void onWake(std::function<void(Wake)> newHandler) override;
    void schedule(std::optional<Foundation::Date> deadline) override;

private:
    void readTimer();
    void tell(Wake wake) const;

    int descriptor;
    std::function<void(Wake)> handler;
    GLibSource readable;
    GLibSource missedChange;
};

} // namespace Platform
