#pragma once

#include "Foundation/Environment.h"

#include <optional>
#include <string>

namespace Platform {

/// The address of the user's session bus, in the form of the D-Bus specification; absent where none runs. A
/// bus is never started for the question.
std::optional<std::string> sessionBusAddress(Foundation::Environment const& environment);

} // namespace Platform
