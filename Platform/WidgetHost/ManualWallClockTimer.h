#pragma once

#include "Platform/WidgetHost/WallClockTimer.h"

#include <utility>
#include <vector>

namespace Platform {

/// A timer that a test fires by hand. It keeps every deadline that it was given.
class ManualWallClockTimer final : public WallClockTimer {
public:
    void onWake(std::function<void(Wake)> newHandler) override { handler = std::move(newHandler); }
    void schedule(std::optional<Foundation::Date> deadline) override { history.push_back(deadline); }

    [[nodiscard]] bool hasHandler() const { return static_cast<bool>(handler); }

    /// What is scheduled now; absent for nothing.
    [[nodiscard]] std::optional<Foundation::Date> scheduled() const {
        return history.empty() ? std::nullopt : history.back();
    }

    /// Wakes as the real timer would; without a handler nothing happens.
    void wake(Wake wake) {
        if (handler) {
            handler(wake);
        }
    }

    std::vector<std::optional<Foundation::Date>> history;

private:
    std::function<void(Wake)> handler;
};

} // namespace Platform
