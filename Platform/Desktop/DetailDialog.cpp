#include "Platform/Desktop/DetailDialog.h"

#include "Platform/Desktop/DesktopStyle.h"
#include "Platform/Desktop/Signal.h"

#include <gtk/gtk.h>

#include <memory>
#include <utility>

namespace Platform {

namespace {

// Points.
constexpr int margin = 12;
constexpr int frame = 6; // Around the page and the button below it.
constexpr int spacing = 8;
constexpr int greatestHeight = 420; // A page that needs more scrolls.

using Attributes = std::unique_ptr<PangoAttrList, decltype(&pango_attr_list_unref)>;

constexpr int lineWidth = 44; // Characters.

// No hyphens: where a long word or a link is broken, one would pass for a part of it.
Attributes looksOfLines() {
    Attributes looks(pango_attr_list_new(), pango_attr_list_unref);
    pango_attr_list_insert(looks.get(), pango_attr_insert_hyphens_new(FALSE));
    return looks;
}

Attributes looksOfTitles() {
    auto looks = looksOfLines();
    pango_attr_list_insert(looks.get(), pango_attr_weight_new(PANGO_WEIGHT_BOLD));
    pango_attr_list_insert(looks.get(), pango_attr_scale_new(PANGO_SCALE_LARGE));
    return looks;
}

GtkWidget* makeLine(std::string const& text, Attributes const& looks = looksOfLines()) {
    GtkWidget* const label = gtk_label_new(text.c_str());
    gtk_label_set_attributes(GTK_LABEL(label), looks.get());
    gtk_label_set_xalign(GTK_LABEL(label), 0);
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    gtk_label_set_line_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
    // Both, so that the height that is asked for is that of the width in the end.
    gtk_label_set_width_chars(GTK_LABEL(label), lineWidth);
    gtk_label_set_max_width_chars(GTK_LABEL(label), lineWidth);
    gtk_label_set_selectable(GTK_LABEL(label), TRUE);
    return label;
}

// As high as what it holds, up to a height from which on it scrolls.
GtkWidget* makeScroller(GtkWidget* content) {
    GtkWidget* const scroller = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scroller), GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_propagate_natural_height(GTK_SCROLLED_WINDOW(scroller), TRUE);
    gtk_scrolled_window_set_max_content_height(GTK_SCROLLED_WINDOW(scroller), greatestHeight);
    gtk_scrolled_window_set_propagate_natural_width(GTK_SCROLLED_WINDOW(scroller), TRUE);
    gtk_container_add(GTK_CONTAINER(scroller), content);
    return scroller;
}

} // namespace

DetailDialog::DetailDialog(DetailDialogTexts texts, std::function<void(Foundation::URL const&)> openLink)
    : texts(std::move(texts)),
      openLink(std::move(openLink)) {}

DetailDialog::~DetailDialog() {
    close();
}

void DetailDialog::show(DetailPage const& page, ColorScheme scheme) {
    close();
    preferScheme(scheme);
    build(page);
    gtk_window_present(GTK_WINDOW(dialog));
}

void DetailDialog::tell(std::string const& line) {
    if (dialog == nullptr) {
        return;
    }
    GtkWidget* const label = makeLine(line);
    gtk_container_add(GTK_CONTAINER(box), label);
    gtk_widget_show(label);
}

void DetailDialog::close() {
    if (dialog != nullptr) {
        gtk_widget_destroy(std::exchange(dialog, nullptr));
    }
}

void DetailDialog::build(DetailPage const& page) {
    dialog = gtk_dialog_new();
    gtk_window_set_title(GTK_WINDOW(dialog), page.title.c_str());
    gtk_window_set_resizable(GTK_WINDOW(dialog), FALSE);
    gtk_container_set_border_width(GTK_CONTAINER(dialog), frame);
    gtk_window_set_position(GTK_WINDOW(dialog), GTK_WIN_POS_MOUSE);

    box = gtk_box_new(GTK_ORIENTATION_VERTICAL, spacing);
    gtk_container_set_border_width(GTK_CONTAINER(box), margin);
    gtk_container_add(GTK_CONTAINER(box), makeLine(page.title, looksOfTitles()));
    for (auto const& line : page.lines) {
        gtk_container_add(GTK_CONTAINER(box), makeLine(line));
    }
    for (auto const& link : page.links) {
        addLink(link);
    }
    GtkWidget* const scroller = makeScroller(box);
    gtk_container_add(GTK_CONTAINER(gtk_dialog_get_content_area(GTK_DIALOG(dialog))), scroller);
    gtk_widget_show_all(scroller);

    // It has the keyboard from the start: whoever still holds the key that opened the page follows no link.
    gtk_widget_grab_focus(gtk_dialog_add_button(GTK_DIALOG(dialog), texts.close.c_str(), GTK_RESPONSE_CLOSE));
    connectSignal<void(gint)>(dialog, "response", [this](gint) { close(); });
}

void DetailDialog::addLink(DetailPage::Link const& link) {
    GtkWidget* const button = gtk_button_new_with_label(link.title.c_str());
    gtk_widget_set_halign(button, GTK_ALIGN_START);
    gtk_widget_set_tooltip_text(button, link.target.absoluteString.c_str());
    connectSignal<void()>(button, "clicked", [this, target = link.target] { openLink(target); });
    gtk_container_add(GTK_CONTAINER(box), button);
}

} // namespace Platform
