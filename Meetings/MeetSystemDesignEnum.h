#pragma once

#include "Platform/Appearance/Appearance.h"

#include <string_view>

/// The colour of a meet whose calendar has none.
namespace Meetings::MeetSystemDesignEnum {

/// "#4FA8AC" on a dark desktop, "#5CC2C6" on a light one or where no desktop answers. Asked anew at every
/// read.
std::string_view defaultColorHex(Platform::Appearance const& appearance);

} // namespace Meetings::MeetSystemDesignEnum
