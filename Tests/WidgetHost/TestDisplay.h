#pragma once

#include <gtk/gtk.h>

#include <memory>
#include <string>
#include <vector>

/// A display of the test's own, and what a person or a screen reader finds on it.
namespace TestDisplay {

struct Unreference {
    void operator()(gpointer object) const { g_object_unref(object); }
};
using Accessible = std::unique_ptr<AtkObject, Unreference>;

/// One display for the process: the toolkit can be opened only once. Asserts that it is open.
void open();

/// All windows, hidden ones too, but the one that the toolkit keeps for tooltips: where the pointer stands is
/// nobody's wish here.
std::vector<GtkWidget*> toplevels();

std::string nameOf(Accessible const& accessible);
bool hasState(Accessible const& accessible, AtkStateType state);

/// All parts of a window that have this role.
std::vector<Accessible> parts(GtkWidget* window, AtkRole role);

/// What a screen reader does to press a button.
void press(Accessible const& button);

} // namespace TestDisplay
