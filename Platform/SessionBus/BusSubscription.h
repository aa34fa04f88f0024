#pragma once

#include "Platform/SessionBus/BusConnection.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Platform {

/// Hears one signal of whoever sends it. It connects and listens without ever waiting; who owns it waits for
/// its descriptor, in whatever loop that is. For one thread.
class BusSubscription final {
public:
    /// Begins to connect. `heard` is called from `serve` for every signal that is sent once the bus has taken
    /// the subscription. Where `address` cannot be connected to, nothing is heard.
    BusSubscription(std::string const& address, BusSignal const& signal, std::function<void()> heard);
    BusSubscription(BusSubscription const&) = delete;
    BusSubscription& operator=(BusSubscription const&) = delete;
    ~BusSubscription();

    /// What to wait for: the descriptor, the events as `poll` names them, and the moment at which to serve
    /// without one. Each serving may change it. Absent when there is nothing more to hear.
    struct Wait {
        int descriptor;
        short events;
        std::optional<std::chrono::steady_clock::time_point> until;
    };
    [[nodiscard]] std::optional<Wait> wait() const;

    /// Does whatever can be done without waiting.
    void serve();

private:
    struct State;
    std::unique_ptr<State> state;
};

} // namespace Platform
