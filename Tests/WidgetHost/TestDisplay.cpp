#include "TestDisplay.h"

#include "DisplayServer.h"

#include "Platform/Desktop/Display.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <utility>

namespace TestDisplay {

namespace {

void collect(AtkObject* accessible, AtkRole role, std::vector<Accessible>& found) {
    for (int index = 0; index < atk_object_get_n_accessible_children(accessible); ++index) {
        Accessible child(atk_object_ref_accessible_child(accessible, index));
        collect(child.get(), role, found);
        if (atk_object_get_role(child.get()) == role) {
            found.push_back(std::move(child));
        }
    }
}

} // namespace

void open() {
    static DisplayServer const server;
    static bool const isOpen = [] {
        setenv("DISPLAY", server.name().c_str(), 1);
        setenv("GDK_BACKEND", "x11", 1);
        setenv("NO_AT_BRIDGE", "1", 1);
        return Platform::openDisplay(Foundation::Environment().setting("DISPLAY", server.name()),
                                     Platform::WindowPlacement::desktop);
    }();
    ASSERT_TRUE(isOpen);
}

std::vector<GtkWidget*> toplevels() {
    std::vector<GtkWidget*> windows;
    GList* const list = gtk_window_list_toplevels();
    for (GList* entry = list; entry != nullptr; entry = entry->next) {
        if (gtk_window_get_window_type(GTK_WINDOW(entry->data)) == GTK_WINDOW_TOPLEVEL) {
            windows.push_back(GTK_WIDGET(entry->data));
        }
    }
    g_list_free(list);
    return windows;
}

std::string nameOf(Accessible const& accessible) {
    char const* const name = atk_object_get_name(accessible.get());
    return name == nullptr ? "" : name;
}

bool hasState(Accessible const& accessible, AtkStateType state) {
    std::unique_ptr<AtkStateSet, Unreference> const states(atk_object_ref_state_set(accessible.get()));
    return atk_state_set_contains_state(states.get(), state) != FALSE;
}

std::vector<Accessible> parts(GtkWidget* window, AtkRole role) {
    std::vector<Accessible> found;
    collect(gtk_widget_get_accessible(window), role, found);
    return found;
}

void press(Accessible const& button) {
    ASSERT_TRUE(ATK_IS_ACTION(button.get()));
    EXPECT_TRUE(atk_action_do_action(ATK_ACTION(button.get()), 0));
}

} // namespace TestDisplay
