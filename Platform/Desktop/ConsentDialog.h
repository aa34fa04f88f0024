#pragma once

#include "Platform/EventStore/ConsentPrompt.h"
#include "Platform/WidgetHost/MainLoop.h"

#include <functional>
#include <string>

struct _GtkWidget;

namespace Platform {

struct ConsentDialogTexts {
    std::string title;
    std::string question;
    std::string explanation;
    std::string yes;
    std::string no;
};

/// Asks for the calendars in a dialog. ask() may be awaited on any executor; the dialog runs on the main
/// loop, and the display has to be open by then. Closing it without an answer is no answer,
/// and every later question then is `unavailable` at once.
class ConsentDialog final : public ConsentPrompt {
public:
    ConsentDialog(MainLoop& mainLoop, ConsentDialogTexts texts);
    ConsentDialog(ConsentDialog const&) = delete;
    ConsentDialog& operator=(ConsentDialog const&) = delete;

    ~ConsentDialog() override;

    Foundation::Task<ConsentAnswer> ask() override;

    /// Takes an open question back: who asked is ended without an answer. On the main loop's thread, before
    /// the executor of who asked ends.
    void abandon();

private:
    using Answered = std::move_only_function<void(ConsentAnswer)>;
    void open(Answered newAnswered);
    void finish(ConsentAnswer answer);

    MainLoop& mainLoop;
    ConsentDialogTexts texts;
    _GtkWidget* dialog = nullptr;
    Answered answered;
    bool wasClosed = false;
};

} // namespace Platform
