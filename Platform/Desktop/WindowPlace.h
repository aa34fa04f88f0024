#pragma once

#include <vector>

namespace Platform {

/// Where a window's upper left corner stands, in points from that of all screens together.
struct WindowPlace {
    int x;
    int y;

    bool operator==(WindowPlace const&) const = default;
};

/// A part of what all screens show together, in points.
struct ScreenArea {
    int x;
    int y;
    int width;
    int height;
};

/// The place nearest to `place` from which a window of this size is wholly in one of the areas; `place`
/// itself where it is so already, or where there is no area. Of a window larger than an area the upper left
/// part is in it.
WindowPlace broughtOnScreen(WindowPlace place, int width, int height, std::vector<ScreenArea> const& areas);

} // namespace Platform
