#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Platform {

/// Hears the reload requests that other processes send on the session bus. It connects in the background;
/// requests that were sent before are not heard.
class ReloadListener final {
public:
    /// `onRequest` is called on GLib's default main context; it must not destroy the listener. `busAddress`
    /// is the session bus's; without one nothing is heard, and none is started.
    ReloadListener(std::optional<std::string> const& busAddress, std::function<void()> onRequest);
    ReloadListener(ReloadListener const&) = delete;
    ReloadListener& operator=(ReloadListener const&) = delete;
    ~ReloadListener();

private:
    struct State;
    std::unique_ptr<State> state;
};

} // namespace Platform
