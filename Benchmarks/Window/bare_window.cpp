// The floor that the widget's window is measured against: an empty GTK 3 window of the large face's size.
// Says "first frame" when its first frame is painted, as quillora-widget does with the same options.

#include <gtk/gtk.h>

#include <cstdio>
#include <string_view>

namespace {

struct Options {
    bool printFirstFrame = false;
    bool quitAfterFirstFrame = false;
};

void onPainted(GdkFrameClock* clock, gpointer data) {
    g_signal_handlers_disconnect_by_data(clock, data);
    auto const& options = *static_cast<Options const*>(data);
    if (options.printFirstFrame) {
        std::puts("first frame");
        std::fflush(stdout);
    }
    if (options.quitAfterFirstFrame) gtk_main_quit();
}

void onRealized(GtkWidget* window, gpointer data) {
    g_signal_connect(gtk_widget_get_frame_clock(window), "after-paint", G_CALLBACK(onPainted), data);
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    for (int index = 1; index < argc; ++index) {
        options.printFirstFrame |= std::string_view(argv[index]) == "--print-first-frame";
        options.quitAfterFirstFrame |= std::string_view(argv[index]) == "--quit-after-first-frame";
    }
    gtk_init(nullptr, nullptr);
    GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_default_size(GTK_WINDOW(window), 364, 382);
    gtk_window_set_decorated(GTK_WINDOW(window), FALSE);
    g_signal_connect_after(window, "realize", G_CALLBACK(onRealized), &options);
    gtk_widget_show_all(window);
    gtk_main();
    return 0;
}
