#pragma once

#include "Platform/WidgetHost/MainLoop.h"

#include <cstddef>
#include <deque>
#include <mutex>
#include <utility>

namespace Platform {

/// A main loop that runs its work when a test says so, on the thread that says so.
class QueuedMainLoop final : public MainLoop {
public:
    void invoke(std::move_only_function<void()> work) override {
        std::scoped_lock const lock(mutex);
        queue.push_back(std::move(work));
    }

    /// Runs what is queued, also what that work queues in turn; yields how many pieces ran.
    std::size_t runPending() {
        std::size_t count = 0;
        while (auto work = takeNext()) {
            work();
            ++count;
        }
        return count;
    }

private:
    std::move_only_function<void()> takeNext() {
        std::scoped_lock const lock(mutex);
        if (queue.empty()) {
            return nullptr;
        }
        auto work = std::move(queue.front());
        queue.pop_front();
        return work;
    }

    std::mutex mutex;
    std::deque<std::move_only_function<void()>> queue;
};

} // namespace Platform
