#include "Platform/SessionBus/BusNameState.h"

#include "Platform/SessionBus/BusConnection.h"
#include "Platform/SessionBus/SessionBusAddress.h"

#include <algorithm>
#include <string_view>

namespace Platform {

namespace {

// The bus's own object (D-Bus specification, "Message Bus Messages").
BusMethod ofTheBus(char const* name) {
    return {.owner = "org.freedesktop.DBus",
            .objectPath = "/org/freedesktop/DBus",
            .interface = "org.freedesktop.DBus",
            .name = name};
}

bool isAmong(std::string_view name, std::vector<BusValue> const& names) {
    return std::ranges::any_of(names, [&](BusValue const& listed) {
        auto const* const text = listed.as<std::string>();
        return text != nullptr && *text == name;
    });
}

} // namespace

BusNameState busNameState(Foundation::Environment const& environment, char const* name,
                          std::chrono::milliseconds patience) {
    auto const address = sessionBusAddress(environment);
    if (!address) return BusNameState::noBus;
    auto const deadline = std::chrono::steady_clock::now() + patience;
    auto bus = BusConnection::open(*address, deadline);
    if (!bus) return BusNameState::busUnreachable;
    auto const owned = bus->call(ofTheBus("NameHasOwner"), {name}, deadline);
    auto const* const isOwned = owned ? owned->as<bool>() : nullptr;
    if (isOwned == nullptr) return BusNameState::busUnreachable;
    if (*isOwned) return BusNameState::owned;
    auto const startable = bus->call(ofTheBus("ListActivatableNames"), {}, deadline);
    auto const* const names = startable ? startable->as<std::vector<BusValue>>() : nullptr;
    if (names == nullptr) return BusNameState::busUnreachable;
    return isAmong(name, *names) ? BusNameState::startable : BusNameState::absent;
}

} // namespace Platform
