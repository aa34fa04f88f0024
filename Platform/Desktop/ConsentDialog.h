#pragma once

#include "Platform/EventStore/ConsentPrompt.h"
#include "Platform/WidgetHost/MainLoop.h"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

struct _GtkWidget;

namespace Platform {

/// An underscore stands before the letter that presses a button with Alt.
struct ConsentDialogTexts {
    std::string title;
    std::string question;
    std::string explanation;
    std::string yes;
    std::string no;
};

/// Asks for the calendars in a dialog, and keeps nobody waiting for the answer: the first ask() opens the
/// dialog and is `unavailable`, as is every other one while the question stands. Once the person has
/// answered, the next ask() yields the answer, a single time. Closing the dialog is no answer, and nothing is
/// asked again until somebody wants it.
class ConsentDialog final : public ConsentPrompt {
public:
    ConsentDialog(MainLoop& mainLoop, ConsentDialogTexts texts);
    ConsentDialog(ConsentDialog const&) = delete;
    ConsentDialog& operator=(ConsentDialog const&) = delete;

    /// On the main loop's thread, as are all that follow but ask().
    ~ConsentDialog() override;

    /// On any executor. The display has to be open by the time the main loop runs.
    Foundation::Task<ConsentAnswer> ask() override;

    /// Is called when there is an answer for whoever asks next.
    void onAnswer(std::function<void()> newAnswered) { answered = std::move(newAnswered); }

    /// Takes the question back, and an answer that nobody fetched. The next ask() opens a dialog again.
    void withdraw();

    /// Lets the next ask() open a dialog even after one that was closed without an answer.
    void askAnew() { wasClosed = false; }

private:
    std::optional<ConsentAnswer> takeAnswer();
    bool hasAnswer();
    void open();
    void finish(int response);

    MainLoop& mainLoop;
    ConsentDialogTexts texts;
    std::function<void()> answered;
    _GtkWidget* dialog = nullptr;
    bool wasClosed = false;
    std::mutex mutex; ///< Guards the answer, which another thread fetches.
    std::optional<ConsentAnswer> answer;
    std::shared_ptr<ConsentDialog*> self;
};

} // namespace Platform
