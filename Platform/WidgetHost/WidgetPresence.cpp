#include "Platform/WidgetHost/WidgetPresence.h"

#include "Platform/WidgetHost/BoundedBusConnection.h"
#include "Platform/WidgetHost/SessionBusWidgetCenter.h"
#include "Platform/WidgetHost/WidgetBus.h"

namespace Platform {

WidgetPresence widgetPresence(Foundation::Environment const& environment,
                              std::chrono::milliseconds patience) {
    auto const address = sessionBusAddress(environment);
    if (!address) {
        return WidgetPresence::noBus;
    }
    BoundedBusConnection const bus(*address, patience);
    auto const isRunning = bus.isOpen() ? bus.hasOwner(WidgetBus::applicationIdentifier) : std::nullopt;
    if (!isRunning) {
        return WidgetPresence::busUnreachable;
    }
    return *isRunning ? WidgetPresence::running : WidgetPresence::absent;
}

} // namespace Platform
