#include "Platform/Desktop/FaceMenu.h"

#include "Platform/Desktop/FaceWindow.h"
#include "Platform/Desktop/Signal.h"

namespace Platform {

namespace {

void append(GtkWidget* menu, GtkWidget* item) {
    gtk_menu_shell_append(GTK_MENU_SHELL(menu), item);
}

void appendAction(GtkWidget* menu, std::string const& text, std::function<void()> const& action) {
    GtkWidget* const item = gtk_menu_item_new_with_label(text.c_str());
    connectSignal<void()>(item, "activate", action);
    append(menu, item);
}

} // namespace

FaceMenu::FaceMenu(FaceWindowTexts const& texts, FaceWindowActions const& actions)
    : texts(std::make_unique<FaceWindowTexts>(texts)),
      actions(actions) {}

FaceMenu::~FaceMenu() {
    if (menu != nullptr) {
        gtk_widget_destroy(menu);
        g_object_unref(menu);
    }
}

void FaceMenu::setNotice(std::string const& text) {
    notice = text;
    if (menu != nullptr) {
        showNotice();
    }
}

void FaceMenu::showNotice() {
    GtkWidget* const label = gtk_bin_get_child(GTK_BIN(noticeItem));
    gtk_label_set_text(GTK_LABEL(label), notice.c_str());
    gtk_widget_set_visible(noticeItem, notice.empty() ? FALSE : TRUE);
    gtk_widget_set_visible(noticeLine, notice.empty() ? FALSE : TRUE);
}

void FaceMenu::popUp(GtkWidget* widget, GdkEvent const* event, WidgetFamily family) {
    if (menu == nullptr) {
        build(widget);
    }
    isMarking = true;
    for (auto const& [size, item] : sizes) {
        gtk_check_menu_item_set_active(GTK_CHECK_MENU_ITEM(item), size == family ? TRUE : FALSE);
    }
    isMarking = false;
    if (event != nullptr) {
        gtk_menu_popup_at_pointer(GTK_MENU(menu), event);
    } else {
        gtk_menu_popup_at_widget(GTK_MENU(menu), widget, GDK_GRAVITY_CENTER, GDK_GRAVITY_CENTER, nullptr);
    }
}

void FaceMenu::build(GtkWidget* widget) {
    menu = GTK_WIDGET(g_object_ref_sink(gtk_menu_new()));
    gtk_menu_attach_to_widget(GTK_MENU(menu), widget, nullptr);
    constexpr int widestNotice = 48; // Characters; a path or a cause may be long.
    noticeItem = gtk_menu_item_new_with_label("");
    GtkWidget* const noticeLabel = gtk_bin_get_child(GTK_BIN(noticeItem));
    gtk_label_set_line_wrap(GTK_LABEL(noticeLabel), TRUE);
    gtk_label_set_line_wrap_mode(GTK_LABEL(noticeLabel), PANGO_WRAP_WORD_CHAR);
    gtk_label_set_max_width_chars(GTK_LABEL(noticeLabel), widestNotice);
    gtk_widget_set_sensitive(noticeItem, FALSE);
    append(menu, noticeItem);
    noticeLine = gtk_separator_menu_item_new();
    append(menu, noticeLine);
    appendAction(menu, texts->today, actions.today);

    GtkWidget* const sizeMenu = gtk_menu_new();
    sizes = {{{WidgetFamily::systemSmall, nullptr},
              {WidgetFamily::systemMedium, nullptr},
              {WidgetFamily::systemLarge, nullptr}}};
    std::array<std::string const*, 3> const names{&texts->small, &texts->medium, &texts->large};
    GSList* group = nullptr;
    for (std::size_t index = 0; index < sizes.size(); ++index) {
        auto& [family, item] = sizes[index];
        item = gtk_radio_menu_item_new_with_label(group, names[index]->c_str());
        group = gtk_radio_menu_item_get_group(GTK_RADIO_MENU_ITEM(item));
        connectSignal<void()>(item, "toggled", [this, family, item] {
            if (!isMarking && gtk_check_menu_item_get_active(GTK_CHECK_MENU_ITEM(item)) != FALSE) {
                actions.chooseFamily(family);
            }
        });
        append(sizeMenu, item);
    }
    GtkWidget* const size = gtk_menu_item_new_with_label(texts->size.c_str());
    gtk_menu_item_set_submenu(GTK_MENU_ITEM(size), sizeMenu);
    append(menu, size);

    appendAction(menu, texts->reload, actions.reload);
    appendAction(menu, texts->calendarProgram, actions.openCalendarProgram);
    append(menu, gtk_separator_menu_item_new());
    appendAction(menu, texts->quit, actions.quit);
    gtk_widget_show_all(menu);
    showNotice();
}

} // namespace Platform
