#include "Platform/WidgetHost/LockListener.h"

#include "Platform/SessionBus/SessionLock.h"
#include "Platform/WidgetHost/GLibServed.h"

#include <utility>

namespace Platform {

struct LockListener::State {
    GLibServed<SessionLock> lock;
};

LockListener::LockListener(std::string const& systemBusAddress, std::function<void(bool isLocked)> changed)
    : state(new State{.lock = GLibServed<SessionLock>(systemBusAddress, std::move(changed))}) {}

LockListener::~LockListener() = default;

} // namespace Platform
