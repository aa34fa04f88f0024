#pragma once

#include <functional>
#include <memory>
#include <string>

namespace Platform {

/// Hears whether the person's login session is locked, on GLib's default main context; see SessionLock.
class LockListener final {
public:
    LockListener(std::string const& systemBusAddress, std::function<void(bool isLocked)> changed);
    LockListener(LockListener const&) = delete;
    LockListener& operator=(LockListener const&) = delete;
    ~LockListener();

private:
    struct State;
    std::unique_ptr<State> state;
};

} // namespace Platform
