#include "Platform/Desktop/FaceRows.h"

#include "Platform/Desktop/Signal.h"
#include "Platform/Desktop/UndrawnButton.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <variant>

namespace Platform {

FaceRows::FaceRows(GtkWidget* container, std::function<void(std::size_t row)> open)
    : container(container),
      open(std::move(open)) {
    atk_object_set_role(gtk_widget_get_accessible(container), ATK_ROLE_LIST);
}

void FaceRows::show(FaceLayout const& layout, FaceGeometry const& geometry) {
    layoutRows = layout.rows.size();
    auto rows = rowsOf(layout, geometry);
    if (shows(rows)) {
        return;
    }
    auto const before = meets();
    auto const focused =
        std::ranges::find_if(before, [](GtkWidget* meet) { return gtk_widget_is_focus(meet) != FALSE; });
    auto const place = focused - before.begin();
    bool const hadFocus = focused != before.end();

    for (auto const& [row, widget] : std::exchange(shown, {})) {
        gtk_widget_destroy(widget);
    }
    for (auto& row : rows) {
        add(std::move(row));
    }
    auto const after = meets();
    if (hadFocus && !after.empty()) {
        gtk_widget_grab_focus(after[std::min(static_cast<std::size_t>(place), after.size() - 1)]);
    }
}

std::vector<FaceButtonState> FaceRows::states() const {
    std::vector<FaceButtonState> states(layoutRows);
    for (auto const& [row, widget] : shown) {
        if (row.kind == Row::Kind::meet) {
            states[row.index] = stateOf(widget);
        }
    }
    return states;
}

std::vector<FaceRows::Row> FaceRows::rowsOf(FaceLayout const& layout, FaceGeometry const& geometry) {
    std::vector<Row> rows;
    for (auto const& placed : geometry.rows) {
        if (placed.accessibleName.empty()) {
            continue;
        }
        auto const& row = layout.rows[placed.index];
        auto kind = Row::Kind::label;
        if (std::holds_alternative<HeaderRow>(row)) {
            kind = Row::Kind::heading;
        } else if (std::holds_alternative<BarRow>(row) || std::holds_alternative<CardRow>(row)) {
            kind = Row::Kind::meet;
        }
        rows.push_back(
            {.kind = kind, .index = placed.index, .name = placed.accessibleName, .frame = placed.frame});
    }
    return rows;
}

bool FaceRows::shows(std::vector<Row> const& rows) const {
    return std::ranges::equal(shown, rows, {}, &ShownRow::row);
}

void FaceRows::add(Row row) {
    GtkWidget* const widget = makeWidget(row);
    atk_object_set_name(gtk_widget_get_accessible(widget), row.name.c_str());
    gtk_widget_set_size_request(widget, static_cast<int>(std::lround(row.frame.width)),
                                static_cast<int>(std::lround(row.frame.height)));
    // Added as to any container: only that tells a screen reader.
    gtk_container_add(GTK_CONTAINER(container), widget);
    gtk_fixed_move(GTK_FIXED(container), widget, static_cast<int>(std::lround(row.frame.x)),
                   static_cast<int>(std::lround(row.frame.y)));
    gtk_widget_show(widget);
    shown.push_back({.row = std::move(row), .widget = widget});
}

GtkWidget* FaceRows::makeWidget(Row const& row) {
    GtkWidget* const widget = row.kind == Row::Kind::meet ? makeMeetButton(row.index) : gtk_fixed_new();
    auto* const accessible = gtk_widget_get_accessible(widget);
    switch (row.kind) {
    case Row::Kind::heading: atk_object_set_role(accessible, ATK_ROLE_HEADING); break;
    case Row::Kind::label: atk_object_set_role(accessible, ATK_ROLE_LABEL); break;
    case Row::Kind::meet: atk_object_set_role(accessible, ATK_ROLE_LIST_ITEM); break;
    }
    return widget;
}

GtkWidget* FaceRows::makeMeetButton(std::size_t index) {
    GtkWidget* const button = makeUndrawnButton();
    // The window can be dragged by its rows, too.
    gtk_widget_add_events(button, GDK_BUTTON1_MOTION_MASK);
    connectSignal<void()>(button, "clicked", [this, index] { open(index); });
    connectSignal<void(GtkStateFlags)>(button, "state-flags-changed",
                                       [this](GtkStateFlags) { gtk_widget_queue_draw(container); });
    return button;
}

std::vector<GtkWidget*> FaceRows::meets() const {
    std::vector<GtkWidget*> buttons;
    for (auto const& [row, widget] : shown) {
        if (row.kind == Row::Kind::meet) {
            buttons.push_back(widget);
        }
    }
    return buttons;
}

} // namespace Platform
