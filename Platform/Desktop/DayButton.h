#pragma once

#include <gtk/gtk.h>

namespace Platform {

/// A button that draws nothing and has no size of its own: the face under it shows its state. It is a real
/// button for the pointer, the keyboard and a screen reader. The reference is floating.
GtkWidget* makeDayButton();

} // namespace Platform
