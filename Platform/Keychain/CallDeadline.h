#pragma once

#include "Platform/Keychain/SecretServiceHandles.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <stop_token>
#include <thread>

namespace Platform {

/// Cancels the calls of one operation once they have taken too long together, or once it is given up. Waits
/// on a thread of its own, since the calls block theirs.
class CallDeadline {
public:
    CallDeadline(std::chrono::milliseconds limit, std::stop_token const& givenUp)
        : cancellable(g_cancellable_new()),
          end(std::chrono::steady_clock::now() + limit),
          givingUp(givenUp, [handle = cancellable.get()] { g_cancellable_cancel(handle); }),
          watch([this] { wait(); }) {}
    ~CallDeadline() {
        {
            std::scoped_lock const lock(mutex);
            isOver = true;
        }
        changed.notify_one();
        watch.join();
    }
    CallDeadline(CallDeadline const&) = delete;
    CallDeadline& operator=(CallDeadline const&) = delete;

    /// Grants more time, as where a person is asked.
    void extendTo(std::chrono::milliseconds limit) {
        {
            std::scoped_lock const lock(mutex);
            end = std::chrono::steady_clock::now() + limit;
        }
        changed.notify_one();
    }

    [[nodiscard]] GCancellable* get() const { return cancellable.get(); }
    [[nodiscard]] bool hasPassed() const { return g_cancellable_is_cancelled(cancellable.get()) != FALSE; }

private:
    void wait() {
        std::unique_lock lock(mutex);
        while (!isOver) {
            // A copy: the wait would otherwise read a member that another thread may change.
            auto const until = end;
            if (until <= std::chrono::steady_clock::now()) {
                lock.unlock();
                g_cancellable_cancel(cancellable.get());
                return;
            }
            changed.wait_until(lock, until);
        }
    }

    SecretServiceHandles::Owned<GCancellable> cancellable;
    std::mutex mutex;
    std::condition_variable changed;
    bool isOver = false;
    std::chrono::steady_clock::time_point end;
    std::stop_callback<std::function<void()>> givingUp;
    std::thread watch; // Last: it uses everything above.
};

} // namespace Platform
