#include "Platform/Desktop/WindowPlace.h"

#include <algorithm>
#include <cstdint>

namespace Platform {

namespace {

WindowPlace within(ScreenArea const& area, WindowPlace place, int width, int height) {
    auto const along = [](int wanted, int start, int length, int needed) {
        return std::clamp(wanted, start, std::max(start, start + length - needed));
    };
    return {.x = along(place.x, area.x, area.width, width), .y = along(place.y, area.y, area.height, height)};
}

std::int64_t squaredDistance(WindowPlace from, WindowPlace to) {
    auto const across = std::int64_t{to.x} - from.x;
    auto const down = std::int64_t{to.y} - from.y;
    return across * across + down * down;
}

} // namespace

WindowPlace broughtOnScreen(WindowPlace place, int width, int height, std::vector<ScreenArea> const& areas) {
    if (areas.empty()) {
        return place;
    }
    std::vector<WindowPlace> candidates;
    candidates.reserve(areas.size());
    for (auto const& area : areas) {
        candidates.push_back(within(area, place, width, height));
    }
    return *std::ranges::min_element(
        candidates, {}, [&](WindowPlace candidate) { return squaredDistance(place, candidate); });
}

} // namespace Platform
