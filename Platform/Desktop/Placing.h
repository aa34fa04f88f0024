#pragma once

#include "Platform/Desktop/WindowPlacement.h"

#include <gtk/gtk.h>

namespace Platform {

/// Prepares a window that has not been shown yet for its place.
void placeWindow(GtkWindow* window, WindowPlacement placement);

/// Whether the person can drag the window; surfaces that a compositor keeps at an edge cannot be.
bool canMove(GtkWindow* window);

/// Cuts a realized window to a rectangle with round corners, for pictures and for the pointer.
void cutCorners(GtkWidget* window, int width, int height, double radius);

} // namespace Platform
