#include "Platform/WidgetHost/BusNameState.h"

#include "Platform/WidgetHost/BoundedBusConnection.h"
#include "Platform/WidgetHost/SessionBusWidgetCenter.h"

namespace Platform {

BusNameState busNameState(Foundation::Environment const& environment, char const* name,
                          std::chrono::milliseconds patience) {
    auto const address = sessionBusAddress(environment);
    if (!address) return BusNameState::noBus;
    BoundedBusConnection const bus(*address, patience);
    auto const isOwned = bus.isOpen() ? bus.hasOwner(name) : std::nullopt;
    if (!isOwned) return BusNameState::busUnreachable;
    if (*isOwned) return BusNameState::owned;
    auto const isStartable = bus.isStartable(name);
    if (!isStartable) return BusNameState::busUnreachable;
    return *isStartable ? BusNameState::startable : BusNameState::absent;
}

} // namespace Platform
