#pragma once

#include "Platform/Desktop/WindowPlace.h"
#include "Platform/Desktop/WindowPlacement.h"

#include <gtk/gtk.h>

namespace Platform {

/// Prepares a window that has not been shown yet for its place.
void placeWindow(GtkWindow* window, WindowPlacement placement);

/// Whether the person can drag the window; surfaces that a compositor keeps at an edge cannot be.
bool canMove(GtkWindow* window);

/// Whether a program says where its windows stand, and knows it.
bool canPlace(GtkWindow* window);

/// Moves a window of this size to the place, or to the nearest one at which it is wholly on a screen.
void moveOnScreen(GtkWindow* window, WindowPlace place, int width, int height);

/// The place to give moveOnScreen() so that a window comes to stand where this one does.
WindowPlace placeOf(GtkWindow* window);

/// Cuts a realized window to a rectangle with round corners, for pictures and for the pointer.
void cutCorners(GtkWidget* window, int width, int height, double radius);

} // namespace Platform
