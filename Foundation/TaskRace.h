#pragma once

#include "Foundation/Task.h"

#include <cstdint>

namespace Foundation {

/// Runs `contender` against a timer of so many nanoseconds of the steady clock, cancels whichever loses and
/// awaits it. Whether the contender was first; how it ended, its error included, is its own affair. Throws
/// when the task that awaits this was cancelled and the timer felt it first.
Task<bool> outrunsTimer(Task<void> contender, std::uint64_t nanoseconds);

} // namespace Foundation
