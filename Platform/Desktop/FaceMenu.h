#pragma once

#include "Platform/WidgetHost/WidgetFamily.h"

#include <gtk/gtk.h>

#include <array>
#include <memory>
#include <string>
#include <utility>

namespace Platform {

struct FaceWindowActions;
struct FaceWindowTexts;

/// The window's context menu. It is built when it is first asked for.
class FaceMenu final {
public:
    /// `actions` has to outlive the menu.
    FaceMenu(FaceWindowTexts const& texts, FaceWindowActions const& actions);
    FaceMenu(FaceMenu const&) = delete;
    FaceMenu& operator=(FaceMenu const&) = delete;
    ~FaceMenu();

    /// Stands first in the menu, where it can be read and not chosen; empty for nothing.
    void setNotice(std::string const& text);

    /// Opens at the pointer of `event`, or in the middle of `widget` without one. `family` is marked.
    void popUp(GtkWidget* widget, GdkEvent const* event, WidgetFamily family);

private:
    void build(GtkWidget* widget);
    void showNotice();

    std::unique_ptr<FaceWindowTexts> texts;
    FaceWindowActions const& actions;
    std::string notice;
    GtkWidget* menu = nullptr;
    GtkWidget* noticeItem = nullptr;
    GtkWidget* noticeLine = nullptr;
    std::array<std::pair<WidgetFamily, GtkWidget*>, 3> sizes{};
    bool isMarking = false;
};

} // namespace Platform
