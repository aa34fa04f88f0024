#pragma once

#include <optional>
#include <vector>

namespace Platform {

/// A colour as its components stand in its own colour space. A calendar without a usable colour carries one
/// without components.
struct CGColor {
    std::optional<std::vector<double>> components;

    bool operator==(CGColor const&) const = default;
};

} // namespace Platform
