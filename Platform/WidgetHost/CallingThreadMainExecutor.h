#pragma once

#include "Platform/WidgetHost/MainExecutor.h"

namespace Platform {

/// For a program without a main loop: whichever thread calls counts as the main one.
class CallingThreadMainExecutor final : public MainExecutor {
public:
    [[nodiscard]] bool isMainThread() const override { return true; }
    void runAndWait(std::function<void()> const& work) override { work(); }
};

} // namespace Platform
