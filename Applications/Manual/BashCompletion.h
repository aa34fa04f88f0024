#pragma once

#include <string>

namespace Manual {

/// The completion for bash, 4.4 or later. It needs no other package.
std::string bashCompletion();

} // namespace Manual
