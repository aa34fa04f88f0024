#pragma once

#include "Platform/Appearance/Appearance.h"
#include "Platform/Face/FaceLayout.h"
#include "Platform/WidgetHost/MainLoop.h"

#include <functional>
#include <future>
#include <memory>
#include <optional>

namespace Widget {

/// What the desktop says about its looks, asked off the window's thread: the first answer while the window is
/// being made, later ones when something has changed.
class DesktopLooks final {
public:
    /// Asks at once. `fixedScheme` stands in for the desktop's. `onChange` is called on the main loop's
    /// thread for every answer but the first.
    DesktopLooks(std::shared_ptr<Platform::Appearance const> appearance,
                 std::optional<Platform::ColorScheme> fixedScheme, Platform::MainLoop& mainLoop,
                 std::function<void()> onChange);
    DesktopLooks(DesktopLooks const&) = delete;
    DesktopLooks& operator=(DesktopLooks const&) = delete;

    /// Light where no desktop answers. The first call waits for the first answer.
    [[nodiscard]] Platform::ColorScheme colorScheme();

    /// As above; absent where the desktop has no accent colour.
    [[nodiscard]] std::optional<Platform::SRGBColor> accentColor();

    /// Asks anew; on the main loop's thread.
    void askAgain();

private:
    struct Looks {
        std::optional<Platform::ColorScheme> scheme;
        std::optional<std::array<double, 3>> accent;
    };
    Looks const& current();

    std::shared_ptr<Platform::Appearance const> appearance;
    std::optional<Platform::ColorScheme> fixedScheme;
    Platform::MainLoop& mainLoop;
    std::function<void()> onChange;
    std::optional<Looks> looks;
    std::future<Looks> first;
    std::future<void> later; // The last: what it runs uses the members above.
};

} // namespace Widget
