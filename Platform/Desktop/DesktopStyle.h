#pragma once

#include "Platform/Face/FacePainter.h"

namespace Platform {

/// The looks that the toolkit's settings name: the interface font and the language. The accent colour is not
/// among them. The display has to be open.
FaceStyle desktopStyle();

} // namespace Platform
