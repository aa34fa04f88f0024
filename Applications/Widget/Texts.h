#pragma once

#include "Platform/Desktop/ConsentDialog.h"
#include "Platform/Desktop/FaceWindow.h"

#include <string>
#include <string_view>

/// The program's own words; those of the face come from the extension's string table.
namespace Widget::Texts {

inline constexpr char const* help =
    R"(Usage: quillora-widget [OPTIONS]

Shows the day's meets on the desktop.

  --family small|medium|large   the size of the face; large unless given
  --at MOMENT                   stand at this moment instead of the present, for example
                                2026-03-11T09:00, in an instance of its own
  --scheme light|dark|auto      the colours; auto, the default, follows the desktop
  --desktop                     stay on the desktop, below other windows; the default
  --window                      be a window among the others
  --print-first-frame           print the milliseconds from the program's start until the
                                day was first painted, for measurements
  --quit-after-first-frame      end then
  -h, --help                    print this and end
  --version                     print the version and end

Keys: Left and Right (or Page Up and Page Down) change the day, Home returns to today,
Ctrl+Q quits. The other mouse button opens a menu.

Exit codes: 0 done, 1 failed with the reason, 2 wrong use.
)";

inline constexpr char const* version = "quillora-widget " QUILLORA_VERSION "\n";

inline constexpr char const* noDisplay =
    "There is no display to open the window on, so nothing is shown; \"quillora day\" prints the day.";

inline constexpr char const* placementsExclude =
    "--window and --desktop exclude each other; give one of them.";

inline std::string quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

inline std::string wrongOption(std::string_view reason) {
    return std::string(reason.substr(0, reason.find('\n'))) + "; quillora-widget --help lists the options.";
}

inline std::string unknownWord(std::string_view word) {
    return quoted(word) + " is no option; quillora-widget --help lists them.";
}

inline std::string unknownFamily(std::string_view name) {
    return "There is no family " + quoted(name) + "; use small, medium or large.";
}

inline std::string unknownScheme(std::string_view name) {
    return "There is no colour scheme " + quoted(name) + "; use light, dark or auto.";
}

inline std::string unreadableMoment(std::string_view text) {
    return quoted(text) + " is no moment; write it like 2026-03-11T09:00 or 2026-03-11T08:00:00Z.";
}

inline Platform::FaceWindowTexts window() {
    return {
        .title = "Quillora",
        .today = "Today",
        .size = "Size",
        .small = "Small",
        .medium = "Medium",
        .large = "Large",
        .reload = "Reload",
        .quit = "Quit",
    };
}

inline Platform::ConsentDialogTexts consent() {
    return {
        .title = "Quillora",
        .question = "May Quillora read your calendars?",
        .explanation = "The widget shows their events. Nothing leaves this computer. \"quillora access\" "
                       "changes the answer later.",
        .yes = "Allow",
        .no = "Don't Allow",
    };
}

} // namespace Widget::Texts
