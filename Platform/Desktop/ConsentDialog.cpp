#include "Platform/Desktop/ConsentDialog.h"

#include "Platform/Desktop/Signal.h"

#include <boost/asio/associated_executor.hpp>
#include <boost/asio/async_result.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <gtk/gtk.h>

#include <utility>

namespace Platform {

ConsentDialog::ConsentDialog(MainLoop& mainLoop, ConsentDialogTexts texts)
    : mainLoop(mainLoop),
      texts(std::move(texts)) {}

ConsentDialog::~ConsentDialog() {
    abandon();
}

void ConsentDialog::abandon() {
    if (dialog != nullptr) {
        gtk_widget_destroy(std::exchange(dialog, nullptr));
    }
    // Who asked may own this dialog, and is owned by what is let go of here.
    auto const dropped = std::exchange(answered, nullptr);
}

Foundation::Task<ConsentAnswer> ConsentDialog::ask() {
    using Token = decltype(boost::asio::use_awaitable);
    auto initiation = [this](auto handler) {
        // The answer is given on the main loop and has to travel back to where the question was asked.
        Answered resume = [handler = std::move(handler)](ConsentAnswer answer) mutable {
            auto const executor = boost::asio::get_associated_executor(handler);
            boost::asio::post(executor,
                              [handler = std::move(handler), answer]() mutable { handler(answer); });
        };
        mainLoop.invoke([this, resume = std::move(resume)]() mutable { open(std::move(resume)); });
    };
    auto const answer = co_await boost::asio::async_initiate<Token, void(ConsentAnswer)>(
        initiation, boost::asio::use_awaitable);
    co_return answer;
}

void ConsentDialog::open(Answered newAnswered) {
    if (dialog != nullptr || wasClosed) {
        // One question at a time, and none after one that was closed without an answer: each reload of the
        // day would put it again.
        newAnswered(ConsentAnswer::unavailable);
        return;
    }
    answered = std::move(newAnswered);
    dialog = gtk_message_dialog_new(nullptr, GtkDialogFlags{}, GTK_MESSAGE_QUESTION, GTK_BUTTONS_NONE, "%s",
                                    texts.question.c_str());
    gtk_message_dialog_format_secondary_text(GTK_MESSAGE_DIALOG(dialog), "%s", texts.explanation.c_str());
    gtk_window_set_title(GTK_WINDOW(dialog), texts.title.c_str());
    gtk_window_set_position(GTK_WINDOW(dialog), GTK_WIN_POS_CENTER);
    gtk_dialog_add_button(GTK_DIALOG(dialog), texts.no.c_str(), GTK_RESPONSE_NO);
    gtk_dialog_add_button(GTK_DIALOG(dialog), texts.yes.c_str(), GTK_RESPONSE_YES);
    connectSignal<void(gint)>(dialog, "response", [this](gint response) {
        switch (response) {
        case GTK_RESPONSE_YES: finish(ConsentAnswer::yes); break;
        case GTK_RESPONSE_NO: finish(ConsentAnswer::no); break;
        default:
            wasClosed = true;
            finish(ConsentAnswer::unavailable);
            break;
        }
    });
    gtk_window_present(GTK_WINDOW(dialog));
}

void ConsentDialog::finish(ConsentAnswer answer) {
    gtk_widget_destroy(std::exchange(dialog, nullptr));
    std::exchange(answered, nullptr)(answer);
}

} // namespace Platform
