#pragma once

#include "Platform/WidgetHost/GLibSource.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace Platform {

/// Owns what is waited for and served like a BusSubscription, and has GLib's default main context do so. What it
/// calls from there must not destroy it.
template <typename Served>
class GLibServed final {
public:
    template <typename... Arguments>
    explicit GLibServed(Arguments&&... arguments) : served(std::forward<Arguments>(arguments)...) {
        await();
    }
    GLibServed(GLibServed const&) = delete;
    GLibServed& operator=(GLibServed const&) = delete;

private:
    void serve() {
        served.serve();
        await();
    }

    // What is waited for may be another thing after each serving.
    void await() {
        ready = {};
        due = {};
        auto const wait = served.wait();
        if (!wait) return;
        ready = GLibSource::whenReady(wait->descriptor, wait->events, [this] { serve(); });
        if (wait->until) due = GLibSource::afterDelay(millisecondsUntil(*wait->until), [this] { serve(); });
    }

    // Rounded up, so that the moment has come when the delay has passed.
    static unsigned millisecondsUntil(std::chrono::steady_clock::time_point moment) {
        using std::chrono::milliseconds;
        auto const left = std::chrono::ceil<milliseconds>(moment - std::chrono::steady_clock::now()).count();
        return static_cast<unsigned>(std::clamp<milliseconds::rep>(left, 0, 1'000'000));
    }

    Served served;
    GLibSource ready;
    GLibSource due;
};

} // namespace Platform
