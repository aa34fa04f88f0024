#pragma once

#include <functional>

namespace Platform {

/// Hands work over to the main thread, for what may happen nowhere else.
class MainExecutor {
public:
    virtual ~MainExecutor() = default;

    /// Whether the calling thread is the main thread.
    [[nodiscard]] virtual bool isMainThread() const = 0;

    /// Runs `work` on the main thread and returns once it has ended; what it throws comes out here. Called
    /// from another thread: one that the main thread waits for would wait for ever. Ends the process when the
    /// work was dropped.
    virtual void runAndWait(std::function<void()> const& work) = 0;
};

} // namespace Platform
