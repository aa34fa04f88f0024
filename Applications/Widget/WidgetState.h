#pragma once

#include "Platform/Desktop/WindowPlace.h"
#include "Platform/WidgetHost/WidgetFamily.h"

#include <optional>

namespace Widget {

/// How the widget was left. What is absent was never chosen.
struct WidgetState {
    std::optional<Platform::WidgetFamily> family;
    std::optional<Platform::WindowPlace> place;

    bool operator==(WidgetState const&) const = default;
};

} // namespace Widget
