#pragma once

#include "Foundation/Environment.h"
#include "Platform/Desktop/WindowPlacement.h"

namespace Platform {

/// Starts the window toolkit. False when no display answers. Called once, on the thread that runs the main
/// loop, before anything else of the desktop.
bool openDisplay(Foundation::Environment const& environment, WindowPlacement placement);

} // namespace Platform
