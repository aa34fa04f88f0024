#include "Platform/Desktop/ConsentDialog.h"

#include "Platform/Desktop/Signal.h"

#include <gtk/gtk.h>

#include <utility>

namespace Platform {

ConsentDialog::ConsentDialog(MainLoop& mainLoop, ConsentDialogTexts texts)
    : mainLoop(mainLoop),
      texts(std::move(texts)),
      self(std::make_shared<ConsentDialog*>(this)) {}

ConsentDialog::~ConsentDialog() {
    withdraw();
}

void ConsentDialog::withdraw() {
    if (dialog != nullptr) {
        gtk_widget_destroy(std::exchange(dialog, nullptr));
    }
    static_cast<void>(takeAnswer());
    askAnew();
}

Foundation::Task<ConsentAnswer> ConsentDialog::ask() {
    if (auto const given = takeAnswer()) {
        co_return *given;
    }
    mainLoop.invoke([weak = std::weak_ptr(self)] {
        // Looked at on the loop's thread, where the dialog also ends: it cannot go in between.
        if (auto const asked = weak.lock()) {
            (*asked)->open();
        }
    });
    co_return ConsentAnswer::unavailable;
}

std::optional<ConsentAnswer> ConsentDialog::takeAnswer() {
    std::scoped_lock const lock(mutex);
    return std::exchange(answer, std::nullopt);
}

bool ConsentDialog::hasAnswer() {
    std::scoped_lock const lock(mutex);
    return answer.has_value();
}

void ConsentDialog::open() {
    // One question at a time, and none after one that was closed without an answer: each reload of the day
    // would put it again. The answer may have come while this was on its way.
    if (dialog != nullptr || wasClosed || hasAnswer()) {
        return;
    }
    dialog = gtk_message_dialog_new(nullptr, GtkDialogFlags{}, GTK_MESSAGE_QUESTION, GTK_BUTTONS_NONE, "%s",
                                    texts.question.c_str());
    gtk_message_dialog_format_secondary_text(GTK_MESSAGE_DIALOG(dialog), "%s", texts.explanation.c_str());
    gtk_window_set_title(GTK_WINDOW(dialog), texts.title.c_str());
    gtk_window_set_position(GTK_WINDOW(dialog), GTK_WIN_POS_CENTER);
    // The first button has the keyboard from the start: a key meant for another window must not allow.
    gtk_dialog_add_button(GTK_DIALOG(dialog), texts.no.c_str(), GTK_RESPONSE_NO);
    gtk_dialog_add_button(GTK_DIALOG(dialog), texts.yes.c_str(), GTK_RESPONSE_YES);
    connectSignal<void(gint)>(dialog, "response", [this](gint response) { finish(response); });
    gtk_window_present(GTK_WINDOW(dialog));
}

void ConsentDialog::finish(int response) {
    gtk_widget_destroy(std::exchange(dialog, nullptr));
    if (response != GTK_RESPONSE_YES && response != GTK_RESPONSE_NO) {
        wasClosed = true;
        return;
    }
    {
        std::scoped_lock const lock(mutex);
        answer = response == GTK_RESPONSE_YES ? ConsentAnswer::yes : ConsentAnswer::no;
    }
    if (answered) {
        answered();
    }
}

} // namespace Platform
