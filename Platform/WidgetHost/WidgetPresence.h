#pragma once

#include "Foundation/Environment.h"

#include <chrono>
#include <cstdint>

namespace Platform {

/// What can be seen of a running widget from another process.
enum class WidgetPresence : std::uint8_t {
    noBus,          ///< No session bus runs: a widget may, unseen.
    busUnreachable, ///< The environment tells of one, which does not answer.
    absent,
    running,
};

/// Looks on the session bus, for at most `patience`.
WidgetPresence widgetPresence(Foundation::Environment const& environment,
                              std::chrono::milliseconds patience = std::chrono::milliseconds(2000));

} // namespace Platform
