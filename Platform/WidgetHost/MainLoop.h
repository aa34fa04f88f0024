#pragma once

#include <functional>

namespace Platform {

/// The one thread that owns the window and the host.
class MainLoop {
public:
    virtual ~MainLoop() = default;

    /// Queues `work` for the loop's thread and returns at once; it never runs within the call. Any thread may
    /// call. Work runs in the order in which one thread queued it; what is left when the loop ends is
    /// dropped.
    virtual void invoke(std::move_only_function<void()> work) = 0;
};

} // namespace Platform
