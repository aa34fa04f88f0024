#pragma once

#include <cstdint>

namespace Platform {

/// How the window stands among the others.
enum class WindowPlacement : std::uint8_t {
    desktop, ///< On the desktop, below the other windows, on every workspace, in no list of windows.
    window,  ///< Among the others, without a frame; it is moved by dragging it.
};

} // namespace Platform
