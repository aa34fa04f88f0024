#pragma once

#include "Foundation/Environment.h"
#include "Platform/SessionBus/BusSubscription.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Platform {

/// The address of the machine's own bus: DBUS_SYSTEM_BUS_ADDRESS, else the well-known one.
std::string systemBusAddress(Foundation::Environment const& environment);

/// Hears whether the person's login session is locked: the LockedHint that a desktop's screen lock gives the
/// session (org.freedesktop.login1). It connects, asks and listens without ever waiting, as a BusSubscription
/// does.
class SessionLock final {
public:
    /// Begins to connect. `changed` is called from `serve` with true when the session turns out to be locked
    /// or becomes so, and with false when it no longer is. It is never called where nobody tells: without
    /// such a bus, service or session. No service is started for the question.
    SessionLock(std::string const& systemBusAddress, std::function<void(bool isLocked)> changed);
    SessionLock(SessionLock const&) = delete;
    SessionLock& operator=(SessionLock const&) = delete;
    ~SessionLock();

    /// See BusSubscription.
    [[nodiscard]] std::optional<BusSubscription::Wait> wait() const;
    void serve();

private:
    struct State;
    std::unique_ptr<State> state;
};

} // namespace Platform
