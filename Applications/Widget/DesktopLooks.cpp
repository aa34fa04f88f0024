#include "Applications/Widget/DesktopLooks.h"

#include <utility>

namespace Widget {

DesktopLooks::DesktopLooks(std::shared_ptr<Platform::Appearance const> appearance,
                           std::optional<Platform::ColorScheme> fixedScheme, Platform::MainLoop& mainLoop,
                           std::function<void()> onChange, std::chrono::milliseconds patience)
    : appearance(std::move(appearance)),
      fixedScheme(fixedScheme),
      mainLoop(mainLoop),
      onChange(std::move(onChange)),
      patience(patience) {
    askAgain();
}

Platform::ColorScheme DesktopLooks::colorScheme() {
    return fixedScheme.value_or(current().scheme.value_or(Platform::ColorScheme::light));
}

std::optional<Platform::SRGBColor> DesktopLooks::accentColor() {
    return current().accent.transform([](auto const& channels) {
        return Platform::SRGBColor{.red = channels[0], .green = channels[1], .blue = channels[2]};
    });
}

void DesktopLooks::askAgain() {
    // Waits for a question that is still open; it was about looks that have changed since.
    question = std::async(std::launch::async, [this] {
        Looks answer{.scheme = appearance->colorScheme(), .accent = std::nullopt};
        if (answer.scheme) {
            // A desktop that did not answer the first question is not asked a second one.
            answer.accent = appearance->accentColor();
        }
        mainLoop.invoke([this, answer] { arrived(answer); });
        return answer;
    });
}

DesktopLooks::Looks const& DesktopLooks::current() {
    if (!looks) {
        bool const hasAnswered = question.wait_for(patience) == std::future_status::ready;
        looks = hasAnswered ? question.get() : Looks{};
    }
    return *looks;
}

void DesktopLooks::arrived(Looks const& answer) {
    bool const isNew = looks && *looks != answer;
    looks = answer;
    if (isNew) {
        onChange();
    }
}

} // namespace Widget
