#include "Applications/Widget/DesktopLooks.h"

#include <utility>

namespace Widget {

DesktopLooks::DesktopLooks(std::shared_ptr<Platform::Appearance const> appearance,
                           std::optional<Platform::ColorScheme> fixedScheme, Platform::MainLoop& mainLoop,
                           std::function<void()> onChange)
    : appearance(std::move(appearance)),
      fixedScheme(fixedScheme),
      mainLoop(mainLoop),
      onChange(std::move(onChange)),
      first(std::async(std::launch::async, [this] {
          return Looks{.scheme = this->appearance->colorScheme(), .accent = this->appearance->accentColor()};
      })) {}

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
    later = std::async(std::launch::async, [this] {
        Looks const answer{.scheme = appearance->colorScheme(), .accent = appearance->accentColor()};
        mainLoop.invoke([this, answer] {
            looks = answer;
            onChange();
        });
    });
}

DesktopLooks::Looks const& DesktopLooks::current() {
    if (!looks) {
        looks = first.get();
    }
    return *looks;
}

} // namespace Widget
