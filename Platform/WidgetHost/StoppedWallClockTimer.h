#pragma once

#include "Platform/WidgetHost/WallClockTimer.h"

namespace Platform {

/// The timer that belongs to a clock which stands still: no deadline ever comes.
class StoppedWallClockTimer final : public WallClockTimer {
public:
    void onWake(std::function<void(Wake)>) override {}
    void schedule(std::optional<Foundation::Date>) override {}
};

} // namespace Platform
