#pragma once

#include "Platform/WidgetHost/GLibSource.h"

#include <glib.h>

#include <functional>

/// Drives GLib's default main context on the calling thread.
namespace LoopDriver {

/// Serves the context until `condition` holds; yields whether it did within a minute.
inline bool runUntil(std::function<bool()> const& condition) {
    bool isLate = false;
    auto const guard = Platform::GLibSource::afterDelay(60'000, [&isLate] { isLate = true; });
    while (!condition() && !isLate) {
        g_main_context_iteration(nullptr, TRUE);
    }
    return condition();
}

/// Serves whatever is ready now, without waiting.
inline void runPending() {
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
    }
}

} // namespace LoopDriver
