#pragma once

#include "Platform/Appearance/Appearance.h"
#include "Platform/EventStore/CGColor.h"

#include <string>

/// Colours as text.
namespace Meetings::CGColorHexUtil {

/// "#" and two upper-case hexadecimal digits a channel, from the colour's own components: cut, not rounded,
/// and not clamped, so a component above 1 yields more digits. A colour with fewer than three components
/// gives the default colour. A component that is not finite is a fatal error.
std::string hexString(Platform::CGColor const& color, Platform::Appearance const& appearance);

} // namespace Meetings::CGColorHexUtil
