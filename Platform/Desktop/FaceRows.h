#pragma once

#include "Platform/Face/FaceGeometry.h"
#include "Platform/Face/FacePainter.h"

#include <gtk/gtk.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace Platform {

/// The rows of a face as widgets that draw nothing, since the face under them is painted whole. The row of a
/// meet is a button for the pointer and the keyboard, and an item of a list for a screen reader; the other
/// rows are there for the screen reader alone.
class FaceRows final {
public:
    /// `container` is a GtkFixed that outlives this; the rows stand behind what it holds already. `open`
    /// hears the place in the layout of a meet that the person wants opened.
    FaceRows(GtkWidget* container, std::function<void(std::size_t row)> open);
    FaceRows(FaceRows const&) = delete;
    FaceRows& operator=(FaceRows const&) = delete;

    /// Rows that differ in nothing stay the widgets they are. Where they differ all are new, and the keyboard
    /// stays at the same place among the meets.
    void show(FaceLayout const& layout, FaceGeometry const& geometry);

    /// One for each row of the layout.
    [[nodiscard]] std::vector<FaceButtonState> states() const;

private:
    struct Row {
        enum class Kind : std::uint8_t { heading, label, meet };
        Kind kind;
        std::size_t index; // In the layout.
        std::string name;
        FaceRect frame;

        bool operator==(Row const&) const = default;
    };
    struct ShownRow {
        Row row;
        GtkWidget* widget; // Owned by the container.
    };
    static std::vector<Row> rowsOf(FaceLayout const& layout, FaceGeometry const& geometry);
    [[nodiscard]] bool shows(std::vector<Row> const& rows) const;
    void add(Row row);
    GtkWidget* makeWidget(Row const& row);
    GtkWidget* makeMeetButton(std::size_t index);
    [[nodiscard]] std::vector<GtkWidget*> meets() const;

    GtkWidget* container;
    std::function<void(std::size_t)> open;
    std::vector<ShownRow> shown;
    std::size_t layoutRows = 0;
};

} // namespace Platform
