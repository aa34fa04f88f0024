#pragma once

#include "Applications/Companion/Invocation.h"

namespace Companion {

/// Shows a day as `showDay` does, and with all that needs large libraries: as pictures, and with the
/// backend's meets.
ExitCode showWholeDay(Invocation const& invocation);

} // namespace Companion
