#pragma once

#include "Platform/Appearance/Appearance.h"
#include "Platform/Face/FaceLayout.h"
#include "Platform/WidgetHost/MainLoop.h"

#include <array>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <optional>

namespace Widget {

/// What the desktop says about its looks, asked off the window's thread.
class DesktopLooks final {
public:
    /// How long the first picture waits for the first answer. A desktop that is just starting takes longer;
    /// its looks come in when it has answered.
    static constexpr std::chrono::milliseconds usualPatience{60};

    /// Asks at once. `fixedScheme` stands in for the desktop's. `onChange` is called on the main loop's
    /// thread when an answer differs from what was told before.
    DesktopLooks(std::shared_ptr<Platform::Appearance const> appearance,
                 std::optional<Platform::ColorScheme> fixedScheme, Platform::MainLoop& mainLoop,
                 std::function<void()> onChange, std::chrono::milliseconds patience = usualPatience);
    DesktopLooks(DesktopLooks const&) = delete;
    DesktopLooks& operator=(DesktopLooks const&) = delete;

    /// Light while no desktop has answered. The first call may wait.
    [[nodiscard]] Platform::ColorScheme colorScheme();

    /// As above; absent where the desktop has no accent colour.
    [[nodiscard]] std::optional<Platform::SRGBColor> accentColor();

    /// Asks anew; on the main loop's thread.
    void askAgain();

private:
    struct Looks {
        std::optional<Platform::ColorScheme> scheme;
        std::optional<std::array<double, 3>> accent;

        bool operator==(Looks const&) const = default;
    };
    Looks const& current();
    void arrived(Looks const& answer);

    std::shared_ptr<Platform::Appearance const> appearance;
    std::optional<Platform::ColorScheme> fixedScheme;
    Platform::MainLoop& mainLoop;
    std::function<void()> onChange;
    std::chrono::milliseconds patience;
    std::optional<Looks> looks;  // Absent until somebody asks.
    std::future<Looks> question; // The last: what it runs uses the members above.
};

} // namespace Widget
