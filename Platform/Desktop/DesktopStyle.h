#pragma once

#include "Platform/Appearance/ColorScheme.h"
#include "Platform/Face/FacePainter.h"

namespace Platform {

/// The looks that the toolkit's settings name: the interface font and the language. The accent colour is not
/// among them. The display has to be open.
FaceStyle desktopStyle();

/// Has menus and dialogs drawn in the scheme of the face from now on, as far as the person's theme has it.
void preferScheme(ColorScheme scheme);

} // namespace Platform
