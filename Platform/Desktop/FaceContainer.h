#pragma once

#include "Platform/Face/FaceGeometry.h"

#include <gtk/gtk.h>

#include <cstdint>
#include <string>
#include <vector>

namespace Platform {

/// What a screen reader is told of one row of a face.
struct AccessibleRow {
    enum class Kind : std::uint8_t { heading, label, item };
    Kind kind;
    std::string name;
    FaceRect frame; ///< In the container's own coordinates.

    bool operator==(AccessibleRow const&) const = default;
};

/// A container for the face's buttons. Its accessible has the buttons as its first children and after them
/// the rows, which are no widgets. The reference is floating, as with every new widget.
GtkWidget* makeFaceContainer();

/// Replaces the rows; a screen reader is told if they differ.
void setAccessibleRows(GtkWidget* container, std::vector<AccessibleRow> rows);

} // namespace Platform
