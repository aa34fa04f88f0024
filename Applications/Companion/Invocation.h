#pragma once

#include "Applications/Companion/CommandLine.h"
#include "Applications/Companion/Console.h"
#include "Foundation/Environment.h"

namespace Companion {

/// What a command is given: its values, where to write, and the environment as it stood at the start.
struct Invocation {
    ArgumentValues const& values;
    Console const& console;
    Foundation::Environment const& environment;
};

} // namespace Companion
