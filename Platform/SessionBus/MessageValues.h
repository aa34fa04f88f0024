#pragma once

#include "Platform/SessionBus/BusValue.h"

#include <systemd/sd-bus.h>

#include <memory>
#include <optional>

/// What the library's messages hold. Only this folder's sources include it.
namespace Platform {

struct ReleaseMessage {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using BusMessage = std::unique_ptr<sd_bus_message, ReleaseMessage>;

/// What the library's function hands out through a pointer; null when it fails.
template <typename Make>
BusMessage madeMessage(Make const& make) {
    sd_bus_message* made = nullptr;
    if (make(&made) < 0) return nullptr;
    return BusMessage(made);
}

/// The first value of a message that was received; absent when it has none, or one of a kind that is not
/// read: a descriptor.
std::optional<BusValue> firstValue(sd_bus_message* message);

} // namespace Platform
