#pragma once

#include "Platform/Face/FacePainter.h"

#include <gtk/gtk.h>

namespace Platform {

/// A button that draws nothing and has no size of its own: the face under it shows its state. It is a real
/// button for the pointer, the keyboard and a screen reader. The reference is floating.
GtkWidget* makeUndrawnButton();

/// How the pointer and the keyboard meet the button just now.
FaceButtonState stateOf(GtkWidget* button);

} // namespace Platform
