#pragma once

#include "Platform/Face/FaceLayout.h"

#include <string_view>

namespace WidgetExtension {

/// The opaque sRGB colour of six hexadecimal digits in either letter case; blanks around them and every "#"
/// are disregarded. Any other text is the desktop's accent colour.
Platform::FaceColor colorFromHex(std::string_view text);

} // namespace WidgetExtension
