#pragma once

#include <string>

namespace Manual {

/// The completion for fish.
std::string fishCompletion();

} // namespace Manual
