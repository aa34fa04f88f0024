#pragma once

#include <cstdint>

namespace Platform {

enum class ColorScheme : std::uint8_t { light, dark };

} // namespace Platform
