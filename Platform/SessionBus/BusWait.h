#pragma once

#include "Platform/SessionBus/BusSubscription.h"

#include <systemd/sd-bus.h>

#include <optional>

/// Only this folder's sources include it.
namespace Platform {

/// What a connection waits for; absent where it is null, or no longer stands.
std::optional<BusSubscription::Wait> waitOf(sd_bus* connection);

} // namespace Platform
