#pragma once

#include "Foundation/Environment.h"

#include <chrono>
#include <cstdint>

namespace Platform {

/// What can be seen of a service on the session bus.
enum class BusNameState : std::uint8_t {
    noBus,          ///< No session bus runs.
    busUnreachable, ///< The environment tells of one, which does not answer.
    absent,
    startable, ///< It does not run; the bus starts it when somebody calls it.
    owned,
};

/// Looks for the owner of a well-known name on the session bus, for at most `patience`, and starts nothing.
BusNameState busNameState(Foundation::Environment const& environment, char const* name,
                          std::chrono::milliseconds patience = std::chrono::milliseconds(2000));

} // namespace Platform
