#include "Platform/WidgetHost/ReloadListener.h"

#include "Platform/SessionBus/BusSubscription.h"
#include "Platform/WidgetHost/GLibSource.h"
#include "Platform/WidgetHost/WidgetBus.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace Platform {

namespace {

// Rounded up, so that the moment has come when the delay has passed.
unsigned millisecondsUntil(std::chrono::steady_clock::time_point moment) {
    using std::chrono::milliseconds;
    auto const left = std::chrono::ceil<milliseconds>(moment - std::chrono::steady_clock::now()).count();
    return static_cast<unsigned>(std::clamp<milliseconds::rep>(left, 0, 1'000'000));
}

} // namespace

struct ReloadListener::State {
    State(std::string const& address, std::function<void()> onRequest)
        : subscription(address, WidgetBus::reloadSignal, std::move(onRequest)) {
        await();
    }

    void serve() {
        subscription.serve();
        await();
    }

    // What the subscription waits for may be another thing after each serving.
    void await() {
        ready = {};
        due = {};
        auto const wait = subscription.wait();
        if (!wait) return;
        ready = GLibSource::whenReady(wait->descriptor, wait->events, [this] { serve(); });
        if (wait->until) due = GLibSource::afterDelay(millisecondsUntil(*wait->until), [this] { serve(); });
    }

    BusSubscription subscription;
    GLibSource ready;
    GLibSource due;
};

ReloadListener::ReloadListener(std::optional<std::string> const& busAddress,
                               std::function<void()> onRequest) {
    if (busAddress) state = std::make_unique<State>(*busAddress, std::move(onRequest));
}

ReloadListener::~ReloadListener() = default;

} // namespace Platform
