#include "Platform/Desktop/FaceContainer.h"

#include "Platform/Desktop/GObjectReference.h"

#include <gtk/gtk-a11y.h>

#include <cmath>
#include <utility>

// The object system's way of making types is a C one: plain structures whose memory it owns, filled by
// functions with fixed names. Everything C++ hangs on one pointer in each of them.
namespace Platform {

namespace {

AtkRole roleOf(AccessibleRow::Kind kind) {
    switch (kind) {
    case AccessibleRow::Kind::heading: return ATK_ROLE_HEADING;
    case AccessibleRow::Kind::label: return ATK_ROLE_LABEL;
    case AccessibleRow::Kind::item: return ATK_ROLE_LIST_ITEM;
    }
    return ATK_ROLE_UNKNOWN;
}

// --- One row -------------------------------------------------------------------------------------------

struct RowAccessible {
    AtkObject parent;
    GtkWidget* container; // Not owned; null once the row is no longer shown.
    FaceRect frame;
    int index; // Among all children of the container's accessible.
};

struct RowAccessibleClass {
    AtkObjectClass parent;
};

void implementComponent(AtkComponentIface* interface);

G_DEFINE_TYPE_WITH_CODE(RowAccessible, quillora_row_accessible, ATK_TYPE_OBJECT,
                        G_IMPLEMENT_INTERFACE(ATK_TYPE_COMPONENT, implementComponent))

RowAccessible* asRow(gpointer object) {
    return static_cast<RowAccessible*>(object);
}

int rowIndexInParent(AtkObject* object) {
    return asRow(object)->index;
}

AtkStateSet* rowStates(AtkObject* object) {
    AtkStateSet* const states = ATK_OBJECT_CLASS(quillora_row_accessible_parent_class)->ref_state_set(object);
    GtkWidget* const container = asRow(object)->container;
    if (container == nullptr) {
        atk_state_set_add_state(states, ATK_STATE_DEFUNCT);
        return states;
    }
    atk_state_set_add_state(states, ATK_STATE_ENABLED);
    atk_state_set_add_state(states, ATK_STATE_SENSITIVE);
    if (gtk_widget_get_mapped(container) != FALSE) {
        atk_state_set_add_state(states, ATK_STATE_VISIBLE);
        atk_state_set_add_state(states, ATK_STATE_SHOWING);
    }
    return states;
}

void rowExtents(AtkComponent* component, gint* x, gint* y, gint* width, gint* height, AtkCoordType type) {
    auto const* const row = asRow(component);
    *x = *y = *width = *height = -1;
    if (row->container == nullptr) {
        return;
    }
    atk_component_get_extents(ATK_COMPONENT(gtk_widget_get_accessible(row->container)), x, y, width, height,
                              type);
    *x += static_cast<gint>(std::floor(row->frame.x));
    *y += static_cast<gint>(std::floor(row->frame.y));
    *width = static_cast<gint>(std::ceil(row->frame.width));
    *height = static_cast<gint>(std::ceil(row->frame.height));
}

void implementComponent(AtkComponentIface* interface) {
    interface->get_extents = rowExtents;
}

void quillora_row_accessible_class_init(RowAccessibleClass* type) {
    auto* const object = ATK_OBJECT_CLASS(type);
    object->get_index_in_parent = rowIndexInParent;
    object->ref_state_set = rowStates;
}

void quillora_row_accessible_init(RowAccessible*) {}

// --- The container -------------------------------------------------------------------------------------

struct FaceContainerState {
    std::vector<AccessibleRow> rows;
    std::vector<GObjectReference<RowAccessible>> accessibles; // Empty until somebody asks, then one a row.
};

struct FaceContainer {
    GtkFixed parent;
    FaceContainerState* state;
};

struct FaceContainerClass {
    GtkFixedClass parent;
};

G_DEFINE_TYPE(FaceContainer, quillora_face_container, GTK_TYPE_FIXED)

struct FaceContainerAccessible {
    GtkContainerAccessible parent;
};

struct FaceContainerAccessibleClass {
    GtkContainerAccessibleClass parent;
};

G_DEFINE_TYPE(FaceContainerAccessible, quillora_face_container_accessible, GTK_TYPE_CONTAINER_ACCESSIBLE)

AtkObjectClass* containerAccessibleParent() {
    return ATK_OBJECT_CLASS(quillora_face_container_accessible_parent_class);
}

FaceContainer* containerOf(AtkObject* object) {
    return reinterpret_cast<FaceContainer*>(gtk_accessible_get_widget(GTK_ACCESSIBLE(object))); // NOLINT
}

int buttonCount(AtkObject* object) {
    return containerAccessibleParent()->get_n_children(object);
}

void buildRows(AtkObject* object, FaceContainer* container) {
    auto& state = *container->state;
    if (!state.accessibles.empty()) {
        return;
    }
    int index = buttonCount(object);
    for (auto const& row : state.rows) {
        auto* const accessible = asRow(g_object_new(quillora_row_accessible_get_type(), nullptr));
        accessible->container = GTK_WIDGET(container);
        accessible->frame = row.frame;
        accessible->index = index++;
        atk_object_set_role(ATK_OBJECT(accessible), roleOf(row.kind));
        atk_object_set_name(ATK_OBJECT(accessible), row.name.c_str());
        atk_object_set_parent(ATK_OBJECT(accessible), object);
        state.accessibles.emplace_back(accessible);
    }
}

int childCount(AtkObject* object) {
    auto const* const container = containerOf(object);
    return container == nullptr ? 0 : buttonCount(object) + static_cast<int>(container->state->rows.size());
}

AtkObject* refChild(AtkObject* object, int index) {
    auto* const container = containerOf(object);
    if (container == nullptr || index < 0) {
        return nullptr;
    }
    int const buttons = buttonCount(object);
    if (index < buttons) {
        return containerAccessibleParent()->ref_child(object, index);
    }
    buildRows(object, container);
    auto const row = static_cast<std::size_t>(index - buttons);
    auto const& accessibles = container->state->accessibles;
    return row < accessibles.size() ? ATK_OBJECT(g_object_ref(accessibles[row].get())) : nullptr;
}

void initializeAccessible(AtkObject* object, gpointer widget) {
    containerAccessibleParent()->initialize(object, widget);
    atk_object_set_role(object, ATK_ROLE_LIST); // The toolkit's own would be that of a panel.
}

void quillora_face_container_accessible_class_init(FaceContainerAccessibleClass* type) {
    auto* const object = ATK_OBJECT_CLASS(type);
    object->initialize = initializeAccessible;
    object->get_n_children = childCount;
    object->ref_child = refChild;
}

void quillora_face_container_accessible_init(FaceContainerAccessible*) {}

void forgetRows(FaceContainerState& state) {
    for (auto const& accessible : state.accessibles) {
        accessible->container = nullptr;
        atk_object_notify_state_change(ATK_OBJECT(accessible.get()), ATK_STATE_DEFUNCT, TRUE);
    }
    state.accessibles.clear();
}

void finalizeContainer(GObject* object) {
    auto* const container = reinterpret_cast<FaceContainer*>(object); // NOLINT
    forgetRows(*container->state);
    delete std::exchange(container->state, nullptr);
    G_OBJECT_CLASS(quillora_face_container_parent_class)->finalize(object);
}

void quillora_face_container_class_init(FaceContainerClass* type) {
    G_OBJECT_CLASS(type)->finalize = finalizeContainer;
    gtk_widget_class_set_accessible_type(GTK_WIDGET_CLASS(type),
                                         quillora_face_container_accessible_get_type());
}

void quillora_face_container_init(FaceContainer* container) {
    container->state = new FaceContainerState();
}

} // namespace

GtkWidget* makeFaceContainer() {
    return GTK_WIDGET(g_object_new(quillora_face_container_get_type(), nullptr));
}

void setAccessibleRows(GtkWidget* container, std::vector<AccessibleRow> rows) {
    auto& state = *reinterpret_cast<FaceContainer*>(container)->state; // NOLINT
    if (state.rows == rows) {
        return;
    }
    bool const wasAskedFor = !state.accessibles.empty();
    AtkObject* const accessible = wasAskedFor ? gtk_widget_get_accessible(container) : nullptr;
    if (wasAskedFor) {
        int const buttons = buttonCount(accessible);
        for (auto index = static_cast<int>(state.accessibles.size()); index-- > 0;) {
            auto* const row = state.accessibles[static_cast<std::size_t>(index)].get();
            g_signal_emit_by_name(accessible, "children-changed::remove", buttons + index, row, nullptr);
        }
    }
    forgetRows(state);
    state.rows = std::move(rows);
    if (wasAskedFor) {
        buildRows(accessible, reinterpret_cast<FaceContainer*>(container)); // NOLINT
        for (auto const& row : state.accessibles) {
            g_signal_emit_by_name(accessible, "children-changed::add", row->index, row.get(), nullptr);
        }
    }
}

} // namespace Platform
