#include "Platform/WidgetHost/SessionBusWidgetCenter.h"

#include "Platform/SessionBus/BusConnection.h"
#include "Platform/SessionBus/SessionBusAddress.h"
#include "Platform/WidgetHost/WidgetBus.h"

namespace Platform {

SessionBusWidgetCenter::SessionBusWidgetCenter(Foundation::Environment const& environment)
    : address(sessionBusAddress(environment)) {}

void SessionBusWidgetCenter::reloadAllTimelines() {
    if (!address) return;
    auto const deadline = std::chrono::steady_clock::now() + patience;
    auto bus = BusConnection::open(*address, deadline);
    if (bus) bus->emit(WidgetBus::reloadSignal, deadline);
}

} // namespace Platform
