#pragma once

#include "Foundation/Locale.h"
#include "Platform/Appearance/Appearance.h"
#include "Platform/Face/FacePainter.h"

namespace Companion {

/// How a picture of the day is drawn: in the desktop's interface font and accent colour, as far as it tells
/// them, and for readers of the locale's language.
Platform::FaceStyle pictureStyle(Platform::Appearance const& desktop, Foundation::Locale const& locale);

} // namespace Companion
